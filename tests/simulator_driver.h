// Plays the host of a simulated chip by hand: bytes with their times, no line
// and no program between.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <initializer_list>
#include <numeric>
#include <span>
#include <utility>

#include "frame_bytes.h"
#include "simulators/simulated_chip.h"

namespace vkm::test {

using namespace std::chrono_literals;

inline std::uint8_t sum(std::span<const std::uint8_t> bytes) {
    return static_cast<std::uint8_t>(std::accumulate(bytes.begin(), bytes.end(), 0));
}

// 46 B9 6A, length, command and body, sum, 16.
inline Bytes short_frame(std::initializer_list<int> command_and_body) {
    Bytes frame = {0x46, 0xB9, 0x6A, 0x00, static_cast<std::uint8_t>(command_and_body.size() + 5)};
    for (const int byte : command_and_body) frame.push_back(static_cast<std::uint8_t>(byte));
    frame.push_back(sum(std::span(frame).subspan(2)));
    frame.push_back(0x16);
    return frame;
}

inline Bytes block_frame(int command, std::uint32_t address, const Bytes& data) {
    const auto n = static_cast<std::uint32_t>(data.size());
    Bytes frame = joined({{0x46, 0xB9, 0x6A},
                          big_endian(n + 12, 2),
                          {static_cast<std::uint8_t>(command)},
                          big_endian(address, 4),
                          big_endian(n, 2),
                          data});
    frame.push_back(sum(std::span(frame).subspan(2)));
    frame.push_back(0x16);
    return frame;
}

inline const Bytes trigger_82 = {0xFE, 0xFE, 0xFE, 0xFE, 0x46, 0xB9,
                                 0x6A, 0x00, 0x06, 0x82, 0xF2, 0x16};
inline const Bytes trigger_8A = {0xFE, 0xFE, 0xFE, 0xFE, 0x46, 0xB9,
                                 0x6A, 0x00, 0x06, 0x8A, 0xFA, 0x16};
inline const Bytes short_ack = {0x46, 0xB9, 0x68, 0x00, 0x06, 0x80, 0xEE, 0x16};

struct Heard {
    Bytes bytes;
    double baud = 0;       // of the first of them
    sim::Instant start{};  // of the first
    sim::Instant end{};    // of the last
};

class ChipDriver {
  public:
    explicit ChipDriver(sim::ChipConfig config = {})
        : chip(std::move(config)), line_(chip.target()) {}

    // Writes the bytes one behind the other.
    void send(const Bytes& bytes, double baud) {
        const sim::Instant start = now;
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            advance_to(start + sim::wire_time(i + 1, baud));
            line_.hear(now, bytes[i], baud);
        }
    }

    // All that the chip sends until it has been silent for this long.
    Heard listen(std::chrono::microseconds patience = 2s) {
        Heard heard;
        sim::Instant until = now + patience;
        for (;;) {
            for (const sim::WireByte& byte : line_.take_output()) {
                if (heard.bytes.empty()) heard = {{}, byte.baud, byte.start, {}};
                heard.bytes.push_back(byte.value);
                heard.end = byte.start + sim::wire_time(1, byte.baud);
                until = heard.end + patience;
            }
            if (line_.due() > until) break;
            advance_to(line_.due());
        }
        now = std::max(now, heard.bytes.empty() ? until : heard.end + 1ms);
        return heard;
    }

    // Sends at the present rate and hears the answer.
    Heard exchange(const Bytes& bytes) { return exchange(bytes, baud); }
    Heard exchange(const Bytes& bytes, double at_baud) {
        now += 10ms;
        send(bytes, at_baud);
        return listen();
    }

    // Pulses until the status frame comes.
    Heard connect() {
        for (int pulse = 0; pulse < 20; ++pulse) {
            send({0x7F, 0x7F}, 1200);
            if (line_.due() <= now + 20ms) return listen();
        }
        return {};
    }

    void advance_to(sim::Instant time) {
        while (line_.due() <= time) {
            now = std::max(now, line_.due());
            line_.act(now);
        }
        now = std::max(now, time);
    }

    sim::SimulatedChip chip;
    sim::Instant now{1s};
    double baud = 1200;

  private:
    sim::Target line_;
};

}  // namespace vkm::test
