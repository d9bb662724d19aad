#include "platform/qt/fitting_area.h"

#include <QEvent>
#include <QLayout>
#include <QScrollBar>
#include <algorithm>

namespace vkm {

FittingArea::FittingArea(QWidget* content, int fewest_lines) : fewest_lines_(fewest_lines) {
    setWidgetResizable(true);
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::NoFocus);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setWidget(content);
}

int FittingArea::wanted_width() const {
    const QSize least = widget()->layout()->totalMinimumSize().expandedTo(widget()->minimumSize());
    const bool scrolls = least.height() > height();
    return least.width() + (scrolls ? verticalScrollBar()->sizeHint().width() : 0);
}

QSize FittingArea::sizeHint() const {
    return {wanted_width(), widget()->layout()->totalSizeHint().height()};
}

QSize FittingArea::minimumSizeHint() const {
    const int least = fewest_lines_ * fontMetrics().lineSpacing();
    return {wanted_width(), std::min(least, widget()->layout()->totalMinimumSize().height())};
}

bool FittingArea::eventFilter(QObject* watched, QEvent* event) {
    if (watched == widget() && event->type() == QEvent::LayoutRequest) updateGeometry();
    return QScrollArea::eventFilter(watched, event);
}

void FittingArea::resizeEvent(QResizeEvent* event) {
    QScrollArea::resizeEvent(event);
    updateGeometry();
}

}  // namespace vkm
