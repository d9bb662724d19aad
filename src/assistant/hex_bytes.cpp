#include "assistant/hex_bytes.h"

#include <algorithm>

#include "text/hexadecimal.h"
#include "text/trimming.h"

namespace vkm {
namespace {

constexpr std::size_t digits_of_byte = 2;

bool belongs_to_hex(char c) {
    return c == ' ' || hex_digit(c) >= 0;
}

}  // namespace

Hex_Bytes read_hex_bytes(std::string_view text) {
    const std::string capitals = upper_case(trimmed(text));
    Hex_Bytes read;
    const auto bad = std::ranges::find_if_not(capitals, belongs_to_hex);
    if (bad != capitals.end()) {
        // What stands before it is ASCII, so that its place counts characters.
        const auto at = static_cast<std::size_t>(bad - capitals.begin());
        read.bad_at = at + 1;
        read.bad_character = first_characters(std::string_view(capitals).substr(at), 1);
        return read;
    }
    std::string_view rest = capitals;
    while (!rest.empty() && read.bytes.size() < most_hex_bytes) {
        const std::string_view pair = trimmed(rest.substr(0, digits_of_byte));
        read.bytes.push_back(static_cast<std::uint8_t>(hex_field(pair, digits_of_byte)));
        rest = trimmed(rest.substr(std::min(digits_of_byte, rest.size())));
    }
    return read;
}

}  // namespace vkm
