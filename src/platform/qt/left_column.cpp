#include "platform/qt/left_column.h"

#include <QComboBox>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QScrollArea>

#include "options/option_panel.h"
#include "platform/qt/fields.h"
#include "platform/qt/fitting_area.h"
#include "platform/qt/form.h"
#include "platform/qt/marks.h"
#include "platform/qt/option_panel_view.h"

namespace vkm {
namespace {

constexpr int column_width = 430;  // logical pixels
constexpr int log_rows = 6;        // at the least
constexpr int log_columns = 40;
constexpr int fewest_option_lines = 1;

// Shown for reading; the logic alone writes it.
Field* read_only(Field* field) {
    field->setReadOnly(true);
    return field;
}

// A hidden widget keeps its place, so that nothing jumps when it comes.
QWidget* keeping_its_place(QWidget* widget) {
    QSizePolicy policy = widget->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    widget->setSizePolicy(policy);
    return widget;
}

// ---- step 1: the model -------------------------------------------------------

QWidget* make_step_1(ScreenView& view, Screen& s) {
    QWidget* frame = view(s.Frame3);
    auto* arrow = static_cast<QPushButton*>(view(s.Command3));
    arrow->setFocusPolicy(Qt::TabFocus);  // a click must not take the tree's focus
    arrow->setMaximumWidth(arrow->fontMetrics().height() * 2);
    auto* line = row({read_only(view.field(s.txtDevice, 0)), arrow, caption("AP Memory:"),
                      read_only(view.field(s.txtISP_reange[0], 4)), caption("–"),
                      read_only(view.field(s.txtISP_reange[1], 4))});
    column(frame)->addLayout(line);
    return frame;
}

// ---- step 2: the files --------------------------------------------------------

constexpr int sum_columns = 9;

struct FileControls {
    Control& open;
    Control& start;
    Control& sum;
    Control& clear;
};

void add_file(ScreenView& view, QGridLayout* grid, int place, const FileControls& file) {
    QWidget* start = view.field(file.start, 4);
    QWidget* sum = read_only(view.field(file.sum, sum_columns));
    grid->addWidget(view(file.open), 0, place);
    grid->addLayout(row({caption("起始/Start:", start), start, nullptr, caption("Σ", sum), sum}), 1,
                    place);
    grid->addWidget(view(file.clear), 2, place);
    grid->setColumnStretch(place, 1);
}

// The program's column, and the data's beside it.
QWidget* make_step_2(ScreenView& view, Screen& s) {
    QWidget* frame = view(s.Frame5);
    auto* grid = new QGridLayout;
    add_file(view, grid, 0,
             {s.comLoadFile, s.txtAP_FileStart, s.txtFileCheckSum, s.cheClearAP_Buffer});
    add_file(view, grid, 1,
             {s.comLoadDataFile, s.txtDataFileStart, s.txtDataFileCheckSum, s.cheClearDataBuffer});
    auto* lines = column(frame);
    grid->setVerticalSpacing(lines->spacing());
    lines->addLayout(grid);
    lines->addLayout(row({view(s.optFillbyte[0]), view(s.optFillbyte[1]), nullptr}));
    return frame;
}

// ---- step 3: the port -----------------------------------------------------------

QWidget* make_step_3(ScreenView& view, Screen& s) {
    QWidget* frame = view(s.Frame6);
    auto* port = caption("CO&M:", view(s.combCommPort));
    static_cast<QLabel*>(view(s.LabMaxBaud))->setBuddy(view(s.cobBaudMax));
    column(frame)->addLayout(
        row({port, view(s.combCommPort), view.use(s.imgOpen_sys, new Lamp(true)),
             view(s.imgNotOpen_sys), nullptr, view(s.LabMaxBaud), view(s.cobBaudMax)}));
    return frame;
}

// ---- step 4: the options ----------------------------------------------------------

// The logic tells which of them are to be seen, and in which order.
QWidget* make_options(ScreenView& view, Screen& s) {
    auto* panel = view.use(s.Frame16, new OptionPanelView);
    for_each_option_control(s, [&](Control& control) {
        QWidget* widget =
            control.Kind == ControlKind::Label ? view.use(control, new OptionLabel) : view(control);
        widget->setParent(panel);
    });
    view(s.cheTL)->setParent(panel);
    return panel;
}

QWidget* make_step_4(ScreenView& view, Screen& s) {
    QWidget* frame = view(s.Frame2);
    auto* lines = column(frame);
    lines->addWidget(new FittingArea(make_options(view, s), fewest_option_lines));
    frame->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Maximum);
    return frame;
}

// ---- step 5: the job -----------------------------------------------------------------

constexpr int kilobyte_columns = 8;  // "62.000K"

QLayout* make_buttons(ScreenView& view, Screen& s) {
    auto* bar = static_cast<QProgressBar*>(keeping_its_place(view(s.ProgressBar1)));
    bar->setTextVisible(false);
    auto* line =
        row({view.use(s.comDownload[0], new AccentButton), view(s.comDownload[1]),
             view(s.comStop_Download), view(s.Command2), bar,
             view.use(s.labKbyte, new Readout(QString(kilobyte_columns, u'0'), Qt::AlignRight))});
    line->setStretchFactor(bar, 1);
    // Letters of another typeface make a button higher: all take the row's height.
    for (Control* button : {&s.comDownload[0], &s.comDownload[1], &s.comStop_Download})
        view(*button)->setSizePolicy(QSizePolicy::Minimum, QSizePolicy::Preferred);
    return line;
}

QLayout* make_result(ScreenView& view, Screen& s) {
    auto* count = view.field(s.txtWrite_OK_Count, 7);
    count->setAlignment(Qt::AlignRight);
    auto* line = new QHBoxLayout;
    line->addWidget(view.use(s.labVerdict, new VerdictMark), 1);
    line->addWidget(caption("计数/Co&unt:", count));
    line->addWidget(count);
    line->addWidget(view(s.comClear_OK_Count));
    return line;
}

QWidget* make_beep(ScreenView& view, Screen& s) {
    auto* strip = view.use(s.picBeep, new QWidget);
    auto* line = row({view(s.optBeepYes), view(s.optBeepNo)});
    line->setContentsMargins(0, 0, 0, 0);
    strip->setLayout(line);
    view.make_set({&s.optBeepYes, &s.optBeepNo});
    return strip;
}

// The delay is not for every family.
QLayout* make_beep_and_delay(ScreenView& view, Screen& s) {
    auto* label = static_cast<QLabel*>(keeping_its_place(view(s.Label6)));
    auto* delay = keeping_its_place(view(s.comDalay_ReDownLoad));
    label->setBuddy(delay);
    return row({view(s.Label2), make_beep(view, s), nullptr, label, delay,
                keeping_its_place(unit("s", delay))});
}

QWidget* make_step_5(ScreenView& view, Screen& s) {
    QWidget* frame = view(s.Frame13);
    auto* lines = column(frame);
    lines->addLayout(make_buttons(view, s));
    lines->addLayout(make_result(view, s));
    lines->addLayout(make_beep_and_delay(view, s));
    lines->addLayout(row({view(s.cekReloadFile), view(s.cekReloadFileWhileFileChange), nullptr}));
    return frame;
}

}  // namespace

QWidget* make_left_column(ScreenView& view, Screen& s) {
    auto* steps = view.use(s.Frame1, new QWidget);
    auto* lines = column(steps);
    lines->setContentsMargins(0, 0, 0, 0);
    for (QWidget* step : {make_step_1(view, s), make_step_2(view, s), make_step_3(view, s),
                          make_step_4(view, s), make_step_5(view, s)})
        lines->addWidget(step);
    auto* log = view.text_view(s.textMsg, log_rows, log_columns);
    log->setLineWrapMode(QPlainTextEdit::WidgetWidth);
    lines->addWidget(log, 1);
    steps->setMinimumWidth(column_width);
    return steps;
}

}  // namespace vkm
