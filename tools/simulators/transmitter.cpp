#include "simulators/transmitter.h"

#include <chrono>
#include <utility>

namespace vkm::sim {
namespace {

// So that a fast line isn't woken for each byte.
constexpr std::chrono::milliseconds ahead{2};

// A caller that comes late is given no more at once than this.
constexpr std::size_t most_at_once = 64 * 1024;

}  // namespace

void Transmitter::send(Instant at, std::span<const std::uint8_t> bytes) {
    if (bytes.empty()) return;
    if (runs_.empty() || free_at() < at) {
        if (!runs_.empty() && runs_.back().sent == runs_.back().bytes.size()) runs_.pop_back();
        runs_.push_back({at, {}});
    }
    runs_.back().bytes.insert(runs_.back().bytes.end(), bytes.begin(), bytes.end());
}

Instant Transmitter::free_at() const {
    if (runs_.empty()) return Instant::min();
    return runs_.back().start + wire_time(runs_.back().bytes.size(), baud_);
}

Instant Transmitter::start_of_next(const Run& run) const {
    return run.start + wire_time(run.sent, baud_);
}

Instant Transmitter::due() const {
    if (runs_.empty() || runs_.front().sent == runs_.front().bytes.size()) return never;
    return start_of_next(runs_.front());
}

void Transmitter::run(Instant now) {
    for (std::size_t count = 0; count < most_at_once && due() <= now + ahead; ++count) {
        Run& run = runs_.front();
        output_.push_back({start_of_next(run), run.bytes[run.sent], baud_});
        ++run.sent;
        ++sent_;
        forget_sent(run);
        if (run.sent == run.bytes.size() && runs_.size() > 1) runs_.pop_front();
    }
}

// A program that never pauses makes one endless run.
void Transmitter::forget_sent(Run& run) {
    if (run.sent < most_at_once) return;
    run.start += wire_time(run.sent, baud_);
    run.bytes.erase(run.bytes.begin(), run.bytes.begin() + static_cast<std::ptrdiff_t>(run.sent));
    run.sent = 0;
}

std::vector<WireByte> Transmitter::take_output() {
    return std::exchange(output_, {});
}

}  // namespace vkm::sim
