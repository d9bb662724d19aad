// Decimal numbers: out of texts, into texts, and rounded.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace vkm {

// The number that a text begins with: leading blanks are passed over, then
// sign, digits and a decimal point are read up to the first other character.
// A text without a number is 0. The result is always finite.
double leading_number(std::string_view text);

// Its whole part, held within 32 bits.
std::int32_t leading_integer(std::string_view text);

// Rounded to the nearest whole number, halves to the even one, held within 32 bits.
std::int32_t round_half_even(double value);

// A number in the shortest decimal form that reads back the same: "11.0592", "24".
std::string shortest_decimal(double value);

// Kilobytes as "####.000" shows them: three decimals, at least one digit before
// the point, for example "0.125" for 128 bytes.
std::string kilobytes(std::int64_t bytes);

// A length of time as "mm:ss". Only the last two digits of the minutes are
// kept, so 100 minutes show as "00:00".
std::string minutes_seconds(std::int64_t seconds);

}  // namespace vkm
