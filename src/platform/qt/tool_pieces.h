// What several pages of the tools are put together from.
#pragma once

#include <QWidget>
#include <array>

#include "platform/qt/screen_view.h"

namespace vkm {

// A page of a tool: its tab shows the caption, so the frame has no title.
QWidget* tool_page(ScreenView& view, Control& frame);

// A text of any length, in a field that doesn't run across the whole screen.
QWidget* long_field(ScreenView& view, Control& control);

// Without a pin, or with the one that the list names.
QWidget* pin_choice(ScreenView& view, std::array<Control, 2>& options, Control& pin);

// The four lists of a serial setting on one line.
QWidget* serial_setting(ScreenView& view, Control& baud, Control& parity, Control& data_bits,
                        Control& stop_bits);

}  // namespace vkm
