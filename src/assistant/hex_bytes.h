// Bytes that the operator has written as hexadecimal digits: "12 34 AB CD FF".
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace vkm {

// No more bytes than these are sent at once.
inline constexpr std::size_t most_hex_bytes = 4097;

struct Hex_Bytes {
    std::vector<std::uint8_t> bytes;
    // The first character that is neither a blank nor a digit, in capitals, and its place
    // counted from 1; 0 when there is none.
    std::size_t bad_at = 0;
    std::string bad_character;
};

// Blanks at the ends don't count. Two digits make a byte, with or without blanks
// between the bytes; a digit that stands alone is a byte too.
Hex_Bytes read_hex_bytes(std::string_view text);

}  // namespace vkm
