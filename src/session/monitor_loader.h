// The 8051 code that goes into a chip around a debug monitor's image and puts the monitor
// in the place of the boot firmware. The tables are assembled from firmware/monitor_loader:
// change the source there and run its `assemble`, which writes monitor_loader.cpp.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace vkm {

// Lines of 32 hexadecimal digits, 16 bytes each; FF where the loader has nothing.
struct Monitor_Loader {
    std::array<std::string_view, 23> at_2180;
    std::array<std::string_view, 6> at_3300;
};

// Where the lines go in code memory, and where the reset jump goes (within at_2180).
inline constexpr std::uint16_t monitor_loader_first = 0x2180;
inline constexpr std::uint16_t monitor_loader_second = 0x3300;
inline constexpr std::uint16_t monitor_loader_start = 0x2200;

// The loader for a monitor's image, by the name of its file.
const Monitor_Loader& monitor_loader(std::string_view SoftICE_File);

}  // namespace vkm
