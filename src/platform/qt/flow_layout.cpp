#include "platform/qt/flow_layout.h"

#include <QPushButton>
#include <QStyle>
#include <QWidget>
#include <algorithm>

namespace vkm {
namespace {

bool is_button(QLayoutItem& item) {
    return qobject_cast<QPushButton*>(item.widget()) != nullptr;
}

// What the item takes of a line that is this wide.
QSize size_of(const QLayoutItem& item, int line_width) {
    const QSize hint = item.sizeHint();
    const int width = std::min(hint.width(), line_width);
    return {width, item.hasHeightForWidth() ? item.heightForWidth(width) : hint.height()};
}

}  // namespace

FlowLayout::FlowLayout() {
    setContentsMargins(0, 0, 0, 0);
}

FlowLayout::~FlowLayout() {
    for (QLayoutItem* item : items_) delete item;
}

QLayoutItem* FlowLayout::takeAt(int index) {
    return index >= 0 && index < items_.size() ? items_.takeAt(index) : nullptr;
}

// All on one line.
QSize FlowLayout::sizeHint() const {
    int width = 0;
    for (const QLayoutItem* item : items_)
        if (!item->isEmpty())
            width += (width > 0 ? gap(Qt::Horizontal) : 0) + item->sizeHint().width();
    return {width, height_at(width_)};
}

// The widest on a line of its own.
QSize FlowLayout::minimumSize() const {
    int width = 0;
    for (const QLayoutItem* item : items_)
        if (!item->isEmpty()) width = std::max(width, item->minimumSize().width());
    return {width, height_at(width_)};
}

void FlowLayout::setGeometry(const QRect& rect) {
    const int before = height_at(width_);
    width_ = rect.width();
    QLayout::setGeometry(rect);
    QPoint corner = rect.topLeft();
    for (Line line; line.end < items_.size();) {
        line = line_from(line.end, width_);
        place(line, corner, width_);
        if (line.height > 0) corner.ry() += line.height + gap(Qt::Vertical);
    }
    if (height_at(width_) != before) update();
}

FlowLayout::Line FlowLayout::line_from(qsizetype first, int width) const {
    Line line{first, first, 0};
    int taken = 0;
    for (; line.end < items_.size(); ++line.end) {
        const QLayoutItem* item = items_[line.end];
        if (item->isEmpty()) continue;
        const QSize size = size_of(*item, width);
        const int more = (taken > 0 ? gap(Qt::Horizontal) : 0) + size.width();
        if (taken > 0 && taken + more > width) break;
        taken += more;
        line.height = std::max(line.height, size.height());
    }
    return line;
}

int FlowLayout::height_at(int width) const {
    int height = 0;
    for (Line line; line.end < items_.size();) {
        line = line_from(line.end, width);
        if (line.height > 0) height += (height > 0 ? gap(Qt::Vertical) : 0) + line.height;
    }
    return height;
}

int FlowLayout::button_height(const Line& line) const {
    int height = 0;
    for (qsizetype i = line.first; i < line.end; ++i)
        if (!items_[i]->isEmpty() && is_button(*items_[i]))
            height = std::max(height, items_[i]->sizeHint().height());
    return height;
}

// From left to right, each in the middle of the line's height; buttons are of
// one height.
void FlowLayout::place(const Line& line, QPoint corner, int width) {
    const int buttons = button_height(line);
    for (qsizetype i = line.first; i < line.end; ++i) {
        if (items_[i]->isEmpty()) continue;
        QSize size = size_of(*items_[i], width);
        if (is_button(*items_[i])) size.setHeight(buttons);
        const QPoint middle(0, (line.height - size.height()) / 2);
        items_[i]->setGeometry({corner + middle, size});
        corner.rx() += size.width() + gap(Qt::Horizontal);
    }
}

int FlowLayout::gap(Qt::Orientation orientation) const {
    const auto metric = orientation == Qt::Horizontal ? QStyle::PM_LayoutHorizontalSpacing
                                                      : QStyle::PM_LayoutVerticalSpacing;
    const QWidget* widget = parentWidget();
    return widget ? widget->style()->pixelMetric(metric, nullptr, widget) : 0;
}

}  // namespace vkm
