#include "support/virtual_line.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace vkm::test {
namespace {

// More than that many events at one instant is a target that never ends acting.
constexpr int fuse = 1'000'000;

std::string microseconds_text(Instant at) {
    return std::to_string(at.time_since_epoch().count()) + " us";
}

}  // namespace

void VirtualLine::connect(sim::Target target) {
    target_ = std::move(target);
    replies_.clear();
    replies_end_ = Instant{};
}

void VirtualLine::host_listens(Instant now, double baud) {
    if (!queue_.empty()) {
        violations.push_back("the rate changed at " + microseconds_text(now) +
                             " while a byte was on the wire");
        cut(now);
    }
    listening_ = true;
    listening_since_ = now;
    baud_ = baud;
}

void VirtualLine::host_closes(Instant now) {
    if (!queue_.empty())
        violations.push_back("the port closed at " + microseconds_text(now) +
                             " while a byte was on the wire");
    cut(now);
}

void VirtualLine::cut(Instant) {
    listening_ = false;
    queue_.clear();
    host_dropped_ = false;
    gathered_.clear();
    input.clear();
    news_ = false;
}

void VirtualLine::host_writes(Instant now, std::span<const std::uint8_t> bytes) {
    if (host_dropped_ && !bytes.empty()) {
        // The dropped byte still goes first; what follows counts again.
        host_dropped_ = false;
    }
    if (queue_.empty()) {
        run_start_ = now;
        run_sent_ = 0;
    }
    queue_.insert(queue_.end(), bytes.begin(), bytes.end());
}

void VirtualLine::drop_unsent(Instant now) {
    if (queue_.empty()) return;
    const Instant start = run_start_ + sim::wire_time(run_sent_, baud_);
    if (start >= now) {
        queue_.clear();
        return;
    }
    queue_.resize(1);
    host_dropped_ = true;
}

Instant VirtualLine::idle_at() const {
    if (queue_.empty()) return Instant{};
    return run_start_ + sim::wire_time(run_sent_ + queue_.size(), baud_);
}

bool VirtualLine::take_news() {
    return std::exchange(news_, false);
}

Instant VirtualLine::host_byte_end() const {
    if (queue_.empty()) return never;
    return run_start_ + sim::wire_time(run_sent_ + 1, baud_);
}

Instant VirtualLine::target_due() {
    return target_.due ? target_.due() : never;
}

void VirtualLine::collect_output() {
    if (!target_.take_output) return;
    for (const sim::WireByte& byte : target_.take_output()) {
        if (byte.start < replies_end_)
            violations.push_back("the target's bytes overlap at " + microseconds_text(byte.start));
        if (byte.start < time_)
            violations.push_back("the target sent into the past at " +
                                 microseconds_text(byte.start));
        replies_.push_back(byte);
        replies_end_ = byte.start + sim::wire_time(1, byte.baud);
    }
}

Instant VirtualLine::reply_end() const {
    if (replies_.empty()) return never;
    return replies_.front().start + sim::wire_time(1, replies_.front().baud);
}

void VirtualLine::receive(const sim::WireByte& byte, Instant at) {
    if (!listening_ || byte.start < listening_since_) return;
    const auto heard = sim::as_heard(byte.value, byte.baud, baud_);
    if (!heard) return;
    if (gathered_.empty()) gathered_since_ = at;
    gathered_.push_back(*heard);
    if (latency <= Microseconds(0)) hand_over();
}

Instant VirtualLine::hand_over_time() const {
    if (gathered_.empty()) return never;
    const auto since = gathered_since_.time_since_epoch();
    return Instant(since - since % latency + latency);
}

void VirtualLine::hand_over() {
    input.insert(input.end(), gathered_.begin(), gathered_.end());
    gathered_.clear();
    news_ = true;
}

Instant VirtualLine::next() {
    collect_output();
    return std::min({host_byte_end(), reply_end(), hand_over_time(), target_due()});
}

void VirtualLine::run(Instant until) {
    for (;;) {
        const Instant at = next();
        if (at == never || at > until) break;
        if (at > time_) {
            time_ = at;
            events_at_time_ = 0;
        } else if (++events_at_time_ > fuse) {
            throw std::logic_error("the target acts without end at " + microseconds_text(at));
        }
        if (host_byte_end() == at) {
            const std::uint8_t value = queue_.front();
            queue_.pop_front();
            ++run_sent_;
            if (host_dropped_ && queue_.empty()) host_dropped_ = false;
            if (target_.hear) target_.hear(at, value, baud_);
        } else if (reply_end() == at) {
            const sim::WireByte byte = replies_.front();
            replies_.pop_front();
            receive(byte, at);
        } else if (hand_over_time() == at) {
            hand_over();
        } else {
            target_.act(std::max(at, time_));
        }
    }
    time_ = std::max(time_, until);
}

}  // namespace vkm::test
