// The command line of vkm-chip.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "pseudo_terminal/program_arguments.h"
#include "simulators/chip_config.h"

namespace vkm::sim {

struct ChipArguments : ProgramArguments {
    ChipConfig config;
    std::chrono::microseconds power_after{0};  // from the start of the program
    bool power_by_hand = false;                // off until "on" is commanded
    std::string save_flash;                    // file; empty: none
    std::string load_flash;
    bool list_models = false;
};

ArgumentsRead<ChipArguments> read_arguments(std::span<const char* const> arguments);

std::string usage();

// Forms of values, which commands use as well. Nothing when the text has another form.
std::optional<double> parse_clock(std::string_view text);  // Hz: "11059200", "11.0592M"
std::optional<int> parse_version(std::string_view text);   // "3.8" is 0x38

}  // namespace vkm::sim
