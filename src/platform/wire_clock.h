// When the bytes handed to a port will have left the wire.
//
// A system counts a byte as sent once it lies in the buffer of an adapter, which
// then still needs its time to shift it out. So the port reckons for itself:
// bytes leave one after another, each at its rate.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstddef>

#include "platform/event_loop.h"

namespace vkm {

class WireClock {
  public:
    // The rate of the bytes written from now on.
    void set_rate(double baud, double bits_per_byte) {
        byte_time_ =
            std::chrono::ceil<Time::duration>(std::chrono::duration<double>(bits_per_byte / baud));
    }

    void written(std::size_t bytes, Instant now) {
        free_ = std::max<Time>(free_, now) + byte_time_ * static_cast<long>(bytes);
    }

    // What had not left yet was dropped.
    void dropped() { free_ = Time{}; }

    // Bytes that have not left yet; one on its way counts.
    std::size_t unsent(Instant now) const {
        if (free_ <= now) return 0;
        const auto left = free_ - Time(now);
        return static_cast<std::size_t>((left + byte_time_ - Time::duration(1)) / byte_time_);
    }

    // When the last byte will have left; in the past when none is unsent.
    Instant free_at() const { return std::chrono::ceil<Microseconds>(free_); }

  private:
    // Finer than the loop's clock: a byte at 256000 baud takes 39.06 us, and a
    // frame has hundreds of them.
    using Time = std::chrono::time_point<std::chrono::steady_clock, std::chrono::nanoseconds>;

    Time free_{};
    Time::duration byte_time_{1};
};

}  // namespace vkm
