#include "platform/qt/fields.h"

#include <QEvent>
#include <QPainter>
#include <QScrollBar>
#include <QTextBlock>
#include <algorithm>
#include <cmath>

#include "platform/qt/disabled_colours.h"
#include "platform/qt/fonts.h"
#include "platform/qt/selection_colours.h"
#include "platform/qt/text_mapping.h"

namespace vkm {
namespace {

// A line takes whole pixels above and below its ground line.
int row_height(const QFontMetricsF& font) {
    return static_cast<int>(std::ceil(font.ascent()) + std::ceil(font.descent()) +
                            std::ceil(font.leading()));
}

}  // namespace

void Field::set_columns(int columns) {
    columns_ = columns;
    setSizePolicy(columns > 0 ? QSizePolicy::Fixed : QSizePolicy::Expanding, QSizePolicy::Fixed);
    updateGeometry();
}

QSize Field::sizeHint() const {
    const QSize usual = QLineEdit::sizeHint();
    if (columns_ == 0) return usual;
    // What the frame and the margins take is what is left of a box of no column.
    const int around = QLineEdit::minimumSizeHint().width() - fontMetrics().maxWidth();
    const int text = fontMetrics().horizontalAdvance(QString(columns_ + 1, u'0'));
    return {text + around, usual.height()};
}

QSize Field::minimumSizeHint() const {
    return columns_ == 0 ? QLineEdit::minimumSizeHint() : sizeHint();
}

void Field::changeEvent(QEvent* event) {
    QLineEdit::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) darken_locked_text();
}

// Setting a palette is told as a change of it: the second time there is nothing to do.
void Field::darken_locked_text() {
    constexpr double strength = 0.7;  // of the colour of free text, on the ground behind it
    const QPalette colours = with_disabled_texts(palette(), strength);
    if (colours != palette()) setPalette(colours);
}

TextView::TextView() {
    setFont(monospaced_font());
    setReadOnly(true);
    setUndoRedoEnabled(false);
    setTabChangesFocus(true);
    setLineWrapMode(QPlainTextEdit::NoWrap);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
}

void TextView::allow_typing() {
    setReadOnly(false);
    setUndoRedoEnabled(true);
}

void TextView::draw_text(std::string_view text, std::size_t unchanged) {
    if (unchanged == 0) return setPlainText(widget_lines(text));
    // A break that came in two pieces was drawn with its first one.
    if (text.substr(unchanged - 1).starts_with("\r\n")) ++unchanged;
    QTextCursor end(document());
    end.movePosition(QTextCursor::End);
    end.insertText(widget_lines(text.substr(unchanged)));
}

std::string TextView::drawn_text() const {
    return record_lines(toPlainText());
}

void TextView::set_size_in_characters(int rows, int columns) {
    rows_ = rows;
    columns_ = columns;
    updateGeometry();
}

QSize TextView::minimumSizeHint() const {
    const int margin = static_cast<int>(document()->documentMargin());
    const int around = 2 * (frameWidth() + margin);
    // Below this the toolkit begins to scroll, which a box that is typed into must not.
    const int beyond = isReadOnly() ? 0 : margin + 1;
    const int width = columns_ * fontMetrics().horizontalAdvance(u'0');
    return {width + around + verticalScrollBar()->sizeHint().width(),
            rows_ * row_height(QFontMetricsF(font())) + around + beyond};
}

int TextView::rows_in_sight() const {
    const double line = blockBoundingRect(document()->firstBlock()).height();
    const double room = viewport()->height() - document()->documentMargin();
    return line > 0 ? static_cast<int>(std::max(room, 0.0) / line) : 0;
}

void TextView::keep_selection_visible() {
    selection_always_ = true;
    show_selection_always(*this);
}

void TextView::resizeEvent(QResizeEvent* event) {
    QPlainTextEdit::resizeEvent(event);
    on_resize();
}

void TextView::changeEvent(QEvent* event) {
    QPlainTextEdit::changeEvent(event);
    if (event->type() == QEvent::FontChange) on_resize();
    if (event->type() == QEvent::PaletteChange && selection_always_) show_selection_always(*this);
}

Readout::Readout(const QString& widest, Qt::Alignment side) : widest_(widest) {
    setTextFormat(Qt::PlainText);
    setAlignment(side | Qt::AlignVCenter);
    fix_size();
}

void Readout::changeEvent(QEvent* event) {
    QLabel::changeEvent(event);
    if (event->type() == QEvent::FontChange) fix_size();
}

void Readout::fix_size() {
    setFixedSize(fontMetrics().horizontalAdvance(widest_), fontMetrics().height());
}

OneLine::OneLine() {
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
}

void OneLine::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QString fitting = fontMetrics().elidedText(text(), Qt::ElideMiddle, width());
    painter.drawText(rect(), Qt::AlignLeft | Qt::AlignVCenter, fitting);
}

void ColumnLabel::align(const QList<ColumnLabel*>& column) {
    for (ColumnLabel* label : column) label->column_ = column;
}

QSize ColumnLabel::sizeHint() const {
    QSize size = QLabel::sizeHint();
    for (const ColumnLabel* label : column_)
        size.setWidth(std::max(size.width(), label->QLabel::sizeHint().width()));
    return size;
}

// Layouts keep the width that a label told them: the others have to be asked anew.
void ColumnLabel::resizeEvent(QResizeEvent* event) {
    QLabel::resizeEvent(event);
    for (ColumnLabel* label : column_)
        if (label->width() != width()) label->updateGeometry();
}

void Group::set_caption(const QString& caption) {
    caption_ = caption;
    fit_title();
}

// What the content needs; the title takes what it gets.
QSize Group::minimumSizeHint() const {
    return QWidget::minimumSizeHint();
}

void Group::resizeEvent(QResizeEvent* event) {
    QGroupBox::resizeEvent(event);
    fit_title();
}

void Group::changeEvent(QEvent* event) {
    QGroupBox::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) fit_title();
}

void Group::fit_title() {
    const int room = width() - 2 * fontMetrics().averageCharWidth();
    const QString fitting = fontMetrics().elidedText(caption_, Qt::ElideMiddle, room);
    // An ampersand in a path is no mnemonic.
    setTitle(QString(fitting).replace(u'&', QLatin1String("&&")));
    setToolTip(fitting == caption_ ? QString() : caption_);
}

}  // namespace vkm
