// The wire between the port and a simulated target: bytes with their times and
// rates. One frame format is used on it: 8 data bits, no parity, 1 stop bit.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace vkm::sim {

using Instant = std::chrono::time_point<std::chrono::steady_clock, std::chrono::microseconds>;
inline constexpr Instant never = Instant::max();

inline constexpr int bits_per_byte = 10;  // start, 8 data, stop

// Time that n bytes take on the wire at this rate.
std::chrono::microseconds wire_time(std::size_t n, double baud);

// A byte on its way: its start bit begins at `start`.
struct WireByte {
    Instant start;
    std::uint8_t value = 0;
    double baud = 0;  // rate at which the sender shifts it out
};

// What a receiver set to `own_baud` makes of a byte sent at `sent_baud`. Within
// the tolerance of a UART (the last sample may drift less than half a bit) the
// byte itself; otherwise what its sampling points really see of the line, which
// is another byte or none at all (a framing error).
std::optional<std::uint8_t> as_heard(std::uint8_t value, double sent_baud, double own_baud);

// Whatever sits at the other end of the line, as a state machine without
// threads and files, so that it serves in virtual time and on a
// pseudo-terminal alike. The line calls these in order of time.
struct Target {
    // A byte's stop bit has ended at `at`.
    std::function<void(Instant at, std::uint8_t value, double sent_baud)> hear;
    // When the target wants to act though it hears nothing; `never` if it doesn't.
    std::function<Instant()> due;
    // That time has come.
    std::function<void(Instant now)> act;
    // Bytes that it has decided to send since the last call, in order; the
    // starts may lie in the future and never overlap.
    std::function<std::vector<WireByte>()> take_output;
};

}  // namespace vkm::sim
