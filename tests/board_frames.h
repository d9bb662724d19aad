// Frames of the hosts of a download board and of a user's ISP program, built by hand.
#pragma once

#include <cstdint>
#include <numeric>
#include <span>
#include <utility>

#include "frame_bytes.h"

namespace vkm::test {

inline std::uint16_t crc_modbus(std::span<const std::uint8_t> bytes) {
    unsigned crc = 0xFFFF;
    for (const unsigned byte : bytes) {
        crc ^= byte;
        for (int bit = 0; bit < 8; ++bit) crc = (crc & 1) != 0 ? (crc >> 1) ^ 0xA001 : crc >> 1;
    }
    return static_cast<std::uint16_t>(crc);
}

inline Bytes ended_with_crc(Bytes frame) {
    const std::uint16_t crc = crc_modbus(std::span(frame).subspan(2));
    frame.insert(frame.end(), {static_cast<std::uint8_t>(crc), static_cast<std::uint8_t>(crc >> 8),
                               std::uint8_t{0x16}});
    return frame;
}

inline Bytes board_command(int command, int family = 1, int parameter = 0) {
    return ended_with_crc({0x46, 0xB9, 0x6A, 0x00, 0x0B, static_cast<std::uint8_t>(command),
                           static_cast<std::uint8_t>(family), static_cast<std::uint8_t>(parameter),
                           0x36, 0x01});
}

inline Bytes board_read(unsigned address) {
    return ended_with_crc({0x46, 0xB9, 0x6A, 0x00, 0x09, 0x53,
                           static_cast<std::uint8_t>(address >> 8),
                           static_cast<std::uint8_t>(address)});
}

inline Bytes board_block(unsigned address, const Bytes& data, int flag = 0) {
    const auto n = static_cast<std::uint32_t>(data.size());
    return ended_with_crc(joined({{0x46, 0xB9, 0x6A},
                                  big_endian(n + 13, 2),
                                  {static_cast<std::uint8_t>(flag), 0x00, 0x00},
                                  big_endian(address, 2),
                                  big_endian(n, 2),
                                  data}));
}

inline Bytes ended_with_sum(Bytes frame) {
    const auto sum = std::accumulate(frame.begin(), frame.end(), 0U);
    frame.insert(frame.end(), {static_cast<std::uint8_t>(sum >> 8), static_cast<std::uint8_t>(sum),
                               std::uint8_t{0x16}});
    return frame;
}

inline Bytes isp_command(int command) {
    return ended_with_sum({0x5A, 0xA5, 0x00, 0x08, static_cast<std::uint8_t>(command)});
}

inline Bytes isp_block(unsigned address, const Bytes& data, int command = 0xB3) {
    const auto n = static_cast<std::uint32_t>(data.size());
    return ended_with_sum(joined({{0x5A, 0xA5},
                                  big_endian(n + 14, 2),
                                  {static_cast<std::uint8_t>(command)},
                                  big_endian(address, 4),
                                  big_endian(n, 2),
                                  data}));
}

inline Bytes counting(std::size_t count, unsigned first = 0) {
    Bytes bytes(count);
    std::iota(bytes.begin(), bytes.end(), static_cast<std::uint8_t>(first));
    return bytes;
}

}  // namespace vkm::test
