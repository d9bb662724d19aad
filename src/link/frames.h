// The frames of the wire as values: checksums, builders, and the check of a reply.
//
// All fields of more than one byte are big-endian. Frames start 46 B9 (chips
// and the download board) or 5A A5 (a user's own ISP program) and end with 16.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace vkm {

using Frame = std::vector<std::uint8_t>;

// 8-bit sum of the bytes.
std::uint8_t sum8(std::span<const std::uint8_t> bytes);

// 16-bit sum of the bytes.
std::uint16_t sum16(std::span<const std::uint8_t> bytes);

// CRC-16/MODBUS (polynomial A001 reflected, start FFFF, no final XOR): its low
// byte, then its high byte, as they go on the wire.
std::array<std::uint8_t, 2> crc16(std::span<const std::uint8_t> bytes);

// The two table look-ups that crc16 goes by.
std::uint8_t GetCRCLo(std::uint8_t index);
std::uint8_t GetCRCHi(std::uint8_t index);

// The same CRC worked out bit by bit, with its high byte first.
std::array<std::uint8_t, 2> CRC16_bit(std::span<const std::uint8_t> bytes);

struct DataFrame {
    Frame bytes;
    std::uint16_t data_sum = 0;  // of the data alone; 8 bits of it for build_data_frame
};

// A data frame with `count` bytes of `image` from `address` on. Bytes that lie
// outside the image count as 00.
DataFrame build_data_frame(std::int32_t address, std::int32_t count, std::uint8_t command,
                           std::span<const std::uint8_t> image);  // 46 B9 class, n + 14 bytes
DataFrame build_demo_frame(std::int32_t address, std::int32_t count, std::uint8_t command,
                           std::span<const std::uint8_t> image);  // 5A A5 class, n + 14 bytes

// 46 B9 6A, length, command, the body, sum, 16.
Frame build_short_command(std::uint8_t command, std::span<const std::uint8_t> body);

// The short command with the board fields: family, parameter, 36 01. With
// use_crc it carries a CRC in place of the sum.
Frame build_board_command(std::uint8_t command, std::uint8_t family, std::uint8_t parameter,
                          bool use_crc);

// 5A A5 00 08, command, 16-bit sum, 16.
Frame build_demo_command(std::uint8_t command);

// The twelve trigger bytes; nothing for a command that is no trigger.
std::optional<Frame> build_trigger(std::uint8_t command);

}  // namespace vkm
