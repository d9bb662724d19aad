// The command line of vkm-chip.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "simulators/chip_config.h"

namespace vkm::sim {

struct ChipArguments {
    ChipConfig config;
    std::chrono::microseconds power_after{0};  // from the start of the program
    bool power_by_hand = false;                // off until "on" is commanded
    bool quiet = false;                        // no lines but "ready" and answers to commands
    bool until_eof = false;                    // the end of the commands ends the program
    std::string link;                          // symbolic link to the terminal; empty: none
    std::string save_flash;                    // file; empty: none
    std::string load_flash;
    bool help = false;
    bool list_models = false;
};

struct ArgumentsRead {
    ChipArguments arguments;
    std::string error;  // empty when all is well
};

ArgumentsRead read_arguments(std::span<const char* const> arguments);

std::string_view usage();

// Forms of values, which commands use as well. Nothing when the text has another form.
std::optional<double> parse_clock(std::string_view text);  // Hz: "11059200", "11.0592M"
std::optional<int> parse_version(std::string_view text);   // "3.8" is 0x38
std::optional<double> parse_number(std::string_view text, double least, double most);
std::optional<std::vector<std::uint8_t>> parse_bytes(std::string_view hex);  // "F108"

}  // namespace vkm::sim
