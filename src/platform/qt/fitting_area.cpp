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

// Content that breaks its lines is as high as they are at this width.
int FittingArea::height_of(const QSize& asked) const {
    const QLayout* lines = widget()->layout();
    return lines->hasHeightForWidth() ? lines->totalHeightForWidth(width()) : asked.height();
}

bool FittingArea::scrolls() const {
    return height_of(widget()->layout()->totalMinimumSize()) > height();
}

// Left alone, the toolkit keeps a bar that takes the room for which it is there.
void FittingArea::fit() {
    setVerticalScrollBarPolicy(scrolls() ? Qt::ScrollBarAlwaysOn : Qt::ScrollBarAlwaysOff);
    updateGeometry();
}

int FittingArea::wanted_width() const {
    const QSize least = widget()->layout()->totalMinimumSize().expandedTo(widget()->minimumSize());
    return least.width() + (scrolls() ? verticalScrollBar()->sizeHint().width() : 0);
}

QSize FittingArea::sizeHint() const {
    return {wanted_width(), height_of(widget()->layout()->totalSizeHint())};
}

QSize FittingArea::minimumSizeHint() const {
    const int least = fewest_lines_ * fontMetrics().lineSpacing();
    return {wanted_width(), std::min(least, height_of(widget()->layout()->totalMinimumSize()))};
}

bool FittingArea::eventFilter(QObject* watched, QEvent* event) {
    if (watched == widget() && event->type() == QEvent::LayoutRequest) fit();
    return QScrollArea::eventFilter(watched, event);
}

void FittingArea::resizeEvent(QResizeEvent* event) {
    QScrollArea::resizeEvent(event);
    fit();
}

}  // namespace vkm
