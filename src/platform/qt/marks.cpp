#include "platform/qt/marks.h"

#include <QPainter>
#include <QStyleOptionButton>
#include <algorithm>

#include "session/session_state.h"

namespace vkm {
namespace {

bool is_dark(const QPalette& palette) {
    return palette.color(QPalette::Window).lightness() <
           palette.color(QPalette::WindowText).lightness();
}

// Green, red and amber that keep their contrast on either ground.
struct Colour {
    QRgb on_light;
    QRgb on_dark;
};
constexpr Colour green = {0xff1b7a2f, 0xff5fd47a};
constexpr Colour red = {0xffc01c28, 0xffff7b72};
constexpr Colour amber = {0xff9a5b00, 0xffffc44d};

QColor shade(const Colour& colour, const QPalette& palette) {
    return QColor(is_dark(palette) ? colour.on_dark : colour.on_light);
}

QColor verdict_colour(int result, const QPalette& palette) {
    switch (static_cast<Job_Result>(result)) {
        case Job_Result::done:
            return shade(green, palette);
        case Job_Result::failed:
            return shade(red, palette);
        case Job_Result::stopped:
            return shade(amber, palette);
        default:
            return palette.color(QPalette::WindowText);
    }
}

// How much larger than the window's text the word and the line below it are.
constexpr double word_alone = 1.9;
constexpr double word_above = 1.5;
constexpr double below = 1.0;
constexpr double step = 0.1;

QFont scaled(QFont font, double factor) {
    font.setBold(true);
    font.setPointSizeF(font.pointSizeF() * factor);
    return font;
}

// The text in the largest font, up to the factor, in which it fits the width.
void draw_line(QPainter& painter, const QFont& font, double factor, const QRect& room,
               const QString& text) {
    while (factor > below &&
           QFontMetrics(scaled(font, factor)).horizontalAdvance(text) > room.width())
        factor -= step;
    painter.setFont(scaled(font, factor));
    painter.drawText(room, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextDontClip, text);
}

}  // namespace

AccentButton::AccentButton() {
    QFont bold = font();
    bold.setBold(true);
    setFont(bold);
}

void AccentButton::initStyleOption(QStyleOptionButton* option) const {
    QPushButton::initStyleOption(option);
    if (!isEnabled()) return;
    option->palette.setColor(QPalette::Button, option->palette.color(QPalette::Highlight));
    option->palette.setColor(QPalette::ButtonText,
                             option->palette.color(QPalette::HighlightedText));
}

VerdictMark::VerdictMark() {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
}

void VerdictMark::set_result(int result) {
    result_ = result;
    update();
}

QSize VerdictMark::sizeHint() const {
    const QFontMetrics word(scaled(font(), word_above));
    return {word.averageCharWidth() * 12,
            word.height() + QFontMetrics(scaled(font(), below)).height()};
}

void VerdictMark::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setPen(verdict_colour(result_, palette()));
    const auto colon = text().indexOf(QLatin1String(": "));
    if (colon < 0) return draw_line(painter, font(), word_alone, rect(), text());
    QRect upper = rect();
    QRect lower = rect();
    upper.setHeight(QFontMetrics(scaled(font(), word_above)).height());
    lower.setTop(upper.bottom());
    draw_line(painter, font(), word_above, upper, text().left(colon));
    draw_line(painter, font(), below, lower, text().mid(colon + 2));
}

Lamp::Lamp(bool lit) : lit_(lit) {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize Lamp::sizeHint() const {
    const int side = fontMetrics().height();
    return {side, side};
}

void Lamp::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double rim = 1.5;
    const double side = std::min(width(), height()) - 2 * rim;
    const QRectF disc((width() - side) / 2, (height() - side) / 2, side, side);
    painter.setPen(
        QPen(palette().color(lit_ ? QPalette::WindowText : QPalette::PlaceholderText), rim));
    painter.setBrush(lit_ ? QBrush(shade(green, palette())) : QBrush(Qt::NoBrush));
    painter.drawEllipse(disc);
}

}  // namespace vkm
