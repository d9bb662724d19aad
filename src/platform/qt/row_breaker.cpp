#include "platform/qt/row_breaker.h"

#include <cmath>

namespace vkm {
namespace {

// Below what the toolkit counts in.
constexpr double nothing = 1.0 / 128;

bool is_hex_digit(QChar character) {
    const char16_t code = character.toUpper().unicode();
    return (code >= u'0' && code <= u'9') || (code >= u'A' && code <= u'F');
}

bool is_long_at(QStringView line, qsizetype at) {
    return line[at].isHighSurrogate() && at + 1 < line.size() && line[at + 1].isLowSurrogate();
}

// Where the row from `start` ends whose character `at` finds no room. What comes behind
// that one doesn't count: it may not have arrived.
qsizetype end_of_row(QStringView line, qsizetype start, qsizetype at) {
    const bool second_digit = at - 1 > start && line[at - 2] == u' ' &&
                              is_hex_digit(line[at - 1]) && is_hex_digit(line[at]);
    return second_digit ? at - 1 : at;
}

}  // namespace

RowBreaker::RowBreaker(const QFont& font, double room, double tab_distance)
    : metrics_(font), room_(room), tab_distance_(tab_distance) {
    for (std::size_t i = 0; i < ascii_count; ++i)
        ascii_[i] = metrics_.horizontalAdvance(QChar(static_cast<char16_t>(i)));
}

double RowBreaker::width_of_character(char32_t character) {
    if (character < ascii_count) return ascii_[character];
    const auto known = others_.find(character);
    if (known != others_.end()) return known->second;
    const double width = metrics_.horizontalAdvance(QString::fromUcs4(&character, 1));
    others_.emplace(character, width);
    return width;
}

double RowBreaker::advance(QStringView line, qsizetype at, double x) {
    if (line[at] == u'\t' && tab_distance_ > 0)
        return (std::floor(x / tab_distance_) + 1) * tab_distance_ - x;
    if (is_long_at(line, at))
        return width_of_character(QChar::surrogateToUcs4(line[at], line[at + 1]));
    return width_of_character(line[at].unicode());
}

QStringList RowBreaker::rows_of(const QString& line) {
    QStringList rows;
    qsizetype start = 0;
    double x = 0;
    for (qsizetype at = 0; at < line.size();) {
        const double width = advance(line, at, x);
        const bool fits =
            x + width <= room_ + nothing || (line[at] == u' ' && x <= room_ + nothing);
        if (!fits && at > start) {
            const qsizetype end = end_of_row(line, start, at);
            rows.append(line.mid(start, end - start));
            at = start = end;
            x = 0;
            continue;
        }
        x += width;
        at += is_long_at(line, at) ? 2 : 1;
    }
    rows.append(line.mid(start));
    return rows;
}

}  // namespace vkm
