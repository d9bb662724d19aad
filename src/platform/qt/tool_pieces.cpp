#include "platform/qt/tool_pieces.h"

#include "platform/qt/fields.h"
#include "platform/qt/form.h"

namespace vkm {
namespace {

constexpr int longest_field = 64;  // characters shown of a text of any length

}  // namespace

QWidget* tool_page(ScreenView& view, Control& frame) {
    return view.use(frame, new QWidget);
}

QWidget* long_field(ScreenView& view, Control& control) {
    Field* field = view.field(control, 0);
    field->setMaximumWidth(longest_field * field->fontMetrics().horizontalAdvance(u'0'));
    return field;
}

QWidget* pin_choice(ScreenView& view, std::array<Control, 2>& options, Control& pin) {
    return flow_widget({view(options[0]), view(options[1]), view(pin)});
}

QWidget* serial_setting(ScreenView& view, Control& baud, Control& parity, Control& data_bits,
                        Control& stop_bits) {
    return flow_widget({view(baud), view(parity), view(data_bits), view(stop_bits)});
}

}  // namespace vkm
