// What is cast into a chip: its memory, its ID and its firmware's letter, from
// the model in the catalogue.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "simulators/chip_config.h"

namespace vkm::sim {

struct Silicon {
    int family = 0;
    char letter = 'A';
    std::uint8_t version = 0;
    std::vector<std::uint8_t> id;    // none, one or two bytes
    std::uint32_t flash_size = 0;    // bytes that the firmware can write, from address 0
    std::uint32_t program_end = 0;   // one past the program area
    std::uint32_t sector = 512;      // bytes that are erased together
    std::size_t status_length = 24;  // length field of the status frame
};

// Nothing for a model or letter that does not exist.
std::optional<Silicon> silicon_of(const ChipConfig& config);

// Numbers of the option bytes that firmware of this letter has, in the order in
// which its frames bear them.
std::span<const int> option_numbers_of(char letter);

// As a chip is delivered.
OptionBytes factory_options(char letter, bool double_speed);

// Whether these options run the chip at twice its crystal's clock.
bool is_double_speed(char letter, const OptionBytes& options);

}  // namespace vkm::sim
