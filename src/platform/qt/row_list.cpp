#include "platform/qt/row_list.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyle>
#include <QStyledItemDelegate>
#include <algorithm>

#include "platform/qt/fonts.h"
#include "platform/qt/selection_colours.h"

namespace vkm {
namespace {

constexpr int usual_columns = 20;
constexpr int fewest_columns = 8;
constexpr int fewest_rows = 4;

// Below it stand halfwidth characters, above it Chinese ones and their punctuation.
constexpr char16_t first_wide_character = 0x2E80;

int columns_of(QChar character) {
    return character.unicode() >= first_wide_character ? 2 : 1;
}

// Between the edge of a row and its text.
int text_margin(const QWidget* list) {
    return list->style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, list) + 1;
}

// All rows are as wide as the list's columns, however short the first one is.
class RowDelegate final : public QStyledItemDelegate {
  public:
    RowDelegate(QWidget* list, const int& columns)
        : QStyledItemDelegate(list), list_(list), columns_(columns) {}

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        const QSize text = QStyledItemDelegate::sizeHint(option, index);
        const int width = columns_ * option.fontMetrics.horizontalAdvance(u'0');
        return {std::max(text.width(), width + 2 * text_margin(list_)), text.height()};
    }

  private:
    const QWidget* list_;
    const int& columns_;
};

}  // namespace

RowList::RowList() : columns_(usual_columns) {
    setFont(monospaced_font());
    setUniformItemSizes(true);
    setSelectionMode(ExtendedSelection);
    setVerticalScrollMode(ScrollPerItem);  // the bar counts rows, whatever the style likes
    setTextElideMode(Qt::ElideNone);
    setItemDelegate(new RowDelegate(this, columns_));
    show_selection_always(*this);
}

void RowList::set_columns(int columns) {
    columns_ = columns;
    doItemsLayout();
    updateGeometry();
}

void RowList::set_header(const QString& header) {
    header_text_ = header;
    header_ = new QWidget(this);
    header_->setAutoFillBackground(true);
    header_->setBackgroundRole(QPalette::Window);
    header_->setAttribute(Qt::WA_TransparentForMouseEvents);
    header_->installEventFilter(this);
    make_room_for_header();
}

void RowList::set_texts(const QStringList& texts) {
    if (texts.size() != count()) {
        clear();
        addItems(texts);
        return;
    }
    for (int i = 0; i < count(); ++i)
        if (item(i)->text() != texts[i]) item(i)->setText(texts[i]);
}

void RowList::highlight(const std::vector<std::int32_t>& rows) {
    QItemSelection selection;
    for (const std::int32_t row : rows) {
        const QModelIndex index = model()->index(row, 0);
        if (index.isValid()) selection.select(index, index);
    }
    selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
}

std::vector<std::int32_t> RowList::highlighted() const {
    std::vector<std::int32_t> rows;
    for (const QModelIndex& index : selectionModel()->selectedIndexes())
        rows.push_back(index.row());
    std::sort(rows.begin(), rows.end());
    return rows;
}

void RowList::set_current(int row) {
    setAutoScroll(false);
    selectionModel()->setCurrentIndex(model()->index(row, 0), QItemSelectionModel::NoUpdate);
    setAutoScroll(true);
}

// The bar counts rows. Its range is that of the rows before until they are laid out.
void RowList::set_top_row(int row) {
    doItemsLayout();
    verticalScrollBar()->setValue(row);
}

int RowList::top_row() const {
    return verticalScrollBar()->value();
}

QSize RowList::sizeHint() const {
    return size_of(fewest_rows, columns_);
}

QSize RowList::minimumSizeHint() const {
    return size_of(fewest_rows, fewest_columns);
}

QSize RowList::size_of(int rows, int columns) const {
    const int width = columns * fontMetrics().horizontalAdvance(u'0') + 2 * text_margin(this);
    const QMargins around = viewportMargins();
    return {width + 2 * frameWidth() + verticalScrollBar()->sizeHint().width(),
            rows * fontMetrics().lineSpacing() + 2 * frameWidth() + around.top()};
}

void RowList::make_room_for_header() {
    constexpr int line_below = 1;
    setViewportMargins(0, fontMetrics().height() + line_below, 0, 0);
    updateGeometry();
}

void RowList::updateGeometries() {
    QListWidget::updateGeometries();
    if (!header_) return;
    const QRect rows = viewport()->geometry();
    const int height = viewportMargins().top();
    header_->setGeometry(rows.left(), rows.top() - height, rows.width(), height);
}

void RowList::scrollContentsBy(int dx, int dy) {
    QListWidget::scrollContentsBy(dx, dy);
    if (header_) header_->update();
}

// Word by word: where the font has no Chinese characters of its own their width is
// that of another.
void RowList::paint_header() {
    QPainter painter(header_);
    painter.setFont(font());
    painter.setPen(palette().color(QPalette::WindowText));
    const int character = fontMetrics().horizontalAdvance(u'0');
    const int left = text_margin(this) - horizontalOffset();
    int column = 0;
    for (const QString& word : header_text_.split(u' ')) {
        painter.drawText(left + column * character, fontMetrics().ascent(), word);
        for (const QChar each : word) column += columns_of(each);
        ++column;  // the blank behind it
    }
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawLine(0, header_->height() - 1, header_->width(), header_->height() - 1);
}

bool RowList::eventFilter(QObject* watched, QEvent* event) {
    if (watched != header_) return QListWidget::eventFilter(watched, event);
    if (event->type() == QEvent::Paint) paint_header();
    return false;
}

void RowList::copy_rows() const {
    QString lines;
    for (const std::int32_t row : highlighted()) lines += item(row)->text() + u'\n';
    if (!lines.isEmpty()) QGuiApplication::clipboard()->setText(lines);
}

void RowList::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Copy)) return copy_rows();
    QListWidget::keyPressEvent(event);
}

void RowList::changeEvent(QEvent* event) {
    QListWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange && header_) make_room_for_header();
    if (event->type() == QEvent::PaletteChange) show_selection_always(*this);
}

}  // namespace vkm
