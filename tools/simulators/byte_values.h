// Bytes as numbers and as text.
#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace vkm::sim {

// The bytes of a field as a number, the first being the highest.
std::uint32_t big_endian(std::span<const std::uint8_t> bytes);

// Modulo 256.
std::uint8_t sum_of(std::span<const std::uint8_t> bytes);

std::uint16_t sum16_of(std::span<const std::uint8_t> bytes);

// CRC-16/MODBUS.
std::uint16_t crc_of(std::span<const std::uint8_t> bytes);

// "46 B9 6A", for messages.
std::string hex_text(std::span<const std::uint8_t> bytes);

}  // namespace vkm::sim
