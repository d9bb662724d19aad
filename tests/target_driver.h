// Plays the host of any simulated target by hand: bytes with their times, no line
// and no program between.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <utility>
#include <vector>

#include "frame_bytes.h"
#include "simulators/wire.h"

namespace vkm::test {

using namespace std::chrono_literals;

class TargetDriver {
  public:
    explicit TargetDriver(sim::Target target, double host_baud = 115200)
        : baud(host_baud), target_(std::move(target)) {}

    // Writes the bytes one behind the other.
    void send(const Bytes& bytes) {
        const sim::Instant start = now;
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            advance_to(start + sim::wire_time(i + 1, baud));
            target_.hear(now, bytes[i], baud);
        }
        collect();
    }

    void advance(std::chrono::microseconds time) { advance_to(now + time); }
    void advance_to(sim::Instant time) {
        collect();
        while (target_.due() <= time) {
            now = std::max(now, target_.due());
            target_.act(now);
            collect();
        }
        now = std::max(now, time);
    }

    // What the target has sent since the last call.
    std::vector<sim::WireByte> take() { return std::exchange(said_, {}); }
    Bytes take_bytes() {
        Bytes bytes;
        for (const sim::WireByte& byte : take()) bytes.push_back(byte.value);
        return bytes;
    }

    // All that comes within a second of these bytes.
    Bytes ask(const Bytes& bytes) {
        advance(10ms);
        send(bytes);
        advance(1s);
        return take_bytes();
    }

    sim::Instant now{1s};
    double baud;

  private:
    // A target has one wire and no way into the past.
    void collect() {
        for (const sim::WireByte& byte : target_.take_output()) {
            EXPECT_GE(byte.start, now);
            EXPECT_GE(byte.start, wire_free_);
            wire_free_ = byte.start + sim::wire_time(1, byte.baud);
            said_.push_back(byte);
        }
    }

    sim::Target target_;
    std::vector<sim::WireByte> said_;
    sim::Instant wire_free_ = sim::Instant::min();
};

}  // namespace vkm::test
