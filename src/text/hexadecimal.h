// Hexadecimal fields as the operator types them and as the screens show them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace vkm {

// The value of one hexadecimal digit of either case, -1 for any other character.
int hex_digit(char c);

// How many digits a field is read by.
inline constexpr std::size_t address_digits = 4;  // start addresses, ranges
inline constexpr std::size_t length_digits = 5;   // lengths, number addresses

// A hexadecimal field: trimmed, zeros put in front, the last `digits`
// characters read as unsigned. Reading ends at the first character that is no
// hexadecimal digit; a field without a digit is 0.
std::uint32_t hex_field(std::string_view text, std::size_t digits);

// Upper-case hexadecimal digits of a value, with zeros in front up to `digits`.
std::string hex_text(std::uint64_t value, std::size_t digits = 1);

}  // namespace vkm
