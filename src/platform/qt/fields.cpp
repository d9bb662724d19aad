#include "platform/qt/fields.h"

#include <QEvent>
#include <QScrollBar>
#include <QTextBlock>
#include <algorithm>

#include "platform/qt/fonts.h"

namespace vkm {

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
    QPalette colours = palette();
    const QColor text = colours.color(QPalette::Active, QPalette::Text);
    const QColor ground = colours.color(QPalette::Disabled, QPalette::Base);
    const auto mixed = [&](int of_text, int of_ground) {
        return static_cast<int>(strength * of_text + (1 - strength) * of_ground);
    };
    colours.setColor(QPalette::Disabled, QPalette::Text,
                     QColor(mixed(text.red(), ground.red()), mixed(text.green(), ground.green()),
                            mixed(text.blue(), ground.blue())));
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

void TextView::set_size_in_characters(int rows, int columns) {
    rows_ = rows;
    columns_ = columns;
    updateGeometry();
}

QSize TextView::minimumSizeHint() const {
    const int margins = 2 * (frameWidth() + static_cast<int>(document()->documentMargin()));
    const int width = columns_ * fontMetrics().horizontalAdvance(u'0');
    return {width + margins + verticalScrollBar()->sizeHint().width(),
            rows_ * fontMetrics().lineSpacing() + margins};
}

int TextView::rows_in_sight() const {
    const double line = blockBoundingRect(document()->firstBlock()).height();
    const double room = viewport()->height() - document()->documentMargin();
    return line > 0 ? static_cast<int>(std::max(room, 0.0) / line) : 0;
}

void TextView::show_selection_always() {
    selection_always_ = true;
    copy_selection_colours();
}

void TextView::resizeEvent(QResizeEvent* event) {
    QPlainTextEdit::resizeEvent(event);
    on_resize();
}

void TextView::changeEvent(QEvent* event) {
    QPlainTextEdit::changeEvent(event);
    if (event->type() == QEvent::FontChange) on_resize();
    if (event->type() == QEvent::PaletteChange && selection_always_) copy_selection_colours();
}

// Setting a palette is told as a change of it: the second time there is nothing to do.
void TextView::copy_selection_colours() {
    QPalette colours = palette();
    for (const auto role : {QPalette::Highlight, QPalette::HighlightedText})
        colours.setBrush(QPalette::Inactive, role, colours.brush(QPalette::Active, role));
    if (colours != palette()) setPalette(colours);
}

Readout::Readout(int columns) : columns_(columns) {
    setTextFormat(Qt::PlainText);
    setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    fix_size();
}

void Readout::changeEvent(QEvent* event) {
    QLabel::changeEvent(event);
    if (event->type() == QEvent::FontChange) fix_size();
}

void Readout::fix_size() {
    setFixedSize(fontMetrics().horizontalAdvance(QString(columns_, u'0')), fontMetrics().height());
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
