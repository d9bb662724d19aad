#include <QSplitter>

#include "monitor/list_rows.h"
#include "platform/qt/fields.h"
#include "platform/qt/form.h"
#include "platform/qt/pages.h"
#include "platform/qt/row_list.h"
#include "platform/qt/text_mapping.h"

namespace vkm {
namespace {

// "E0H     ACC      5AH   90", and the address field with eight bytes behind it.
constexpr int register_columns = 25;
constexpr int memory_columns = static_cast<int>(memory_value_column + 3 * cells_per_row) - 1;

RowList* list_of(ScreenView& view, Control& control, int columns) {
    auto* list = static_cast<RowList*>(view(control));
    list->set_columns(columns);
    return list;
}

QWidget* titled(const char* title, QWidget* list) {
    auto* panel = new QWidget;
    auto* lines = new QVBoxLayout(panel);
    lines->setContentsMargins(0, 0, 0, 0);
    lines->setSpacing(0);
    auto* above = new OneLine;
    above->setText(QString::fromUtf8(title));
    lines->addWidget(above);
    lines->addWidget(list, 1);
    return panel;
}

// Two lists side by side, each with as much of the width as its rows are wide, until
// the operator moves the bar between them.
class Lists final : public QSplitter {
  public:
    Lists(QWidget* left, QWidget* right) : QSplitter(Qt::Horizontal) {
        setChildrenCollapsible(false);
        for (QWidget* side : {left, right}) addWidget(side);
        connect(this, &QSplitter::splitterMoved, this, [this] { moved_ = true; });
    }

  protected:
    void resizeEvent(QResizeEvent* event) override {
        QSplitter::resizeEvent(event);
        if (moved_) return;
        const int left = widget(0)->sizeHint().width();
        const int right = widget(1)->sizeHint().width();
        const int room = width() - handleWidth();
        const int share = room * left / (left + right);
        setSizes({share, room - share});
    }

  private:
    bool moved_ = false;
};

// The lists' own captions stand in the place of the frame's.
QWidget* make_page(ScreenView& view, Control& frame, QWidget* lists, QWidget* buttons) {
    QWidget* page = view.use(frame, new QWidget);
    auto* lines = column(page);
    lines->addWidget(lists, 1);
    lines->addWidget(buttons);
    return page;
}

}  // namespace

QWidget* make_register_page(ScreenView& view, Screen& s) {
    RowList* registers = list_of(view, s.lst_debug1, register_columns);
    registers->set_header(to_qt(register_header));
    RowList* memory = list_of(view, s.lst_debug2, memory_columns);
    return make_page(view, s.Frame21,
                     new Lists(titled("特殊功能寄存器 / SFR", registers),
                               titled("直接、间接寻址 RAM / Internal RAM", memory)),
                     flow_widget({view(s.comDebugContinue), view(s.comDebugClear[1]),
                                  view(s.che_disable_Debug_SFR_232)}));
}

QWidget* make_memory_page(ScreenView& view, Screen& s) {
    RowList* memory = list_of(view, s.lst_debug3, memory_columns);
    RowList* window = list_of(view, s.lst_debug4, memory_columns);
    return make_page(view, s.Frame22,
                     new Lists(titled("内部、外部扩展XRAM / On-chip, external XRAM", memory),
                               titled("XRAM 窗口 / XRAM window", window)),
                     flow_widget({view(s.comDebugClear[2]), view(s.comDebugHelp[1])}));
}

}  // namespace vkm
