#include "image/hex_page.h"

#include <algorithm>
#include <cstddef>

#include "text/hexadecimal.h"

namespace vkm {
namespace {

constexpr std::size_t row_length = 60;  // 58 characters and CR LF
constexpr std::string_view page_head = "\r\n\r\n";
constexpr std::int64_t row_head = 10;  // blank, address, three blanks
constexpr std::int64_t byte_width = 3;
// From the last digits of a row to the first ones of the next it is so much farther.
constexpr std::int32_t wrap_width = 12;

}  // namespace

std::string hex_row(std::span<const std::uint8_t> bytes, std::int64_t first, std::int64_t last) {
    constexpr char digits[] = "0123456789ABCDEF";
    std::string row;
    row.reserve(row_length);
    row.append(1, ' ').append(hex_text(static_cast<std::uint64_t>(first), 6)).append(3, ' ');
    for (std::int64_t address = first; address <= last; ++address) {
        const std::uint8_t byte = bytes[static_cast<std::size_t>(address)];
        row += digits[byte >> 4];
        row += digits[byte & 15];
        row += ' ';
    }
    return row += "\r\n";
}

std::string hex_page(std::span<const std::uint8_t> bytes, std::int64_t first, std::int64_t last,
                     std::int64_t rows) {
    std::string text(page_head);
    if (first < 0) return text;
    std::int64_t address = first - first % bytes_per_row;
    last = std::min(
        {last, address + rows * bytes_per_row - 1, static_cast<std::int64_t>(bytes.size()) - 1});
    text.reserve(text.size() + rows_per_page * row_length);
    for (; address <= last; address += bytes_per_row)
        text += hex_row(bytes, address, std::min(address + bytes_per_row - 1, last));
    return text;
}

std::optional<PagePlace> place_in_page(std::string_view page, std::int64_t first,
                                       std::int64_t address, std::int32_t length) {
    const std::int64_t begin = first - first % bytes_per_row;
    if (first < 0 || address < begin || length <= 0) return std::nullopt;
    const std::int64_t column = address % bytes_per_row;
    const std::int64_t start = static_cast<std::int64_t>(page_head.size()) +
                               (address - begin) / bytes_per_row * std::int64_t{row_length} +
                               row_head + column * byte_width;
    // Behind the last byte of the page there is no digit.
    if (start + 1 >= static_cast<std::int64_t>(page.size())) return std::nullopt;
    if (hex_digit(page[static_cast<std::size_t>(start)]) < 0) return std::nullopt;
    PagePlace place = {static_cast<std::int32_t>(start), length * std::int32_t{byte_width} - 1};
    if (column + length > bytes_per_row - 1) place.length += wrap_width;
    return place;
}

}  // namespace vkm
