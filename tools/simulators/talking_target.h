// A target that talks as a user's program does: it greets, says something every
// now and then, echoes, and sends much at once. It keeps all that it hears.
//
// Like the simulated chip it has no threads, no files and no clock of its own,
// and stays where it is made.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "simulators/transmitter.h"
#include "simulators/wire.h"

namespace vkm::sim {

// Bytes by which a loss is found: 00 to FF over and over, or numbered lines of
// printable text that end with CR LF. The same bytes each time, from the first.
enum class BurstKind { count, text };
std::vector<std::uint8_t> burst_bytes(BurstKind kind, std::size_t count);

struct Saying {
    std::vector<std::uint8_t> bytes;
    std::chrono::microseconds first{0};  // after the start
    // From one to the next, each being said to its end; 0: once, as a greeting is.
    std::chrono::microseconds every{0};
};

struct TalkingConfig {
    double baud = 115200;
    Instant started_at{};
    std::vector<Saying> sayings{};  // one of burst_bytes is a burst
    bool echo = false;              // says again each byte that it has understood
};

struct HeardByte {
    Instant at;                         // end of its stop bit
    std::optional<std::uint8_t> value;  // what the target makes of it; none: a framing error
    double baud = 0;                    // at which it was sent
};

class TalkingTarget {
  public:
    explicit TalkingTarget(TalkingConfig config = {});
    TalkingTarget(const TalkingTarget&) = delete;
    TalkingTarget& operator=(const TalkingTarget&) = delete;

    Target target();

    // Behind what it is saying.
    void say(Instant now, std::span<const std::uint8_t> bytes) { transmitter_.send(now, bytes); }

    const TalkingConfig& config() const { return config_; }
    std::size_t sent() const { return transmitter_.sent(); }  // bytes

    // Oldest first; of many millions the older half is forgotten. take_heard empties it.
    const std::vector<HeardByte>& heard() const { return heard_; }
    std::vector<HeardByte> take_heard();
    // The values of those that it has understood.
    std::vector<std::uint8_t> heard_bytes() const;

  private:
    struct Planned {
        Saying saying;
        Instant at;
    };

    void hear(Instant at, std::uint8_t value, double sent_baud);
    Instant due() const;
    void act(Instant now);

    TalkingConfig config_;
    Transmitter transmitter_;
    std::vector<Planned> planned_;
    std::vector<HeardByte> heard_;
};

}  // namespace vkm::sim
