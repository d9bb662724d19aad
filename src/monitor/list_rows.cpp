#include "monitor/list_rows.h"

#include <algorithm>

#include "text/hexadecimal.h"

namespace vkm {
namespace {

constexpr std::size_t name_column = 8;
constexpr std::size_t register_value_width = 5;  // "5AH  "
constexpr std::size_t decimal_width = 3;
constexpr std::size_t digits_of_byte = 2;
constexpr std::size_t cell_width = digits_of_byte + 1;

std::string padded(std::string_view text, std::size_t width) {
    std::string field(text.substr(0, width));
    field.resize(width, ' ');
    return field;
}

std::string right_aligned(std::string_view text, std::size_t width) {
    return std::string(width - std::min(width, text.size()), ' ').append(text);
}

}  // namespace

std::string register_row(const RegisterRow& row) {
    return padded(row.address, name_column) + padded(row.name, register_value_column - name_column);
}

std::uint8_t address_of_register_row(std::string_view row) {
    return static_cast<std::uint8_t>(hex_field(row.substr(0, digits_of_byte), digits_of_byte));
}

std::string with_register_value(std::string_view row, std::uint8_t value) {
    return padded(row, register_value_column) +
           padded(hex_text(value, digits_of_byte) + "H", register_value_width) +
           right_aligned(std::to_string(value), decimal_width);
}

bool same_register_value(std::string_view row, std::string_view other) {
    const auto value = [](std::string_view text) {
        text.remove_prefix(std::min(register_value_column, text.size()));
        return text.substr(0, register_value_width);
    };
    return value(row) == value(other);
}

std::string memory_row(std::uint32_t address, std::size_t digits) {
    std::string row = padded(hex_text(address, digits), memory_value_column);
    for (std::size_t i = 0; i < cells_per_row; ++i) row += i == 0 ? "00" : " 00";
    return row;
}

std::string with_memory_values(std::string_view row, std::span<const Cell> cells) {
    std::string changed(row);
    for (std::size_t i = 0; i < std::min(cells.size(), cells_per_row); ++i) {
        const std::size_t at = memory_value_column + i * cell_width;
        if (cells[i] == unknown_cell || at + digits_of_byte > changed.size()) continue;
        const std::string value = hex_text(static_cast<std::uint8_t>(cells[i]), digits_of_byte);
        changed.replace(at, digits_of_byte, value);
    }
    return changed;
}

}  // namespace vkm
