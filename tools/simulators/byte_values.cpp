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
