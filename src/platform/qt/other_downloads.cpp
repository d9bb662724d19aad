#include "catalogue/model_table.h"
#include "platform/qt/fields.h"
#include "platform/qt/form.h"
#include "platform/qt/pages.h"
#include "platform/qt/text_mapping.h"
#include "platform/qt/tool_pieces.h"

namespace vkm {
namespace {

constexpr int limit_columns = 8;
constexpr int resting_place_columns = 4;

Group* titled_group(const char* title) {
    auto* group = new Group;
    group->set_caption(QString::fromUtf8(title));
    return group;
}

ColumnLabel* column_label(const char* text) {
    auto* label = new ColumnLabel;
    label->setText(QString::fromUtf8(text));
    return label;
}

// Where the keyboard rests while a download runs, so that no key presses a button. It
// shows no value of the operator's, so it looks like none.
QWidget* resting_place(ScreenView& view, Control& control) {
    Field* field = view.field(control, resting_place_columns);
    field->setFrame(false);
    field->setReadOnly(true);
    field->setContextMenuPolicy(Qt::NoContextMenu);
    field->setStyleSheet(QStringLiteral("background: transparent; color: palette(mid);"));
    return field;
}

// The models that a monitor can be put into, as the catalogue has them.
QString monitor_models() {
    QStringList names;
    for (const ModelGroup& group : MCU_AP_ISP_range)
        for (const ModelRow& row : group.rows)
            if (!row.SoftICE_ROM.empty())
                names << to_qt(row.MCU_Name) + QStringLiteral(" (") + to_qt(row.SoftICE_ROM) + u')';
    return names.join(QStringLiteral(", "));
}

}  // namespace

QWidget* make_board_page(ScreenView& view, Screen& s) {
    QWidget* page = tool_page(view, s.Frame18);
    Field* limit = view.field(s.txt_download_max, limit_columns);
    auto* lines = column(page);
    lines->addWidget(flow_widget(
        {caption("下载数限量 / Limit of chips:", limit), limit, unit("1 – 1000000", limit)}));
    lines->addWidget(
        remark("脱机下载板下载这么多片后停止, 需重新装入。数据文件不装入。\n"
               "The board programs so many chips, then wants to be loaded again. "
               "The data file is not taken along."));
    lines->addWidget(flow_widget({view(s.comTJXZ), view(s.com_TJXZ_help)}));
    QWidget* service = titled_group("维修 / Service");
    auto* service_lines = column(service);
    service_lines->addWidget(flow_widget({view(s.Read24C512)}));
    service_lines->addWidget(
        remark("注意: 先将缓冲区写入脱机下载板, 板内任务丢失; 未打开文件时只读。\n"
               "Careful: writes the buffer to the board first, the job in it is lost; "
               "without a file it only reads."));
    lines->addWidget(service);
    lines->addStretch();
    return page;
}

QWidget* make_demo_page(ScreenView& view, Screen& s) {
    auto* line = column_label("串口 / Line:");
    auto* watchdog = column_label("喂狗 / Feeding:");
    auto* code = column_label("命令 / Code (HEX):");
    auto* code_line = column_label("串口 / Line:");
    ColumnLabel::align({line, watchdog, code, code_line});

    QWidget* page = tool_page(view, s.Frame11);
    auto* lines = column(page);
    lines->addWidget(flow_widget({view(s.com_Demo_DownLoad), view(s.com_Demo_Re_DownLoad),
                                  view(s.com_Demo_Stop), resting_place(view, s.Text1)}));

    QWidget* download = titled_group("下载 / Download");
    auto* download_fields = form();
    download_fields->addRow(
        line, serial_setting(view, s.cob_DEMO_DownLoad_Baud, s.cob_DEMO_DownLoad_Parity,
                             s.cob_DEMO_DownLoad_DataBits, s.cob_DEMO_DownLoad_StopBits));
    column(download)->addLayout(download_fields);
    lines->addWidget(download);

    QWidget* user_code = titled_group("自定义命令 / User code");
    auto* code_lines = column(user_code);
    code_lines->addWidget(view(s.che_Demo_DownLoad));
    auto* code_fields = form();
    code_fields->setFieldGrowthPolicy(QFormLayout::ExpandingFieldsGrow);
    code_fields->addRow(code, long_field(view, s.txt_DEMO_UserCode));
    code_fields->addRow(code_line,
                        serial_setting(view, s.cob_DEMO_UserCode_Baud, s.cob_DEMO_UserCode_Parity,
                                       s.cob_DEMO_UserCode_DataBits, s.cob_DEMO_UserCode_StopBits));
    code_lines->addLayout(code_fields);
    lines->addWidget(user_code);

    QWidget* pin = titled_group("外部看门狗, 用于步骤5的下载 / External watchdog, for step 5");
    auto* pin_fields = form();
    pin_fields->addRow(watchdog, pin_choice(view, s.opt_ISP_DEMO_WDT, s.comb_WDT));
    column(pin)->addLayout(pin_fields);
    lines->addWidget(pin);
    lines->addStretch();
    return page;
}

QWidget* make_softice_page(ScreenView& view, Screen& s) {
    QWidget* page = tool_page(view, s.Frame10);
    auto* lines = column(page);
    lines->addWidget(flow_widget({view(s.comDownSoft_ICE)}));
    lines->addWidget(
        remark("注意: 仿真监控程序取代下载引导码, 之后不能再用 ISP 下载。\n"
               "Careful: the monitor replaces the boot firmware, no further download by ISP."));
    lines->addWidget(
        remark("需要的文件与本程序在同一文件夹: VKM2000.rom 和型号后括号中的文件。\n"
               "Files wanted beside the program: VKM2000.rom and the one behind the model."));
    auto* models = remark("");
    models->setText(QStringLiteral("型号 / Models: ") + monitor_models());
    lines->addWidget(models);
    lines->addStretch();
    return page;
}

}  // namespace vkm
