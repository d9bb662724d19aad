// The line between a host whose bytes come in lumps, as through a terminal, and
// a simulated target that wants each byte at its time.
//
// The host's bytes are taken off it at once and then spend their time on a wire
// of this line's own; the target's are handed over when their stop bits have
// ended. Time comes from outside; next() tells when to call run() at the latest.
#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <span>
#include <utility>
#include <vector>

#include "simulators/wire.h"

namespace vkm::sim {

class PacedLine {
  public:
    explicit PacedLine(Target target) : target_(std::move(target)) {}

    // The rate that the host has set, as seen now. A byte that is on the wire
    // when it changes is lost, and those behind it go at the new rate.
    void host_rate(Instant now, double baud);
    void host_writes(Instant now, std::span<const std::uint8_t> bytes);

    Instant next() const;
    void run(Instant now);

    // What the host has heard since the last call.
    std::vector<std::uint8_t> take_for_host();

    // The cable is out: what was on its way is gone.
    void cut();

    // Bytes that the host lost by changing its rate too early.
    int lost_by_rate_change() const { return lost_; }

  private:
    struct Byte {
        Instant start;
        Instant end;
        std::uint8_t value = 0;
        double baud = 0;
    };

    void put_on_wire(Instant now, std::uint8_t value);
    void collect_answers();

    Target target_;
    double baud_ = 0;  // the host's
    std::deque<Byte> to_target_;
    Instant run_start_{};         // of bytes that stand back to back on the wire
    std::size_t run_length_ = 0;  // so many of them, so that no rounding adds up
    std::deque<Byte> to_host_;
    std::vector<std::uint8_t> heard_by_host_;
    int lost_ = 0;
};

}  // namespace vkm::sim
