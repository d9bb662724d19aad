// What a download board reads out of its storage before it programs a chip: which
// chip, the code, the options, the number that is counted up, and how many chips it
// may still program.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace vkm::sim {

// Bytes of the code that hold a number, the highest first. Each chip gets the number
// of the one before it plus the increment; behind its top it begins again at 0.
struct BoardNumber {
    enum class Numeral { hexadecimal, packed, ascii };

    bool enabled = false;
    std::uint32_t address = 0;
    std::uint32_t length = 0;
    std::uint8_t increment = 0;  // 0 to 255
    Numeral numeral = Numeral::hexadecimal;
};

struct BoardJob {
    std::string model;
    int family = -1;
    std::array<std::uint8_t, 2> id{};      // a code of two digits stands there twice
    std::array<std::uint8_t, 2> old_id{};  // 00 00: there is none
    std::array<std::uint8_t, 5> options{};
    std::uint32_t block_size = 0;
    std::uint32_t data_end = 0;  // last address of the chip's data memory
    std::uint32_t chips_done = 0;
    std::uint32_t chips_left = 0;
    BoardNumber number;
    std::vector<std::uint8_t> code;  // from address 0 on, as for the first chip
};

struct BoardJobRead {
    BoardJob job;
    std::string problem;  // empty when all is well
};

// The storage has its 64 KB.
BoardJobRead read_board_job(std::span<const std::uint8_t> storage);

// The code for the next chip.
std::vector<std::uint8_t> code_of_next_chip(const BoardJob& job);

// How many chips the two counters of bits allow.
std::uint32_t chips_left(std::span<const std::uint8_t> storage);
// One of them is done. False when none was left.
bool count_chip(std::span<std::uint8_t> storage);

}  // namespace vkm::sim
