#include "board/board_frames.h"

namespace vkm {
namespace {

constexpr std::uint8_t first_of_repeated_sector = 0x30;
constexpr std::uint8_t read_storage = 0x53;
constexpr std::uint8_t end_mark = 0x16;
constexpr std::size_t checked_from = 2;  // behind 46 B9

void append_word(Frame& frame, std::int32_t value) {
    frame.push_back(static_cast<std::uint8_t>(value >> 8 & 0xFF));
    frame.push_back(static_cast<std::uint8_t>(value & 0xFF));
}

Frame completed(Frame frame) {
    const auto crc = crc16(std::span(frame).subspan(checked_from));
    frame.insert(frame.end(), {crc[0], crc[1], end_mark});
    return frame;
}

}  // namespace

Frame build_board_block(std::span<const std::uint8_t> image, std::int32_t address,
                        std::int32_t count, bool flag) {
    Frame frame = {0x46, 0xB9, 0x6A};
    append_word(frame, count + 13);
    frame.insert(frame.end(), {flag ? first_of_repeated_sector : std::uint8_t{0}, 0x00, 0x00});
    append_word(frame, address);
    append_word(frame, count);
    for (std::int32_t at = address; at < address + count; ++at) {
        const bool inside = at >= 0 && at < static_cast<std::int64_t>(image.size());
        frame.push_back(inside ? image[static_cast<std::size_t>(at)] : std::uint8_t{0});
    }
    return completed(std::move(frame));
}

Frame build_board_read(std::int32_t address) {
    Frame frame = {0x46, 0xB9, 0x6A, 0x00, 0x09, read_storage};
    append_word(frame, address);
    return completed(std::move(frame));
}

}  // namespace vkm
