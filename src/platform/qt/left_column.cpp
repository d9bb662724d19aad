#include "platform/qt/left_column.h"

#include <QComboBox>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QScrollArea>

#include "platform/qt/fields.h"
#include "platform/qt/fitting_area.h"
#include "platform/qt/flow_layout.h"
#include "platform/qt/form.h"
#include "platform/qt/marks.h"

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

template <std::size_t count>
void add_option(ScreenView& view, QVBoxLayout* lines, Control* label,
                std::array<Control, count>& choices) {
    auto* line = new FlowLayout;
    if (label) line->addWidget(view(*label));
    for (Control& choice : choices) line->addWidget(view(choice));
    lines->addLayout(line);
}

// A label shorter than the others stands with its choices; a remark stands alone.
QWidget* make_options(ScreenView& view, Screen& s) {
    auto* options = view.use(s.Frame16, new QWidget);
    auto* lines = column(options);
    lines->addWidget(view(s.cheTL));
    auto& label = s.LabOption;
    add_option(view, lines, &label[0], s.Option0);
    add_option(view, lines, &label[1], s.Option1);
    add_option(view, lines, &label[2], s.Option2);
    add_option(view, lines, &label[3], s.Option3);
    add_option(view, lines, &label[4], s.Option4);
    add_option(view, lines, &label[5], s.Option5);
    add_option(view, lines, &label[6], s.Option6);
    add_option(view, lines, &label[7], s.Option7);
    add_option(view, lines, &label[8], s.Option8);
    add_option(view, lines, &label[9], s.Option9);
    add_option(view, lines, &label[10], s.Option10);
    add_option(view, lines, &label[11], s.Option11);
    add_option(view, lines, &label[12], s.Option12);
    lines->addLayout(flow({view(s.Label20), view(s.comWDT_Prescalar)}));
    lines->addWidget(view(s.LabOptionC));
    lines->addWidget(view(s.Label7));
    lines->addStretch();
    for (Control* text : {&s.LabOptionC, &s.Label7})
        static_cast<QLabel*>(view(*text))->setWordWrap(true);
    return options;
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
    auto* line = row({view.use(s.comDownload[0], new AccentButton), view(s.comDownload[1]),
                      view(s.comStop_Download), view(s.Command2), bar,
                      view.use(s.labKbyte, new Readout(kilobyte_columns))});
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

QWidget* make_step_5(ScreenView& view, Screen& s) {
    QWidget* frame = view(s.Frame13);
    auto* lines = column(frame);
    lines->addLayout(make_buttons(view, s));
    lines->addLayout(make_result(view, s));
    lines->addLayout(row({caption("Beep/响铃:"), view(s.optBeepYes), view(s.optBeepNo), nullptr,
                          caption("间隔/De&lay:", view(s.comDalay_ReDownLoad)),
                          view(s.comDalay_ReDownLoad), caption("s")}));
    view.make_set({&s.optBeepYes, &s.optBeepNo});
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
