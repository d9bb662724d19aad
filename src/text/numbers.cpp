#include "text/numbers.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iterator>
#include <limits>

#include "text/trimming.h"

namespace vkm {
namespace {

std::int32_t within_32_bits(double value) {
    constexpr double low = std::numeric_limits<std::int32_t>::min();
    constexpr double high = std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(std::clamp(value, low, high));
}

bool is_digit(char c) {
    return c >= '0' && c <= '9';
}

// What a double can't hold: a number too great for it is the greatest that there is,
// and one too near to 0 is 0.
double held(std::string_view number) {
    const std::string_view whole = number.substr(0, number.find('.'));
    if (whole.find_first_of("123456789") == std::string_view::npos) return 0;
    const double greatest = std::numeric_limits<double>::max();
    return number.front() == '-' ? -greatest : greatest;
}

}  // namespace

double leading_number(std::string_view text) {
    text = trimmed(text);
    // from_chars knows no plus sign, and knows "inf" and "nan", which are no numbers here.
    if (!text.empty() && text.front() == '+') text.remove_prefix(1);
    std::size_t length = 0;
    if (length < text.size() && text[length] == '-') ++length;
    while (length < text.size() && (is_digit(text[length]) || text[length] == '.')) ++length;
    double value = 0;
    const auto read =
        std::from_chars(text.data(), text.data() + length, value, std::chars_format::fixed);
    if (read.ec == std::errc::result_out_of_range) return held(text.substr(0, length));
    return read.ec == std::errc() ? value : 0;
}

std::int32_t leading_integer(std::string_view text) {
    return within_32_bits(std::trunc(leading_number(text)));
}

std::int32_t round_half_even(double value) {
    if (std::isnan(value)) return 0;
    const double below = std::floor(value);
    const double above_by = value - below;
    if (above_by < 0.5) return within_32_bits(below);
    if (above_by > 0.5) return within_32_bits(below + 1);
    return within_32_bits(std::fmod(below, 2) == 0 ? below : below + 1);
}

std::string shortest_decimal(double value) {
    char digits[400];  // the longest fixed form of a double has about 330 characters
    const auto written =
        std::to_chars(std::begin(digits), std::end(digits), value, std::chars_format::fixed);
    return written.ec == std::errc() ? std::string(digits, written.ptr) : std::string();
}

std::string kilobytes(std::int64_t bytes) {
    // to_chars writes a point whatever the locale says.
    char digits[40];
    const auto written =
        std::to_chars(std::begin(digits), std::end(digits), static_cast<double>(bytes) / 1024.0,
                      std::chars_format::fixed, 3);
    return std::string(digits, written.ptr);
}

std::string minutes_seconds(std::int64_t seconds) {
    seconds = std::max<std::int64_t>(seconds, 0);
    const auto two_digits = [](std::int64_t n) {
        std::string digits = std::to_string(n % 100);
        if (digits.size() < 2) digits.insert(digits.begin(), '0');
        return digits;
    };
    return two_digits(seconds / 60) + ":" + two_digits(seconds % 60);
}

}  // namespace vkm
