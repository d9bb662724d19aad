// The clock that all waits and timers of the running tool go by.
#pragma once

#include "platform/event_loop.h"

namespace vkm {

inline Instant monotonic_now() {
    return std::chrono::time_point_cast<Microseconds>(std::chrono::steady_clock::now());
}

}  // namespace vkm
