// A page of an image as hexadecimal text.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace vkm {

inline constexpr std::int64_t bytes_per_row = 16;
inline constexpr std::int64_t rows_per_page = 62;  // 992 bytes; a page has no more

// One row: a blank, six digits of address, three blanks, two digits and a blank
// for each byte from `first` to `last`, CR LF. A full row has 58 characters
// before its line end.
std::string hex_row(std::span<const std::uint8_t> bytes, std::int64_t first, std::int64_t last);

// The rows that hold `first` to `last`, beginning at the multiple of 16 at or
// below `first`, at most so many of them, behind two line breaks. What lies
// outside the array isn't shown; without a byte to show there are no rows.
std::string hex_page(std::span<const std::uint8_t> bytes, std::int64_t first, std::int64_t last,
                     std::int64_t rows = rows_per_page);

// Where the digits of `length` bytes from `address` on stand in such a page, from
// the first digit to the last. Nothing when the first of them isn't on the page. A
// number that ends a row takes in the line break behind it.
struct PagePlace {
    std::int32_t start = 0;
    std::int32_t length = 0;
};
std::optional<PagePlace> place_in_page(std::string_view page, std::int64_t first,
                                       std::int64_t address, std::int32_t length);

}  // namespace vkm
