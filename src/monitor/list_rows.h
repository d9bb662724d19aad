// The rows of the monitor's lists as text, in columns of a fixed width.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "monitor/register_tables.h"
#include "monitor/target_dump.h"

namespace vkm {

// Above the registers. Chinese characters are two columns wide.
inline constexpr std::string_view register_header = "地址    名称     HEX  DEC";

// Columns at which they stand, counted from 0.
inline constexpr std::size_t register_value_column = 17;
inline constexpr std::size_t memory_value_column = 28;

// "E0H     ACC      ": a register whose value isn't known.
std::string register_row(const RegisterRow& row);

// The address that a row begins with, 0 to 255.
std::uint8_t address_of_register_row(std::string_view row);

// The row with "5AH   90" behind its name.
std::string with_register_value(std::string_view row, std::uint8_t value);

// Whether both rows show the same value.
bool same_register_value(std::string_view row, std::string_view other);

inline constexpr std::size_t cells_per_row = 8;

// A row of eight cells 00, with an address of so many digits.
std::string memory_row(std::uint32_t address, std::size_t digits);

// The row with these values; a cell that isn't known, or has no value, keeps what it
// shows.
std::string with_memory_values(std::string_view row, std::span<const Cell> cells);

}  // namespace vkm
