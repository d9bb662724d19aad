#include "platform/qt/lock_mark.h"

#include <QPainter>
#include <QPainterPath>

#include "platform/qt/form.h"

namespace vkm {
namespace {

const QString locked_word = QStringLiteral("已锁定 / Locked");
const QString free_word = QStringLiteral("可修改 / Free to change");

}  // namespace

// As high as the text beside it. Open, its shackle is drawn out on one side.
class LockMark::Padlock final : public QWidget {
  public:
    Padlock() { setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed); }
    QSize sizeHint() const override {
        const int side = fontMetrics().height();
        return {side, side};
    }

    bool closed = false;

  protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.scale(width() / 16.0, height() / 16.0);
        const QColor colour = palette().color(QPalette::WindowText);
        painter.setPen(QPen(colour, 1.6));
        QPainterPath shackle(QPointF(5, 8));
        shackle.lineTo(5, 5);
        shackle.arcTo(QRectF(5, 1.5, 6, 6), 180, -180);
        if (closed) shackle.lineTo(11, 8);
        painter.drawPath(shackle);
        painter.setBrush(closed ? QBrush(colour) : QBrush(Qt::NoBrush));
        painter.drawRoundedRect(QRectF(3, 8, 10, 6.5), 1, 1);
    }
};

LockMark::LockMark() : padlock_(new Padlock), word_(new QLabel(free_word)) {
    QHBoxLayout* line = row({padlock_, word_});
    line->setContentsMargins(0, 0, 0, 0);
    setLayout(line);
}

void LockMark::set_locked(bool locked) {
    if (padlock_->closed == locked) return;
    padlock_->closed = locked;
    padlock_->update();
    word_->setText(locked ? locked_word : free_word);
}

}  // namespace vkm
