// The settings text of a port: "115200,n,8,1".
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace vkm {

struct PortSettings {
    std::int32_t baud = 9600;
    char parity = 'n';     // n none, e even, o odd
    int data_bits = 8;     // 5 to 8
    double stop_bits = 1;  // 1, 1.5 or 2

    // With the start bit.
    double bits_per_byte() const { return 1 + data_bits + (parity == 'n' ? 0 : 1) + stop_bits; }
    bool operator==(const PortSettings&) const = default;
};

// The parts of the text: baud, first letter of the parity in either case, data
// bits, stop bits, with or without blanks between them. Nothing when any of them
// is missing or is none.
std::optional<PortSettings> parse_port_settings(std::string_view text);

}  // namespace vkm
