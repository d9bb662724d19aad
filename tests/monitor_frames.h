// Frames of a debug agent, written down here once more: what the monitor's suites feed
// it with.
#pragma once

#include <cstdint>
#include <numeric>
#include <vector>

namespace vkm::test {

using Bytes = std::vector<std::uint8_t>;

inline Bytes operator+(Bytes left, const Bytes& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

inline Bytes slice(const Bytes& bytes, std::size_t from, std::size_t to) {
    return {bytes.begin() + static_cast<std::ptrdiff_t>(from),
            bytes.begin() + static_cast<std::ptrdiff_t>(to)};
}

// What stands between the address and the payload.
struct Saved {
    std::uint8_t PSW = 0x11, ACC = 0x22, TCON = 0x33, T2CON = 0x44, CCON = 0x55, IE = 0x66,
                 SP = 0x77, R1 = 0x88, R0 = 0x99;
};

inline void set_length(Bytes& frame, std::size_t length) {
    frame[1] = static_cast<std::uint8_t>(length >> 8);
    frame[2] = static_cast<std::uint8_t>(length);
}

inline void renew_sum(Bytes& frame) {
    frame.back() = 0;
    frame.back() = static_cast<std::uint8_t>(std::accumulate(frame.begin(), frame.end(), 0));
}

// AA, length, type, a byte without meaning, address, registers, payload, sum.
inline Bytes agent_frame(std::uint8_t type, unsigned address, const Bytes& payload,
                         const Saved& s = {}) {
    Bytes frame = {0xAA,
                   0,
                   0,
                   type,
                   0xC3,
                   static_cast<std::uint8_t>(address >> 8),
                   static_cast<std::uint8_t>(address),
                   s.PSW,
                   s.ACC,
                   s.TCON,
                   s.T2CON,
                   s.CCON,
                   s.IE,
                   s.SP,
                   s.R1,
                   s.R0};
    frame = std::move(frame) + payload + Bytes{0};
    set_length(frame, frame.size());
    renew_sum(frame);
    return frame;
}

// A good frame that is `length` bytes long and of no known type, so short that fields
// are missing or as long as no memory is. At least 4.
inline Bytes frame_of_length(std::size_t length, std::uint8_t type = 0x7E) {
    Bytes frame(length, 0x3C);
    frame[0] = 0xAA;
    set_length(frame, length);
    frame[3] = type;
    renew_sum(frame);
    return frame;
}

inline Bytes marked(const Bytes& frame) {
    return Bytes{0xA5, 0x5A} + frame;
}

inline Bytes spoiled(Bytes bytes) {
    bytes.back() ^= 0x01;
    return bytes;
}

// first, first + 1 and so on.
inline Bytes counting(std::size_t count, unsigned first = 0) {
    Bytes bytes(count);
    for (std::size_t i = 0; i < count; ++i) bytes[i] = static_cast<std::uint8_t>(first + i);
    return bytes;
}

}  // namespace vkm::test
