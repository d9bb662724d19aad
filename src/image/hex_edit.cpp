#include "image/hex_edit.h"

#include <algorithm>

#include "text/hexadecimal.h"

namespace vkm {
namespace {

constexpr std::string_view before_bytes = "   ";  // between a row's address and its bytes
constexpr std::int32_t address_width = 5;         // digits read; no image needs the sixth
// So far back a row's address is found from any of its digits, and no address of the
// row before.
constexpr std::int32_t reach_back = 59;
constexpr std::int32_t byte_width = 3;

char at(std::string_view page, std::int32_t place) {
    const bool inside = place >= 0 && place < static_cast<std::int32_t>(page.size());
    return inside ? page[static_cast<std::size_t>(place)] : '\0';
}

bool is_pair(std::string_view page, std::int32_t first) {
    return at(page, first - 1) == ' ' && hex_digit(at(page, first)) >= 0 &&
           hex_digit(at(page, first + 1)) >= 0 && at(page, first + 2) == ' ';
}

std::uint32_t hex_value(std::string_view text) {
    std::uint32_t value = 0;
    for (const char c : text)
        if (hex_digit(c) >= 0) value = value * 16 + static_cast<std::uint32_t>(hex_digit(c));
    return value;
}

}  // namespace

bool stands_on_digit(std::string_view page, std::int32_t place) {
    return is_pair(page, place) || is_pair(page, place - 1);
}

std::int32_t next_digit(std::string_view page, std::int32_t place) {
    const auto end = static_cast<std::int32_t>(page.size());
    place = std::clamp(place, 0, end);
    while (place < end && !stands_on_digit(page, place)) ++place;
    return place;
}

std::optional<PageByte> byte_before(std::string_view page, std::int32_t place) {
    if (!stands_on_digit(page, place - 1)) return std::nullopt;
    const auto back = static_cast<std::size_t>(std::min(place, reach_back));
    const std::string_view tail = page.substr(static_cast<std::size_t>(place) - back, back);
    const std::size_t gap = tail.find(before_bytes);
    if (gap == std::string_view::npos || gap < address_width) return std::nullopt;
    const std::uint32_t row = hex_value(tail.substr(gap - address_width, address_width));
    const auto digits_behind_gap = static_cast<std::int32_t>(back - gap);
    const std::int32_t number = digits_behind_gap / byte_width - 1;
    const std::string_view pair = page.substr(static_cast<std::size_t>(place) - 2, byte_width);
    return PageByte{static_cast<std::int32_t>(row) + number,
                    static_cast<std::uint8_t>(hex_value(pair))};
}

}  // namespace vkm
