// What the chip is told to erase: a count of sectors, for the newer firmware
// letters a range of addresses, and the frame that carries both. Values only.
#pragma once

#include <cstdint>
#include <string_view>

#include "link/frames.h"
#include "session/session_state.h"

namespace vkm {

inline constexpr std::int32_t sector_size = 512;         // bytes, the unit of erasing
inline constexpr std::uint8_t whole_chip_sectors = 255;  // also what newer firmware ignores

struct Erase_Facts {
    std::string_view Chip_Letter;  // "A" to "G"
    double version = 0;            // number in Chip_Version
    std::string_view model;        // the selected one, by name
    std::int32_t Image_High = 0;   // last address of the program image
};

// How many sectors from address 0 on.
std::uint8_t Erase_Sectors(const Erase_Facts& facts);

// Addresses; high is never below low.
struct Erase_Span {
    std::int32_t low = 0;
    std::int32_t high = 0;
};

// What of the data memory and the unused program area is to be erased. With
// keep_data the chip is set to keep its data memory.
Erase_Span Erase_Range(std::string_view Chip_Letter, const Download_Plan_Record& plan,
                       bool keep_data);

// The 15 bytes of the wire. Letters other than D to G carry fixed bytes in place of a range.
Frame build_erase_frame(std::string_view Chip_Letter, std::uint8_t sectors, Erase_Span range);

}  // namespace vkm
