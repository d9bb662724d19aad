// The image that brings a debug monitor into a chip. Addresses are those of the chip's
// code memory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "session/program_ranges.h"

namespace vkm {

// What is programmed first, and the block with the reset jump, which goes in last: a chip
// whose download broke off doesn't jump into half a monitor. (As ever no fewer than 640
// bytes are programmed; behind the jump they are FF.)
inline constexpr Address_Range monitor_range = {8192, 13311};
inline constexpr Address_Range reset_range = {0, 127};

// How much of its file each piece takes, from the file's beginning.
inline constexpr std::size_t monitor_start_size = 384;
inline constexpr std::size_t monitor_size = 4096;

// FF, where the image is put together: up to and with address 13312.
void blank_monitor_area(std::span<std::uint8_t> image);

// Lays the two pieces and the loader for the second one's file (SoftICE_File) out.
void lay_out_monitor(std::span<std::uint8_t> image,
                     std::span<const std::uint8_t, monitor_start_size> monitor_start,
                     std::span<const std::uint8_t, monitor_size> monitor,
                     std::string_view SoftICE_File);

}  // namespace vkm
