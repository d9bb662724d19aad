// The wire between the program's port and a simulated target, down to its bits:
// a byte takes ten bit times at the rate it is sent with, and a receiver set to
// another rate hears something else, or nothing.
//
// It has no clock of its own: VirtualLoop runs it up to a point of time, in
// order of time. It watches over what a real UART can't do either: a rate that
// changes, or a port that closes, while a byte is on the wire is a violation.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <span>
#include <string>
#include <vector>

#include "platform/event_loop.h"
#include "simulators/wire.h"

namespace vkm::test {

class VirtualLine {
  public:
    // What sits at the other end from now on; nothing does after disconnect().
    void connect(sim::Target target);
    void disconnect() { connect({}); }

    // ---- the program's end; the port calls these --------------------------

    // Opened, or the rate was changed. Bytes whose start bit came before are lost.
    void host_listens(Instant now, double baud);
    void host_closes(Instant now);
    void host_writes(Instant now, std::span<const std::uint8_t> bytes);

    // Bytes that were written and have not left the wire, dropped ones not counted.
    std::size_t unsent() const { return host_dropped_ ? 0 : queue_.size(); }

    // Drops what waits. The byte whose bits are on the wire already goes to its
    // end, as it does in a UART: its shift register can't be emptied.
    void drop_unsent(Instant now);

    // When the last byte's stop bit ends; a time that has passed when nothing is
    // on the wire.
    Instant idle_at() const;

    // The program's end has lost its wire: what was on its way is gone.
    void cut(Instant now);

    // What the program's end heard and has not read.
    std::deque<std::uint8_t> input;

    // Whether bytes came in since the last call.
    bool take_news();

    // How long an adapter gathers what it receives before it hands it on: at
    // every multiple of this. 0 hands on each byte at once.
    Microseconds latency{0};

    // ---- time; the loop calls these -----------------------------------------

    // When something happens next; `never` when the line is silent.
    Instant next();

    // Everything up to and at this time happens, in order.
    void run(Instant until);

    // What went against the nature of a wire, in words. VirtualPlatform makes
    // failures of the test of them.
    std::vector<std::string> violations;

  private:
    Instant host_byte_end() const;
    Instant target_due();
    void collect_output();
    Instant reply_end() const;
    Instant hand_over_time() const;
    void receive(const sim::WireByte& byte, Instant at);
    void hand_over();

    sim::Target target_;
    bool listening_ = false;
    Instant listening_since_{};
    double baud_ = 0;

    // Bytes written back to back since run_start_; the first `run_sent_` of them
    // have left the wire, so rounding never adds up.
    std::deque<std::uint8_t> queue_;
    Instant run_start_{};
    std::size_t run_sent_ = 0;
    bool host_dropped_ = false;  // the byte on the wire is one that was dropped

    std::deque<sim::WireByte> replies_;
    Instant replies_end_{};
    std::deque<std::uint8_t> gathered_;  // heard, and still in the adapter
    Instant gathered_since_{};
    bool news_ = false;
    Instant time_{};
    int events_at_time_ = 0;
};

}  // namespace vkm::test
