// A number as the bytes of an image: hexadecimal, packed decimal or ASCII digits.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "increase/increase_set.h"

namespace vkm {

// The values of Numeral.
inline constexpr std::int32_t numeral_hexadecimal = 0;
inline constexpr std::int32_t numeral_packed = 1;  // two decimal digits to the byte
inline constexpr std::int32_t numeral_ascii = 2;   // one ASCII digit to the byte

struct NumberBytes {
    // Length bytes, lowest-order first: they go to Address and downward.
    std::vector<std::uint8_t> bytes;
    std::string_view problem;  // why there are none, for the operator; empty when there are
};

// What Next_Value is in the image. An empty Next_Value is 0.
NumberBytes number_bytes(const Auto_Increase_Set& set);

// The text of Next_Value after one more chip: Next_Value + Increase, filled up with
// zeros or cut to the width of the format, so that packed and ASCII numbers start
// again at 0 behind their top.
std::string next_number(const Auto_Increase_Set& set);

// A number of 0 is not counted up.
bool counts_up(const Auto_Increase_Set& set);

}  // namespace vkm
