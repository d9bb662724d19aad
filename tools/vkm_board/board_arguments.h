// The command line of vkm-board.
#pragma once

#include <chrono>
#include <span>
#include <string>
#include <string_view>

#include "pseudo_terminal/program_arguments.h"
#include "simulators/chip_config.h"
#include "simulators/simulated_board.h"

namespace vkm::sim {

struct BoardArguments : ProgramArguments {
    BoardConfig config;          // without the instant of its power and the content of its storage
    bool power_by_hand = false;  // or by wake bytes
    std::chrono::microseconds power_after{0};  // from the start of the program
    std::string eeprom;                        // file of what it holds at the start; empty: none
    ChipConfig chip;                           // in its socket
};

ArgumentsRead<BoardArguments> read_board_arguments(std::span<const char* const> words);

std::string board_usage();

}  // namespace vkm::sim
