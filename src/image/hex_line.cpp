#include "image/hex_line.h"

#include <algorithm>

#include "text/hexadecimal.h"
#include "text/numbers.h"

namespace vkm {
namespace {

// Field 0 is the length, 1 and 2 the address, 3 the type.
constexpr std::int32_t first_data_field = 4;

std::string_view pair_at(std::string_view digits, std::int32_t field) {
    const std::size_t at = static_cast<std::size_t>(field) * 2;
    return at < digits.size() ? digits.substr(at, 2) : std::string_view();
}

// A pair that isn't hexadecimal is 0; a last pair of one digit is that digit.
std::uint8_t pair_value(std::string_view pair) {
    int value = 0;
    for (char c : pair) {
        const int digit = hex_digit(c);
        if (digit < 0) return 0;
        value = value * 16 + digit;
    }
    return static_cast<std::uint8_t>(value);
}

bool has_hex_digit(std::string_view pair) {
    return std::ranges::any_of(pair, [](char c) { return hex_digit(c) >= 0; });
}

}  // namespace

HexLine read_hex_line(std::string_view digits, std::size_t length) {
    HexLine line;
    // The last field before the checksum. A line of odd length goes to the even number.
    const std::int32_t last =
        std::min(round_half_even(static_cast<double>(length) / 2 - 2), hex_line_fields);
    line.Last_Data_Field = std::min(last, hex_line_fields - 1);
    std::uint8_t sum = 0;
    for (std::int32_t i = 0; i <= line.Last_Data_Field; ++i) {
        const std::uint8_t value = pair_value(pair_at(digits, i));
        line.Fields[static_cast<std::size_t>(i)] = value;
        sum = static_cast<std::uint8_t>(sum + value);
    }
    const std::int32_t checksum_field = last + 1;
    if (checksum_field >= hex_line_fields) return line;
    const std::string_view checksum_pair =
        checksum_field < 0 ? std::string_view() : pair_at(digits, checksum_field);
    const std::uint8_t checksum = pair_value(checksum_pair);
    if (checksum_field >= 0) line.Fields[static_cast<std::size_t>(checksum_field)] = checksum;
    line.Good = has_hex_digit(checksum_pair) && sum == static_cast<std::uint8_t>(256 - checksum);
    return line;
}

std::span<const std::uint8_t> record_data(const HexLine& line) {
    const std::int32_t count = line.Last_Data_Field - first_data_field + 1;
    if (count <= 0) return {};
    return std::span(line.Fields).subspan(first_data_field, static_cast<std::size_t>(count));
}

}  // namespace vkm
