// Bytes between their arrival and their display. A burst between two ticks of
// the display fits at any rate of the lists, and far beyond; one that is faster
// still loses bytes of the display, never of the count.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace vkm {

struct Receive_Ring {
    // As many as the indices reach: more than two seconds at 256000 baud.
    static constexpr std::uint32_t cells = 0x10000;

    std::array<std::uint8_t, cells> Rx_Ring{};
    std::uint16_t Ring_Read = 0;   // where the next byte is taken
    std::uint16_t Ring_Write = 0;  // where the next byte goes; one cell always stays free

    bool empty() const { return Ring_Read == Ring_Write; }
    bool full() const { return next(Ring_Write) == Ring_Read; }
    std::uint16_t waiting() const {
        return static_cast<std::uint16_t>((Ring_Write + cells - Ring_Read) % cells);
    }

    // What finds no room is dropped.
    void store(std::span<const std::uint8_t> bytes) {
        for (const std::uint8_t byte : bytes) {
            if (full()) return;
            Rx_Ring[Ring_Write] = byte;
            Ring_Write = next(Ring_Write);
        }
    }

    // The oldest byte of a ring that isn't empty.
    std::uint8_t take() {
        const std::uint8_t byte = Rx_Ring[Ring_Read];
        Ring_Read = next(Ring_Read);
        return byte;
    }

    std::vector<std::uint8_t> take_all() {
        std::vector<std::uint8_t> bytes;
        bytes.reserve(waiting());
        while (!empty()) bytes.push_back(take());
        return bytes;
    }

  private:
    static std::uint16_t next(std::uint16_t place) {
        return static_cast<std::uint16_t>((place + 1) % cells);
    }
};

}  // namespace vkm
