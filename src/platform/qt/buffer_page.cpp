#include "platform/qt/buffer_page.h"

#include <QGridLayout>
#include <QScrollBar>
#include <QWheelEvent>
#include <cstdlib>

#include "platform/qt/fields.h"
#include "platform/qt/form.h"

namespace vkm {
namespace {

// A row of the hexadecimal view: "_000000___" and 16 times "00_".
constexpr int hex_columns = 59;
constexpr int fewest_rows = 4;

// The wheel over the text or over the bar moves the bar: the text holds one page of
// the image. A fine wheel tells of less than a row at a time.
class WheelToBar final : public QObject {
  public:
    WheelToBar(QWidget* text, QScrollBar* bar) : QObject(bar), bar_(bar) {
        text->installEventFilter(this);
        bar->installEventFilter(this);
    }

  protected:
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() != QEvent::Wheel) return false;
        const QPoint turned = static_cast<QWheelEvent*>(event)->angleDelta();
        if (std::abs(turned.x()) > std::abs(turned.y())) return false;
        turn(turned.y());
        event->accept();
        return true;
    }

  private:
    static constexpr int angle_of_a_row = QWheelEvent::DefaultDeltasPerStep / 3;

    void turn(int angle) {
        const bool turned_back = (angle > 0) != (rest_ > 0);
        rest_ = turned_back ? angle : rest_ + angle;
        bar_->setValue(bar_->value() - rest_ / angle_of_a_row);
        rest_ %= angle_of_a_row;
    }

    QScrollBar* bar_;
    int rest_ = 0;  // of the turning, not yet a row
};

TextView* make_text(ScreenView& view, Control& control) {
    TextView* text = view.text_view(control, fewest_rows, hex_columns / 3);
    text->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    return text;
}

}  // namespace

QWidget* make_buffer_page(ScreenView& view, Control& frame, Control& filled, Control& shown,
                          Control& bar) {
    QWidget* page = view(frame);
    TextView* below = make_text(view, filled);
    TextView* above = make_text(view, shown);
    auto* scroll_bar = static_cast<QScrollBar*>(view(bar));
    below->setFocusPolicy(Qt::NoFocus);
    below->setAttribute(Qt::WA_TransparentForMouseEvents);
    above->keep_selection_visible();
    new WheelToBar(above->viewport(), scroll_bar);
    auto* grid = new QGridLayout;
    grid->setSpacing(0);
    // What comes later lies above.
    grid->addWidget(below, 0, 0);
    grid->addWidget(above, 0, 0);
    grid->addWidget(scroll_bar, 0, 1);
    column(page)->addLayout(grid);
    return page;
}

}  // namespace vkm
