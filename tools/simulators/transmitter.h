// The sending half of a target's serial port: bytes leave it one behind the other
// at its rate.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <span>
#include <vector>

#include "simulators/wire.h"

namespace vkm::sim {

class Transmitter {
  public:
    explicit Transmitter(double baud) : baud_(baud) {}

    // Behind all that was given to it before, and not before `at`.
    void send(Instant at, std::span<const std::uint8_t> bytes);

    // End of the last byte that was given to it; long ago when there was none.
    Instant free_at() const;

    // When run has to be called; `never` when all has left.
    Instant due() const;
    // Lets the bytes leave whose time has come, some of them a little ahead of it.
    void run(Instant now);
    // Those that have left since the last call.
    std::vector<WireByte> take_output();

    std::size_t sent() const { return sent_; }  // bytes that have left

  private:
    // Bytes back to back on the wire; kept whole, so that no rounding adds up.
    struct Run {
        Instant start;
        std::deque<std::uint8_t> bytes;
        std::size_t sent = 0;
    };

    Instant start_of_next(const Run& run) const;
    void forget_sent(Run& run);

    double baud_;
    std::deque<Run> runs_;  // all but the last have bytes to send
    std::vector<WireByte> output_;
    std::size_t sent_ = 0;
};

}  // namespace vkm::sim
