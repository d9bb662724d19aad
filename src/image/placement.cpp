#include "image/placement.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>

namespace vkm {
namespace {

constexpr std::size_t piece_size = 16384;

}  // namespace

void place_record(Placement& file, const HexLine& line, std::int32_t highest) {
    const auto end = static_cast<std::int32_t>(file.Bytes.size());
    std::int32_t address = record_address(line) + file.Start;
    for (std::uint8_t byte : record_data(line)) {
        file.Sum += byte;
        file.High = std::max(file.High, address);
        if (address <= highest && address >= 0 && address < end)
            file.Bytes[static_cast<std::size_t>(address)] = byte;
        ++address;
    }
}

void begin_binary(Placement& file) {
    file.High = file.Start - 1;
    file.Sum = 0;
}

bool place_piece(Placement& file, FileReader& reader) {
    const auto end = static_cast<std::int32_t>(file.Bytes.size());
    const std::int32_t next = file.High + 1;
    if (next >= end) {
        std::array<std::uint8_t, 1> excess;
        if (reader.read(excess) > 0) file.High = end - 2;
        return false;
    }
    const std::span<std::uint8_t> room =
        std::span(file.Bytes).subspan(static_cast<std::size_t>(next));
    const std::span<std::uint8_t> piece = room.first(std::min(room.size(), piece_size));
    const std::size_t count = reader.read(piece);
    for (std::uint8_t byte : piece.first(count)) file.Sum += byte;
    file.High += static_cast<std::int32_t>(count);
    return count > 0;
}

}  // namespace vkm
