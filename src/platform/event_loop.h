// Time, and the one way in for events from outside.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace vkm {

// A point of the monotonic clock that all waits and timers go by.
using Instant = std::chrono::time_point<std::chrono::steady_clock, std::chrono::microseconds>;
using Microseconds = std::chrono::microseconds;
using Milliseconds = std::chrono::milliseconds;

inline constexpr Instant never = Instant::max();

class EventLoop {
  public:
    virtual ~EventLoop() = default;

    // One turn: draws what the logic has changed on the screen, then hands in
    // what the operator did (handlers run inside this call), then looks at the
    // port. When nothing of that happened it sleeps, until something does or
    // `until` has come. An `until` that has passed makes it return without
    // sleeping. It may be called again from within a handler that it runs.
    virtual void turn(Instant until) = 0;

    // The monotonic clock.
    virtual Instant now() const = 0;
};

// The clock on the wall, for times that the operator sees.
class WallClock {
  public:
    virtual ~WallClock() = default;

    // Seconds since some fixed point of the past.
    virtual std::int64_t seconds() const = 0;

    // The local time of day as "hh:mm:ss".
    virtual std::string time_of_day() const = 0;
};

}  // namespace vkm
