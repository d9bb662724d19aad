#include "pseudo_terminal/paced_line.h"

#include <algorithm>
#include <utility>

namespace vkm::sim {
namespace {

using std::chrono::milliseconds;

// The host's clock and this line's differ by what the system needs to wake them.
// Bytes that would have left the wire so soon after a change of rate have left it.
constexpr milliseconds wake_allowance{25};

// Bytes that end so soon after one another are handled together: a terminal
// brings them in lumps anyway, and what counts is the last one's time.
constexpr milliseconds lump_to_host{1};
constexpr milliseconds lump_to_target{5};

// End of the last byte that can be handled together with the first.
template <typename Bytes>
Instant end_of_lump(const Bytes& bytes, milliseconds lump) {
    const Instant latest = bytes.front().end + lump;
    if (bytes.back().end <= latest) return bytes.back().end;
    Instant end = bytes.front().end;
    for (const auto& byte : bytes) {
        if (byte.end > latest) break;
        end = byte.end;
    }
    return end;
}

}  // namespace

void PacedLine::host_rate(Instant now, double baud) {
    if (baud == baud_) return;
    baud_ = baud;
    run_length_ = 0;
    const auto caught = std::find_if(to_target_.begin(), to_target_.end(), [now](const Byte& byte) {
        return byte.end > now + wake_allowance;
    });
    if (caught == to_target_.end()) return;
    ++lost_;
    caught->baud = 0;
    std::vector<std::uint8_t> behind;
    for (auto byte = caught + 1; byte != to_target_.end(); ++byte) behind.push_back(byte->value);
    to_target_.erase(caught + 1, to_target_.end());
    for (const std::uint8_t value : behind) put_on_wire(now, value);
}

void PacedLine::host_writes(Instant now, std::span<const std::uint8_t> bytes) {
    for (const std::uint8_t value : bytes) put_on_wire(now, value);
}

void PacedLine::put_on_wire(Instant now, std::uint8_t value) {
    const Instant run_end = run_start_ + wire_time(run_length_, baud_);
    if (run_length_ == 0 || run_end < now) {
        run_start_ = to_target_.empty() ? now : std::max(now, to_target_.back().end);
        run_length_ = 0;
    }
    const Instant start = run_start_ + wire_time(run_length_, baud_);
    ++run_length_;
    to_target_.push_back({start, run_start_ + wire_time(run_length_, baud_), value, baud_});
}

void PacedLine::collect_answers() {
    for (const WireByte& byte : target_.take_output())
        to_host_.push_back(
            {byte.start, byte.start + wire_time(1, byte.baud), byte.value, byte.baud});
}

Instant PacedLine::next() const {
    Instant next = target_.due();
    if (!to_target_.empty()) next = std::min(next, end_of_lump(to_target_, lump_to_target));
    if (!to_host_.empty()) next = std::min(next, end_of_lump(to_host_, lump_to_host));
    return next;
}

void PacedLine::run(Instant now) {
    for (;;) {
        const Instant target_hears = to_target_.empty() ? never : to_target_.front().end;
        const Instant host_hears = to_host_.empty() ? never : to_host_.front().end;
        const Instant target_acts = target_.due();
        const Instant first = std::min({target_hears, host_hears, target_acts});
        if (first == never || first > now) return;
        if (first == target_acts) {
            target_.act(target_acts);
        } else if (first == target_hears) {
            const Byte byte = to_target_.front();
            to_target_.pop_front();
            target_.hear(byte.end, byte.value, byte.baud);
        } else {
            const Byte byte = to_host_.front();
            to_host_.pop_front();
            const auto heard = as_heard(byte.value, byte.baud, baud_);
            if (heard) heard_by_host_.push_back(*heard);
        }
        collect_answers();
    }
}

std::vector<std::uint8_t> PacedLine::take_for_host() {
    return std::exchange(heard_by_host_, {});
}

void PacedLine::cut() {
    to_target_.clear();
    to_host_.clear();
    heard_by_host_.clear();
    run_length_ = 0;
}

}  // namespace vkm::sim
