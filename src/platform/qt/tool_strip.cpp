#include "platform/qt/fields.h"
#include "platform/qt/fonts.h"
#include "platform/qt/form.h"
#include "platform/qt/pages.h"
#include "platform/qt/tool_pieces.h"

namespace vkm {
namespace {

constexpr int address_columns = 6;
constexpr int number_columns = 10;
constexpr int help_rows = 8;
constexpr int help_columns = 40;

// A part of a page, hidden as a whole.
QWidget* strip_of(ScreenView& view, Control& frame, QFormLayout* fields) {
    QWidget* strip = view.use(frame, new QWidget);
    fields->setContentsMargins(0, 0, 0, 0);
    strip->setLayout(fields);
    return strip;
}

QWidget* make_options_page(ScreenView& view, Screen& s) {
    QWidget* page = tool_page(view, s.Frame12);
    auto* pin = view.use(s.Lab_485_pin, new ColumnLabel);
    auto* logic = view.use(s.Lab_485_logic, new ColumnLabel);
    auto* external = new ColumnLabel;
    external->setText(QStringLiteral("外部看门狗:"));
    ColumnLabel::align({pin, logic, external});
    auto* rs_485 = form();
    rs_485->addRow(pin, pin_choice(view, s.opt_485_pin, s.comb_485_pin));
    rs_485->addRow(logic, flow_widget({view(s.opt_485_logic[0]), view(s.opt_485_logic[1])}));
    auto* watchdog = form();
    watchdog->addRow(external, pin_choice(view, s.opt_External_WDT, s.comb_External_WDT));
    auto* lines = column(page);
    lines->setSpacing(rs_485->verticalSpacing());
    lines->addWidget(strip_of(view, s.Picture4, rs_485));
    lines->addWidget(strip_of(view, s.Picture7, watchdog));
    lines->addStretch();
    return page;
}

constexpr const char* setting_caption = "波特率, 校验, 数据位, 停止位 / Baud, parity, bits, stop:";
constexpr const char* user_code_caption = "自定义命令 / User code (HEX):";

QWidget* make_user_code_page(ScreenView& view, Screen& s) {
    QWidget* page = tool_page(view, s.Frame8);
    auto* fields = form();
    fields->setFieldGrowthPolicy(QFormLayout::ExpandingFieldsGrow);
    fields->addRow(caption(user_code_caption), long_field(view, s.txtUserCode));
    fields->addRow(caption(setting_caption),
                   serial_setting(view, s.cobUserCodeBaud, s.cobUserCodeParity,
                                  s.cobUserCodeDataBits, s.cobUserCodeStopBits));
    auto* lines = column(page);
    lines->addLayout(fields);
    lines->addWidget(flow_widget({view(s.comSendUserCode)}));
    lines->addWidget(flow_widget({view(s.cekReloadFileWhileFileChange1)}));
    lines->addStretch();
    return page;
}

// The lines are columns of text as they come, one below the other.
QWidget* make_read_page(ScreenView& view, Screen& s) {
    QWidget* page = tool_page(view, s.Frame4);
    auto* lines = column(page);
    lines->addWidget(flow_widget({view(s.comReadChipLock)}));
    for (Control& label : s.LabLock) {
        auto* line = static_cast<QLabel*>(view(label));
        line->setFont(monospaced_font());
        line->setTextInteractionFlags(Qt::TextSelectableByMouse);
        lines->addWidget(line);
    }
    lines->addStretch();
    return page;
}

QWidget* make_number_group(ScreenView& view, Control& frame, Control& enable,
                           std::array<Control, 4>& texts, std::array<Control, 3>& formats) {
    QWidget* group = view(frame);
    auto* lines = column(group);
    lines->addWidget(view(enable));
    auto* fields = form();
    fields->addRow(caption("存放地址(HEX)"), view.field(texts[0], address_columns));
    fields->addRow(caption("字节数"), view.field(texts[1], address_columns));
    fields->addRow(caption("下一个值(10进制)"), view.field(texts[2], number_columns));
    fields->addRow(caption("增量"), view.field(texts[3], address_columns));
    fields->addRow(caption("下一个值存储格式:"),
                   flow_widget({view(formats[0]), view(formats[1]), view(formats[2])}));
    lines->addLayout(fields);
    return group;
}

QWidget* make_number_page(ScreenView& view, Screen& s) {
    QWidget* page = view(s.fraAuto_Increase);
    auto* groups =
        flow_widget({make_number_group(view, s.frmAP_FileIncrease, s.cheAuto_Increase,
                                       s.texAuto_Increase, s.optAuto_Increase),
                     make_number_group(view, s.frmData_FileIncrease, s.cheData_Auto_Increase,
                                       s.texData_Auto_Increase, s.optData_Auto_Increase)});
    auto* lines = column(page);
    lines->addWidget(remark("改变以下参数后请重新打开文件"));
    lines->addWidget(groups);
    lines->addStretch();
    return page;
}

QWidget* make_save_page(ScreenView& view, Screen& s) {
    QWidget* page = tool_page(view, s.Frame9);
    auto* fields = form();
    fields->addRow(caption("起始地址 / Start address (HEX):"),
                   view.field(s.txt_Start_Address, address_columns));
    fields->addRow(caption("长度 / Length (HEX):"), view.field(s.txt_length, address_columns));
    auto* lines = column(page);
    lines->addLayout(fields);
    lines->addWidget(flow_widget({view(s.comStoreFile)}));
    lines->addStretch();
    return page;
}

QWidget* make_help_page(ScreenView& view, Screen& s) {
    QWidget* page = tool_page(view, s.fraAboutHardWare);
    column(page)->addWidget(view.text_view(s.texHardWareHelp, help_rows, help_columns));
    return page;
}

}  // namespace

QWidget* make_tool_strip(ScreenView& view, Screen& s) {
    auto* strip = new QWidget;
    auto* lines = new QVBoxLayout(strip);
    lines->setContentsMargins(0, 0, 0, 0);
    lines->setSpacing(0);
    lines->addWidget(view(s.TabStrip1));
    auto* pages = new QWidget;
    auto* stack = new QVBoxLayout(pages);
    stack->setContentsMargins(0, 0, 0, 0);
    for (QWidget* page :
         {make_options_page(view, s), make_user_code_page(view, s), make_board_page(view, s),
          make_read_page(view, s), make_number_page(view, s), make_demo_page(view, s),
          make_save_page(view, s), make_help_page(view, s), make_softice_page(view, s)})
        stack->addWidget(page);
    lines->addWidget(scrolling(pages), 1);
    return strip;
}

}  // namespace vkm
