// The serial port of a target that takes a frame, works, and answers it: what it
// hears at its own rate, what it answers and how that is spoilt, and what it had
// to object to.
//
// It is as strict as a chip: a frame with a wrong sum, length or end mark comes to
// nothing, and while the target works or sends it hears nothing.
#pragma once

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "simulators/bounded_list.h"
#include "simulators/byte_values.h"
#include "simulators/fault_strikes.h"
#include "simulators/frames.h"
#include "simulators/transmitter.h"
#include "simulators/wire.h"

namespace vkm::sim {

// A good frame that was heard, or an answer.
template <typename Frame>
struct PortEntry {
    Instant at;  // end of a frame that was heard; start of an answer's first byte
    bool answer = false;
    Frame kind = Frame::any;
    std::vector<std::uint8_t> bytes;
};

struct CommandPortConfig {
    FrameForm asked;
    FrameForm answered;
    double baud = 115200;
    std::chrono::microseconds turnaround{300};  // from a frame's end to its answer
};

// What a command came to.
struct PortOutcome {
    bool answered = true;
    std::vector<std::uint8_t> payload{};  // of the answer, from the reply code on
    std::chrono::microseconds work{0};    // before the answer
};

template <typename Frame>
class CommandPort {
  public:
    using Struck = std::vector<FaultOn<Frame>>;

    explicit CommandPort(const CommandPortConfig& config)
        : config_(config), receiver_(config.asked), transmitter_(config.baud) {}

    FaultSchedule<Frame> plan{};

    // ---- hearing --------------------------------------------------------------
    // The byte as the target understands it; nothing while it is busy, or when the byte
    // comes at another rate. It may pass over one byte value while busy.
    std::optional<std::uint8_t> understand(Instant at, std::uint8_t value, double sent_baud,
                                           std::optional<std::uint8_t> passed_over = {}) {
        if (at <= busy_until_) {
            if (value != passed_over)
                object_once("byte " + hex_text({&value, 1}) + " while it was at work");
            return std::nullopt;
        }
        const auto heard = as_heard(value, sent_baud, config_.baud);
        if (!heard) {
            object_once("byte at " + std::to_string(std::lround(sent_baud)) +
                        " baud, its own being " + std::to_string(std::lround(config_.baud)));
            receiver_.reset();
            return std::nullopt;
        }
        objected_ = false;
        if (receiver_.inside() && at - last_byte_ > longest_gap()) {
            object("frame broken off: " + hex_text(receiver_.frame()));
            receiver_.reset();
        }
        last_byte_ = at;
        return heard;
    }
    bool inside_frame() const { return receiver_.inside(); }

    // True when the byte completes a good frame.
    bool take(std::uint8_t value) {
        const auto result = receiver_.take(value);
        if (result == FrameReceiver::Result::bad) object(receiver_.objection());
        return result == FrameReceiver::Result::complete;
    }
    std::span<const std::uint8_t> frame() const { return receiver_.frame(); }
    std::uint8_t command() const { return receiver_.command(); }
    std::span<const std::uint8_t> body() const { return receiver_.body(); }

    // ---- answering --------------------------------------------------------------
    // True when an answer went out.
    bool answer(Instant at, Frame kind, PortOutcome outcome, const Struck& struck) {
        Instant start = at + config_.turnaround + outcome.work;
        busy_until_ = start;
        if (!outcome.answered || find_fault(struck, FaultKind::lose_reply)) return false;
        if (const auto* fault = find_fault(struck, FaultKind::other_code))
            outcome.payload[0] = static_cast<std::uint8_t>(fault->value);
        std::vector<std::uint8_t> bytes = build_reply(config_.answered, outcome.payload);
        spoil_answer(bytes, config_.answered.start_length, struck);
        if (const auto* fault = find_fault(struck, FaultKind::delay))
            start += std::chrono::milliseconds{fault->value};
        transmitter_.send(start, bytes);
        busy_until_ = std::max(start, transmitter_.free_at());
        log({start, true, kind, std::move(bytes)});
        return true;
    }

    Instant due() const { return transmitter_.due(); }
    void run(Instant now) { transmitter_.run(now); }
    std::vector<WireByte> take_output() { return transmitter_.take_output(); }

    // Power is gone, or another target has come: half a frame and what was being said are.
    void silence() {
        transmitter_ = Transmitter(config_.baud);
        receiver_.reset();
        busy_until_ = Instant::min();
        objected_ = false;
    }

    // ---- what is kept -----------------------------------------------------------
    void log(PortEntry<Frame> entry) { append_bounded(log_, std::move(entry), 100'000); }
    void object(std::string text) { append_bounded(faults_, std::move(text), 500); }
    const std::vector<PortEntry<Frame>>& entries() const { return log_; }
    const std::vector<std::string>& faults() const { return faults_; }
    std::vector<PortEntry<Frame>> take_entries() { return std::exchange(log_, {}); }
    std::vector<std::string> take_faults() { return std::exchange(faults_, {}); }

  private:
    // Silence inside a frame that ends it; no less than a slow sender's system may take.
    std::chrono::microseconds longest_gap() const {
        return std::max<std::chrono::microseconds>(std::chrono::milliseconds{50},
                                                   wire_time(20, config_.baud));
    }
    // To the present row of such bytes.
    void object_once(std::string text) {
        if (!objected_) object(std::move(text));
        objected_ = true;
    }

    CommandPortConfig config_;
    FrameReceiver receiver_;
    Transmitter transmitter_;
    Instant last_byte_{};
    Instant busy_until_ = Instant::min();
    bool objected_ = false;
    std::vector<PortEntry<Frame>> log_;
    std::vector<std::string> faults_;
};

}  // namespace vkm::sim
