// What a good frame of the debug agent tells, as cells of the memories that it
// dumps. A frame shorter than its fields, or with more payload than a memory has
// cells, gives what is there.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace vkm {

// A value of a cell, 0 to 255; or that the frame doesn't tell it.
using Cell = std::int16_t;
inline constexpr Cell unknown_cell = 256;

using Cells_256 = std::array<Cell, 256>;  // by address

inline constexpr std::size_t xram_cells = 1024;
inline constexpr std::size_t window_cells = 512;

enum Dump_Type : std::uint8_t {  // on the wire
    dump_registers = 0,
    dump_ram = 1,
    dump_xram = 2,
    dump_window = 3,
};

// The type, of a frame that has one.
std::uint8_t type_of_dump(std::span<const std::uint8_t> frame);

// Special function registers, by their addresses 128 to 255.
Cells_256 register_cells(std::span<const std::uint8_t> frame);

// Internal RAM.
Cells_256 ram_cells(std::span<const std::uint8_t> frame);

// The payload from its first byte on, at most so many cells of it.
std::vector<Cell> payload_cells(std::span<const std::uint8_t> frame, std::size_t at_most);

// Where the window on the XRAM begins: a multiple of its 512 cells.
std::uint16_t window_base(std::span<const std::uint8_t> frame);

}  // namespace vkm
