#include "platform/qt/option_lines.h"

#include <QStyle>
#include <QWidget>
#include <algorithm>

namespace vkm {
namespace {

// What the item takes of a row that is this wide.
QSize size_of(const QLayoutItem& item, int row_width) {
    const QSize hint = item.sizeHint();
    const int width = std::min(hint.width(), row_width);
    return {width, item.hasHeightForWidth() ? item.heightForWidth(width) : hint.height()};
}

void place_item(QLayoutItem& item, int left, const QRect& row) {
    const QSize size = size_of(item, row.width());
    item.setGeometry({QPoint(left, row.top() + (row.height() - size.height()) / 2), size});
}

}  // namespace

OptionLines::OptionLines(QWidget* parent) : QLayout(parent) {
    // Choices have air of their own above and below.
    setSpacing(parent->style()->pixelMetric(QStyle::PM_LayoutVerticalSpacing) / 4);
    setContentsMargins(0, 0, 0, 0);
}

void OptionLines::clear() {
    for (const Place& place : places_) delete place.item;
    places_.clear();
    invalidate();
}

void OptionLines::add_label(QWidget* label) {
    addWidget(label);
    places_.last().begins_line = true;
}

QLayoutItem* OptionLines::takeAt(int index) {
    return index >= 0 && index < count() ? places_.takeAt(index).item : nullptr;
}

int OptionLines::heightForWidth(int width) const {
    int height = 0;
    for (const QList<Row>& line : lines_at(width)) {
        if (height > 0) height += spacing();
        for (const Row& row : line) height += height_of(row, width);
    }
    return height;
}

// Every line in one row.
QSize OptionLines::sizeHint() const {
    int width = minimumSize().width();
    for (const QList<Row>& line : lines_at(QLAYOUTSIZE_MAX)) {
        const Row& row = line.first();
        const int label = row.label ? row.label->sizeHint().width() + gap() : 0;
        width = std::max(width, label + width_of(row.choices));
    }
    return {width, heightForWidth(width)};
}

// A label can break; a choice can't.
QSize OptionLines::minimumSize() const {
    int width = 0;
    for (const auto& [item, begins_line] : places_)
        if (!item->isEmpty())
            width = std::max(width, begins_line && item->hasHeightForWidth()
                                        ? item->minimumSize().width()
                                        : item->sizeHint().width());
    return {width, 0};
}

void OptionLines::setGeometry(const QRect& rect) {
    QLayout::setGeometry(rect);
    int top = rect.top();
    for (const QList<Row>& line : lines_at(rect.width())) {
        for (const Row& row : line) {
            const int height = height_of(row, rect.width());
            place(row, {rect.left(), top, rect.width(), height});
            top += height;
        }
        top += spacing();
    }
}

QList<QList<OptionLines::Row>> OptionLines::lines_at(int width) const {
    QList<Row> lines;
    for (const auto& [item, begins_line] : places_) {
        if (begins_line || lines.isEmpty()) lines.append(Row());
        if (item->isEmpty()) continue;
        if (begins_line)
            lines.last().label = item;
        else
            lines.last().choices.append(item);
    }
    QList<QList<Row>> broken;
    for (const Row& line : lines)
        if (line.label || !line.choices.isEmpty()) broken.append(rows_of(line, width));
    return broken;
}

// The choices of a line stay together where a row has room for all of them.
QList<OptionLines::Row> OptionLines::rows_of(const Row& line, int width) const {
    const int label = line.label ? line.label->sizeHint().width() + gap() : 0;
    if (line.choices.isEmpty() || label + width_of(line.choices) <= width) return {line};
    QList<Row> rows;
    if (line.label) rows.append(Row{line.label, {}});
    Row below;
    for (QLayoutItem* choice : line.choices) {
        below.choices.append(choice);
        if (below.choices.size() == 1 || width_of(below.choices) <= width) continue;
        below.choices.removeLast();
        rows.append(below);
        below.choices = {choice};
    }
    rows.append(below);
    return rows;
}

int OptionLines::width_of(const QList<QLayoutItem*>& choices) const {
    int width = 0;
    for (const QLayoutItem* choice : choices)
        width += (width > 0 ? gap() : 0) + choice->sizeHint().width();
    return width;
}

int OptionLines::height_of(const Row& row, int width) const {
    int height = row.label ? size_of(*row.label, width).height() : 0;
    for (const QLayoutItem* choice : row.choices)
        height = std::max(height, size_of(*choice, width).height());
    return height;
}

void OptionLines::place(const Row& row, const QRect& room) const {
    if (row.label) place_item(*row.label, room.left(), room);
    int left = room.right() + 1 - width_of(row.choices);
    for (QLayoutItem* choice : row.choices) {
        place_item(*choice, left, room);
        left += choice->sizeHint().width() + gap();
    }
}

int OptionLines::gap() const {
    return parentWidget()->style()->pixelMetric(QStyle::PM_LayoutHorizontalSpacing, nullptr,
                                                parentWidget());
}

}  // namespace vkm
