#include "image/hex_page.h"

#include <algorithm>
#include <cstddef>

#include "text/hexadecimal.h"

namespace vkm {
namespace {

constexpr std::size_t row_length = 60;  // 58 characters and CR LF

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

std::string hex_page(std::span<const std::uint8_t> bytes, std::int64_t first, std::int64_t last) {
    std::string text = "\r\n\r\n";
    if (first < 0) return text;
    std::int64_t address = first - first % bytes_per_row;
    last = std::min({last, address + rows_per_page * bytes_per_row - 1,
                     static_cast<std::int64_t>(bytes.size()) - 1});
    text.reserve(text.size() + rows_per_page * row_length);
    for (; address <= last; address += bytes_per_row)
        text += hex_row(bytes, address, std::min(address + bytes_per_row - 1, last));
    return text;
}

}  // namespace vkm
