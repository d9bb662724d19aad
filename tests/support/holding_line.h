// A stretch of line that holds one answer of the target back and hands it on
// later, and behind it whatever came meanwhile, as an adapter does that stalls.
//
//     HoldingLine held(bench.chip.target(), 6, milliseconds(300));
//     bench.line.connect(held.target());
#pragma once

#include <algorithm>
#include <utility>
#include <vector>

#include "simulators/wire.h"

namespace vkm::test {

class HoldingLine {
  public:
    // The nth answer, counted from 1; bytes with no pause between them are one.
    HoldingLine(sim::Target target, int nth, std::chrono::microseconds delay)
        : target_(std::move(target)), nth_(nth), delay_(delay) {}
    HoldingLine(const HoldingLine&) = delete;
    HoldingLine& operator=(const HoldingLine&) = delete;

    sim::Target target() {
        return {target_.hear, target_.due, target_.act, [this] { return hold(); }};
    }

    int answers = 0;  // so far

  private:
    std::vector<sim::WireByte> hold() {
        std::vector<sim::WireByte> bytes = target_.take_output();
        for (sim::WireByte& byte : bytes) {
            const std::chrono::microseconds length = sim::wire_time(1, byte.baud);
            if (byte.start > sent_until_ + length / 2) ++answers;
            sent_until_ = byte.start + length;
            if (answers == nth_) byte.start += delay_;
            byte.start = std::max(byte.start, free_at_);
            free_at_ = byte.start + length;
        }
        return bytes;
    }

    sim::Target target_;
    const int nth_;
    const std::chrono::microseconds delay_;
    sim::Instant sent_until_{};  // by the target
    sim::Instant free_at_{};     // the near end of the line
};

}  // namespace vkm::test
