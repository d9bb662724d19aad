#include "simulators/wire.h"

namespace vkm::sim {

// Rounded down, so that bytes whose starts are told as multiples of it never overlap.
std::chrono::microseconds wire_time(std::size_t n, double baud) {
    if (!(baud > 0)) return std::chrono::microseconds{0};
    const double micros = static_cast<double>(n) * bits_per_byte * 1e6 / baud;
    return std::chrono::microseconds{static_cast<std::int64_t>(micros)};
}

std::optional<std::uint8_t> as_heard(std::uint8_t value, double sent_baud, double own_baud) {
    if (!(sent_baud > 0) || !(own_baud > 0)) return std::nullopt;
    // The level of the line so many of the sender's bit times after its start
    // bit began; it rests high.
    const auto level = [value](double bit_time) {
        if (bit_time < 1) return false;
        if (bit_time >= bits_per_byte - 1) return true;
        return ((value >> (static_cast<int>(bit_time) - 1)) & 1) != 0;
    };
    // The receiver starts at the falling edge and looks at the middle of each of
    // its own bit times.
    const auto sample = [&](int bit) { return level((bit + 0.5) * sent_baud / own_baud); };

    if (sample(0)) return std::nullopt;                   // too short for a start bit
    if (!sample(bits_per_byte - 1)) return std::nullopt;  // no stop bit
    std::uint8_t heard = 0;
    for (int bit = 0; bit < 8; ++bit)
        if (sample(bit + 1)) heard = static_cast<std::uint8_t>(heard | (1 << bit));
    return heard;
}

}  // namespace vkm::sim
