// Answers of a simulated chip, and what it was told to do wrong with them.
#include <algorithm>
#include <utility>

#include "simulators/simulated_chip.h"

namespace vkm::sim {
namespace {

using std::chrono::microseconds;
using std::chrono::milliseconds;
using Bytes = std::vector<std::uint8_t>;

// Where a driver of the line is switched on shortly before an answer, the host
// sees bytes that nobody sent; a 68 among them looks like the start of a frame.
const Bytes line_noise = {0x00, 0x68, 0xFF};

constexpr std::uint8_t firmware_that_tells = 0x26;
constexpr std::size_t status_that_tells = 28;
constexpr std::uint8_t needs_header = 0x80;

constexpr std::size_t place_of_length = 3;

// A block's long answer is its code and its data sum.
void spoil_payload(Bytes& payload, FrameKind kind, const std::vector<Fault>& struck) {
    if (find_fault(struck, FaultKind::wrong_data_sum) && kind == FrameKind::block &&
        payload.size() == 2)
        ++payload[1];
    if (const Fault* fault = find_fault(struck, FaultKind::other_code))
        payload[0] = static_cast<std::uint8_t>(fault->value);
}

}  // namespace

// True when the frame comes to nothing, since it isn't heard or kills the power.
bool SimulatedChip::struck_dead(Instant at, const std::vector<Fault>& struck) {
    if (const Fault* fault = find_fault(struck, FaultKind::power_loss)) {
        switch_off();
        if (fault->value > 0)
            power_events_.push_front({at + milliseconds{fault->value}, true, false});
        return true;
    }
    return find_fault(struck, FaultKind::lose_frame) != nullptr;
}

bool SimulatedChip::precedes_answers_with_noise(FrameKind kind) const {
    return kind != FrameKind::status && (config_.feature & needs_header) != 0 &&
           silicon_->status_length >= status_that_tells && silicon_->version >= firmware_that_tells;
}

void SimulatedChip::answer(Instant at, FrameKind kind, Outcome outcome,
                           const std::vector<Fault>& struck) {
    Instant start = at + config_.turnaround + outcome.work;
    busy_until_ = start;
    if (!outcome.answered || find_fault(struck, FaultKind::lose_reply)) return;

    spoil_payload(outcome.payload, kind, struck);
    Bytes bytes = build_reply(chip_reply, outcome.payload);
    spoil_answer(bytes, place_of_length, struck);
    if (precedes_answers_with_noise(kind))
        bytes.insert(bytes.begin(), line_noise.begin(), line_noise.end());
    if (const Fault* fault = find_fault(struck, FaultKind::delay))
        start += milliseconds{fault->value};

    const double rate = outcome.rate.value_or(rate_);
    for (std::size_t i = 0; i < bytes.size(); ++i)
        sending_.push_back({start + wire_time(i, rate), bytes[i], rate});
    busy_until_ = start + wire_time(bytes.size(), rate);
    ++counters_.replies;
    log_frame({start, true, kind, rate, std::move(bytes)});
}

}  // namespace vkm::sim
