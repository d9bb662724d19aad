// A page of an image as hexadecimal text.
#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace vkm {

inline constexpr std::int64_t bytes_per_row = 16;
inline constexpr std::int64_t rows_per_page = 62;  // 992 bytes; the text box holds no more

// One row: a blank, six digits of address, three blanks, two digits and a blank
// for each byte from `first` to `last`, CR LF. A full row has 58 characters
// before its line end.
std::string hex_row(std::span<const std::uint8_t> bytes, std::int64_t first, std::int64_t last);

// The rows that hold `first` to `last`, beginning at the multiple of 16 at or
// below `first`, at most a page of them, behind two line breaks. What lies
// outside the array isn't shown; without a byte to show there are no rows.
std::string hex_page(std::span<const std::uint8_t> bytes, std::int64_t first, std::int64_t last);

}  // namespace vkm
