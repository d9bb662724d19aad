// Time that costs nothing: the event loop of the tests. A sleep moves the clock
// to the next thing that happens, on the line or by the operator's hand, so a
// wait of an hour takes no time and every run is the same.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <stdexcept>
#include <string>

#include "platform/event_loop.h"
#include "support/virtual_line.h"

namespace vkm::test {

// The program under test would hang: it sleeps and nothing can ever wake it, it
// turns without end at one instant, or the test's time is up.
struct Hang : std::runtime_error {
    using std::runtime_error::runtime_error;
};

class VirtualLoop final : public EventLoop {
  public:
    explicit VirtualLoop(VirtualLine& line) : line_(line) {}

    // ---- the seam -----------------------------------------------------------
    void turn(Instant until) override;
    Instant now() const override { return now_; }

    // ---- the test's side ------------------------------------------------------

    // Something that happens from outside (an operator's click, power, a plug),
    // inside a turn of the loop. What is due at the same time runs in the order
    // of the calls; a time that has passed means the next turn.
    void at(Instant time, std::function<void()> action);
    void after(Microseconds delay, std::function<void()> action) {
        at(now_ + delay, std::move(action));
    }

    // Time since the loop was made.
    Microseconds elapsed() const { return now_ - start_; }
    Instant start() const { return start_; }

    // The line goes on up to this time while the program stands still in a call
    // to its port: nothing of the operator's happens.
    void let_line_run(Instant until);

    // A machine that wakes late: a sleep that nothing else ends lasts that much longer.
    Microseconds oversleep{0};

    // How far the clock may go before the test has failed.
    Microseconds time_limit = std::chrono::hours(2);
    // How many turns may pass without time passing.
    int turn_limit = 1'000'000;
    // What the message of a Hang ends with, for example the log.
    std::function<std::string()> tell;

    std::uint64_t turns = 0;   // so far
    std::uint64_t sleeps = 0;  // turns in which the clock went on

  private:
    void go(Instant time);
    bool run_due_actions();
    [[noreturn]] void hang(const std::string& why) const;

    VirtualLine& line_;
    // Far from zero, as a real clock is, so that a time never set shows itself.
    Instant start_{std::chrono::hours(1)};
    Instant now_ = start_;
    std::multimap<Instant, std::function<void()>> actions_;
    int turns_at_now_ = 0;
};

// The clock on the wall, driven by the loop's time.
class VirtualWallClock final : public WallClock {
  public:
    explicit VirtualWallClock(const VirtualLoop& loop) : loop_(loop) {}

    std::int64_t seconds() const override;
    std::string time_of_day() const override;

    // What it shows when the loop starts, in seconds since a midnight.
    std::int64_t start = 10 * 3600;

  private:
    const VirtualLoop& loop_;
};

}  // namespace vkm::test
