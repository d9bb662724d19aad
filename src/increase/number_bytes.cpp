#include "increase/number_bytes.h"

#include <algorithm>

#include "increase/increase_texts.h"
#include "text/hexadecimal.h"
#include "text/numbers.h"

namespace vkm {
namespace {

constexpr double greatest_number = 2147483647;
constexpr std::int32_t most_hexadecimal_bytes = 4;
constexpr std::int32_t most_decimal_bytes = 10;
constexpr std::string_view zeros = "000000000000000";  // what a text is filled up with

bool is_digit(char c) {
    return c >= '0' && c <= '9';
}

// The last `width` characters; none for a width below 1.
std::string last_characters(std::string_view text, std::int32_t width) {
    const auto kept = static_cast<std::size_t>(std::max(width, 0));
    return std::string(text.substr(text.size() - std::min(text.size(), kept)));
}

std::string filled_up(std::string_view text, std::int32_t width) {
    return last_characters(std::string(zeros) + std::string(text), width);
}

// Decimal digits, cut to what the bytes hold. A cut that loses value is a problem.
struct Digits {
    std::string text;
    std::string_view problem;
};

Digits hexadecimal_digits(const Auto_Increase_Set& set, double value) {
    std::string text = hex_text(static_cast<std::uint64_t>(value));
    if (static_cast<std::int64_t>(text.size()) > std::int64_t{set.Length} * 2)
        return {{}, increase_text::too_few_bytes};
    if (set.Length > most_hexadecimal_bytes) return {{}, increase_text::too_many_hexadecimal};
    return {"00000000" + text, {}};
}

Digits decimal_digits(const Auto_Increase_Set& set, double value) {
    const std::int32_t width = set.Numeral == numeral_packed ? set.Length * 2 : set.Length;
    std::string text = filled_up(set.Next_Value, width);
    if (leading_number(text) < value) return {{}, increase_text::too_few_bytes};
    if (set.Length > most_decimal_bytes) return {{}, increase_text::too_many_decimal};
    return {std::move(text), {}};
}

// Each decimal digit becomes the two digits of its ASCII code.
std::string ascii_codes(std::string_view digits) {
    std::string codes;
    for (const char digit : digits) {
        codes += '3';
        codes += digit;
    }
    return codes;
}

// A pair of digits; where the text is used up there are zeros.
std::uint8_t pair_at_end(std::string_view digits) {
    int value = 0;
    for (const char c : last_characters(digits, 2)) value = value * 16 + hex_digit(c);
    return static_cast<std::uint8_t>(value);
}

// As many decimal digits as so many bytes can need, and one to spare.
std::int32_t decimal_width_of_bytes(std::int32_t length) {
    return static_cast<std::int32_t>(length * 241 / 100.0 + 1.5);
}

std::int32_t field_width(const Auto_Increase_Set& set) {
    switch (set.Numeral) {
        case numeral_hexadecimal:
            return decimal_width_of_bytes(set.Length);
        case numeral_packed:
            return set.Length * 2;
        default:
            return set.Length;
    }
}

}  // namespace

NumberBytes number_bytes(const Auto_Increase_Set& set) {
    if (!std::ranges::all_of(set.Next_Value, is_digit)) return {{}, increase_text::not_decimal};
    const double value = leading_number(set.Next_Value);
    if (value > greatest_number) return {{}, increase_text::too_great};
    const Digits digits = set.Numeral == numeral_hexadecimal ? hexadecimal_digits(set, value)
                                                             : decimal_digits(set, value);
    if (!digits.problem.empty()) return {{}, digits.problem};
    std::string text = set.Numeral == numeral_ascii ? ascii_codes(digits.text) : digits.text;
    NumberBytes number;
    for (std::int32_t i = 0; i < set.Length; ++i) {
        number.bytes.push_back(pair_at_end(text));
        text.resize(text.size() - std::min<std::size_t>(text.size(), 2));
    }
    return number;
}

std::string next_number(const Auto_Increase_Set& set) {
    const double sum = leading_number(set.Next_Value) + set.Increase;
    return filled_up(shortest_decimal(sum), field_width(set));
}

bool counts_up(const Auto_Increase_Set& set) {
    return leading_number(set.Next_Value) != 0;
}

}  // namespace vkm
