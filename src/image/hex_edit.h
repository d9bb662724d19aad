// Overwriting digits in a page of hexadecimal text (hex_page.h). Positions count
// characters; an insertion point stands before the character of its number.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace vkm {

// True when the insertion point stands before a digit of a byte: one of two digits
// between blanks. The digits of the address are none, nor is a line break a blank.
bool stands_on_digit(std::string_view page, std::int32_t place);

// The first such place at or behind this one; the end of the text when there is none.
std::int32_t next_digit(std::string_view page, std::int32_t place);

struct PageByte {
    std::int32_t address = 0;
    std::uint8_t value = 0;
};

// The byte one of whose digits stands directly before this place, as the text shows
// it. Nothing when there is none.
std::optional<PageByte> byte_before(std::string_view page, std::int32_t place);

}  // namespace vkm
