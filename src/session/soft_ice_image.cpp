#include "session/soft_ice_image.h"

#include <algorithm>
#include <array>

#include "session/monitor_loader.h"
#include "text/hexadecimal.h"

namespace vkm {
namespace {

constexpr std::size_t blank_bytes = 13312 + 1;
constexpr std::uint8_t blank = 0xFF;
constexpr std::size_t place_of_start = 0x2000;
constexpr std::size_t place_of_monitor = 0x2300;
constexpr std::uint8_t LJMP = 0x02;
constexpr std::array<std::uint8_t, 3> reset_jump = {
    LJMP, static_cast<std::uint8_t>(monitor_loader_start >> 8),
    static_cast<std::uint8_t>(monitor_loader_start & 0xFF)};

void place(std::span<std::uint8_t> image, std::size_t address,
           std::span<const std::uint8_t> bytes) {
    std::ranges::copy(bytes, image.subspan(address, bytes.size()).begin());
}

// Two digits to the byte.
void place_lines(std::span<std::uint8_t> image, std::size_t address,
                 std::span<const std::string_view> lines) {
    for (const std::string_view line : lines)
        for (std::size_t digit = 0; digit < line.size(); digit += 2)
            image[address++] = static_cast<std::uint8_t>(hex_field(line.substr(digit, 2), 2));
}

}  // namespace

void blank_monitor_area(std::span<std::uint8_t> image) {
    std::ranges::fill(image.first(blank_bytes), blank);
}

void lay_out_monitor(std::span<std::uint8_t> image,
                     std::span<const std::uint8_t, monitor_start_size> monitor_start,
                     std::span<const std::uint8_t, monitor_size> monitor,
                     std::string_view SoftICE_File) {
    blank_monitor_area(image);
    place(image, place_of_start, monitor_start);
    place(image, place_of_monitor, monitor);
    const Monitor_Loader& loader = monitor_loader(SoftICE_File);
    place_lines(image, monitor_loader_first, loader.at_2180);
    place_lines(image, monitor_loader_second, loader.at_3300);
    place(image, 0, reset_jump);
}

}  // namespace vkm
