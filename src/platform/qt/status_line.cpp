#include "platform/qt/status_line.h"

#include "platform/qt/fields.h"
#include "platform/qt/form.h"
#include "platform/qt/text_mapping.h"

namespace vkm {
namespace {

constexpr const char* closed_text = "已关闭 / closed";
constexpr const char* for_download = "已打开, 用于下载 / open for the download";
constexpr const char* for_assistant = "已打开, 用于串口助手 / open for the assistant";
constexpr const char* no_device = "没有设备 / no device";
constexpr const char* between = "   ·   ";
constexpr const char* warning = "⚠ ";

std::string describe(const frmMain& frm, const QtSerialPort& port, const PortRegistry& ports) {
    const bool open = port.is_open();
    const int number = open ? port.open_number() : frm.screen.combCommPort.ListIndex + 1;
    const std::string note = ports.note(number);
    std::string text = "COM" + std::to_string(number);
    text.append("  ").append(note.empty() ? no_device : note);
    text.append(between).append(port.settings());
    text.append(between).append(!open                 ? closed_text
                                : frm.link.debug_mode ? for_assistant
                                                      : for_download);
    return text;
}

void set_text(QLabel& label, std::string& shown, std::string text) {
    if (text == shown) return;
    shown = std::move(text);
    label.setText(to_qt(shown));
    label.setToolTip(label.text());
}

}  // namespace

StatusLine::StatusLine(QWidget* button) : port_(new OneLine), reason_(remark("")) {
    auto* lines = new QVBoxLayout;
    lines->setSpacing(0);
    for (QLabel* label : {port_, reason_}) lines->addWidget(label);
    reason_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto* line = new QHBoxLayout(this);
    line->setContentsMargins(0, 0, 0, 0);
    line->addLayout(lines, 1);
    line->addWidget(button);
    QFont bold = reason_->font();
    bold.setBold(true);
    reason_->setFont(bold);
    reason_->hide();
}

void StatusLine::draw(const frmMain& frm, const QtSerialPort& port, const PortRegistry& ports) {
    set_text(*port_, port_text_, describe(frm, port, ports));
    const std::string& reason = port.reason().text;
    set_text(*reason_, reason_text_, reason.empty() ? std::string() : warning + reason);
    if (reason_->isHidden() == reason.empty()) return;
    reason_->setVisible(!reason.empty());
    make_room();
}

void StatusLine::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    make_room();
}

// A reason of more than one line takes the place of the port, which it names:
// the steps above keep their height.
void StatusLine::make_room() {
    const int line = reason_->fontMetrics().lineSpacing();
    const bool is_long =
        !reason_->isHidden() && reason_->heightForWidth(port_width()) > line * 3 / 2;
    port_->setVisible(!is_long);
}

int StatusLine::port_width() const {
    return layout()->itemAt(0)->geometry().width();
}

}  // namespace vkm
