// Lines of any length in rows that fit a width.
#pragma once

#include <QFont>
#include <QFontMetricsF>
#include <QStringList>
#include <array>
#include <unordered_map>

namespace vkm {

// A row is as full as it gets, but two hexadecimal digits behind a blank are in one row. Of what
// ends a row one blank may stand beyond its edge.
//
// Rows that are followed by another stay as they are when the line grows.
class RowBreaker {
  public:
    // Widths in pixels: of a row, and between the stops of the tabulator.
    RowBreaker(const QFont& font, double room, double tab_distance);

    // At least one row; together they are the line.
    QStringList rows_of(const QString& line);

  private:
    double advance(QStringView line, qsizetype at, double x);
    double width_of_character(char32_t character);

    static constexpr std::size_t ascii_count = 128;

    QFontMetricsF metrics_;
    double room_;
    double tab_distance_;
    std::array<double, ascii_count> ascii_{};
    std::unordered_map<char32_t, double> others_;  // as they come
};

}  // namespace vkm
