#include "simulators/byte_values.h"

#include <cstdio>

namespace vkm::sim {

std::uint32_t big_endian(std::span<const std::uint8_t> bytes) {
    std::uint32_t value = 0;
    for (const std::uint8_t byte : bytes) value = value << 8 | byte;
    return value;
}

std::uint8_t sum_of(std::span<const std::uint8_t> bytes) {
    unsigned sum = 0;
    for (const std::uint8_t byte : bytes) sum += byte;
    return static_cast<std::uint8_t>(sum);
}

std::uint16_t sum16_of(std::span<const std::uint8_t> bytes) {
    unsigned sum = 0;
    for (const std::uint8_t byte : bytes) sum += byte;
    return static_cast<std::uint16_t>(sum);
}

std::uint16_t crc_of(std::span<const std::uint8_t> bytes) {
    std::uint16_t crc = 0xFFFF;
    for (const std::uint8_t byte : bytes) {
        crc ^= byte;
        for (int bit = 0; bit < 8; ++bit)
            crc = static_cast<std::uint16_t>((crc & 1) != 0 ? crc >> 1 ^ 0xA001 : crc >> 1);
    }
    return crc;
}

std::string hex_text(std::span<const std::uint8_t> bytes) {
    std::string text;
    char digits[4];
    for (const std::uint8_t byte : bytes) {
        std::snprintf(digits, sizeof digits, "%02X", byte);
        if (!text.empty()) text += ' ';
        text += digits;
    }
    return text;
}

}  // namespace vkm::sim
