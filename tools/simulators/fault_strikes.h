// What planned faults do to the frames and answers that they strike.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "simulators/fault_plan.h"

namespace vkm::sim {

// Faults that wait for their frames.
template <typename Frame>
class FaultSchedule {
  public:
    void add(const FaultOn<Frame>& fault) { plan_.push_back({fault, 0}); }
    void forget() { plan_.clear(); }

    // Those that strike this frame.
    std::vector<FaultOn<Frame>> strike(Frame kind) {
        std::vector<FaultOn<Frame>> struck;
        for (Planned& planned : plan_) {
            const FaultOn<Frame>& fault = planned.fault;
            if (fault.frame != Frame::any && fault.frame != kind) continue;
            ++planned.seen;
            const bool over = fault.times > 0 && planned.seen >= fault.nth + fault.times;
            if (planned.seen >= fault.nth && !over) struck.push_back(fault);
        }
        return struck;
    }

  private:
    struct Planned {
        FaultOn<Frame> fault;
        int seen = 0;  // frames of its kind since it was planned
    };
    std::vector<Planned> plan_;
};

template <typename Frame>
const FaultOn<Frame>* find_fault(const std::vector<FaultOn<Frame>>& struck, FaultKind kind) {
    const auto found = std::find_if(struck.begin(), struck.end(),
                                    [kind](const auto& fault) { return fault.kind == kind; });
    return found == struck.end() ? nullptr : &*found;
}

// A whole answer, whose length field stands here and whose check before its last byte.
template <typename Frame>
void spoil_answer(std::vector<std::uint8_t>& bytes, std::size_t place_of_length,
                  const std::vector<FaultOn<Frame>>& struck) {
    constexpr std::uint8_t filler = 0xA5;
    if (find_fault(struck, FaultKind::wrong_sum)) bytes[bytes.size() - 2] ^= 0xFF;
    if (const auto* fault = find_fault(struck, FaultKind::wrong_length)) {
        bytes[place_of_length] = static_cast<std::uint8_t>(fault->value >> 8);
        bytes[place_of_length + 1] = static_cast<std::uint8_t>(fault->value);
        bytes.resize(bytes.size() + static_cast<std::size_t>(std::max(0, fault->extra)), filler);
    }
    if (const auto* fault = find_fault(struck, FaultKind::damage)) {
        const auto place = static_cast<std::size_t>(std::max<std::int64_t>(0, fault->value));
        bytes[std::min(place, bytes.size() - 1)] ^= fault->mask;
    }
    if (const auto* fault = find_fault(struck, FaultKind::cut_off)) {
        const auto kept = static_cast<std::size_t>(std::max<std::int64_t>(0, fault->value));
        bytes.resize(std::min(kept, bytes.size()));
    }
    if (const auto* fault = find_fault(struck, FaultKind::noise))
        bytes.insert(bytes.begin(), fault->bytes.begin(), fault->bytes.end());
    if (find_fault(struck, FaultKind::twice)) {
        const std::vector<std::uint8_t> once = bytes;
        bytes.insert(bytes.end(), once.begin(), once.end());
    }
}

}  // namespace vkm::sim
