// Entries of a chip's fault plan in short.
#pragma once

#include "simulators/fault_plan.h"

namespace vkm::test {

// The value of `times` that strikes every frame from the nth on.
inline constexpr int always = 0;

// The chip doesn't hear the frame.
inline sim::Fault lose_frame(sim::FrameKind frame, int times = 1, int nth = 1) {
    return {.kind = sim::FaultKind::lose_frame, .frame = frame, .nth = nth, .times = times};
}

// It does what it is asked and its answer is lost.
inline sim::Fault lose_reply(sim::FrameKind frame, int times = 1, int nth = 1) {
    return {.kind = sim::FaultKind::lose_reply, .frame = frame, .nth = nth, .times = times};
}

inline sim::Fault fault_of(sim::FaultKind kind, sim::FrameKind frame, std::int64_t value,
                           int times = 1) {
    return {.kind = kind, .frame = frame, .times = times, .value = value};
}

}  // namespace vkm::test
