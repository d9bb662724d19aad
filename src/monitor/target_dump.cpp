#include "monitor/target_dump.h"

#include <algorithm>

namespace vkm {
namespace {

// Places in a frame.
constexpr std::size_t length_low_at = 2;
constexpr std::size_t type_at = 3;
constexpr std::size_t address_high_at = 5;
constexpr std::size_t address_low_at = 6;
constexpr std::size_t registers_at = 7;
constexpr std::size_t r1_at = 14;
constexpr std::size_t r0_at = 15;
constexpr std::size_t payload_at = 16;

// What the agent has saved of the interrupted program, in the order of the frame:
// PSW, ACC, TCON, T2CON, CCON, IE, SP.
constexpr std::uint8_t saved_registers[] = {208, 224, 136, 200, 216, 168, 129};

using Frame = std::span<const std::uint8_t>;

// The sum at the end is no field.
Cell field(Frame frame, std::size_t at) {
    return at + 1 < frame.size() ? frame[at] : unknown_cell;
}

std::uint8_t byte_or_0(Frame frame, std::size_t at) {
    const Cell value = field(frame, at);
    return value == unknown_cell ? std::uint8_t{0} : static_cast<std::uint8_t>(value);
}

void overwrite(Cell& cell, Cell value) {
    if (value != unknown_cell) cell = value;
}

}  // namespace

std::uint8_t type_of_dump(Frame frame) {
    return frame.size() > type_at ? frame[type_at] : std::uint8_t{0xFF};
}

Cells_256 register_cells(Frame frame) {
    Cells_256 cells;
    cells.fill(unknown_cell);
    // Counted by the low byte of the length alone, up to the sum, which falls behind the
    // last address when the dump ends with the memory as the agent's do.
    const std::size_t end = frame.size() > length_low_at ? frame[length_low_at] : 0;
    std::size_t address = byte_or_0(frame, address_low_at);
    for (std::size_t at = payload_at; at < end && at < frame.size() && address < cells.size(); ++at)
        cells[address++] = frame[at];
    // The agent has used these registers itself by the time it dumps them.
    for (std::size_t i = 0; i < std::size(saved_registers); ++i)
        overwrite(cells[saved_registers[i]], field(frame, registers_at + i));
    return cells;
}

Cells_256 ram_cells(Frame frame) {
    Cells_256 cells;
    cells.fill(unknown_cell);
    std::ranges::copy(payload_cells(frame, cells.size()), cells.begin());
    // So it has with R0 and R1.
    overwrite(cells[0], field(frame, r0_at));
    overwrite(cells[1], field(frame, r1_at));
    return cells;
}

std::vector<Cell> payload_cells(Frame frame, std::size_t at_most) {
    std::vector<Cell> cells;
    for (std::size_t at = payload_at; at + 1 < frame.size() && cells.size() < at_most; ++at)
        cells.push_back(frame[at]);
    return cells;
}

std::uint16_t window_base(Frame frame) {
    const int address = byte_or_0(frame, address_high_at) * 256 + byte_or_0(frame, address_low_at);
    return static_cast<std::uint16_t>(address - address % static_cast<int>(window_cells));
}

}  // namespace vkm
