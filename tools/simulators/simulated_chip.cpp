#include "simulators/simulated_chip.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "simulators/bounded_list.h"
#include "simulators/byte_values.h"
#include "simulators/chip_timing.h"

namespace vkm::sim {
namespace {

using std::chrono::microseconds;
using std::chrono::milliseconds;

constexpr double pulse_baud = 1200;
constexpr double trigger_baud = 115200;
constexpr std::uint8_t pulse_byte = 0x7F;

// A receiver that measures takes a rate for the one it knows when it is that near.
constexpr double near_enough = 0.025;

// One count a byte, eight counts.
constexpr int pulses_to_measure = 8;
// Pulses that stand further apart don't belong together.
constexpr milliseconds longest_pulse_gap{100};

// Silence inside a frame that ends it: so many bytes long, and no less than this
// time, since the sender's system may be slow in between.
constexpr std::size_t gap_in_bytes = 20;
constexpr milliseconds shortest_gap{50};

// Answers are given out that much ahead of their time, so that a fast line isn't
// woken for each byte, and a loss of power still cuts off slow ones.
constexpr milliseconds ahead{2};

constexpr std::size_t most_objections = 500;
constexpr std::size_t most_logged = 100'000;

bool near_to(double baud, double wanted) {
    return std::abs(baud / wanted - 1) < near_enough;
}

std::string baud_text(double baud) {
    return std::to_string(std::lround(baud));
}

}  // namespace

std::string_view name_of(ChipState state) {
    switch (state) {
        case ChipState::off:
            return "off";
        case ChipState::listening:
            return "listening";
        case ChipState::base:
            return "base";
        case ChipState::full_rate:
            return "full_rate";
        case ChipState::running:
            return "running";
    }
    return "?";
}

bool known_model(std::string_view model) {
    ChipConfig config;
    config.model = model;
    return silicon_of(config).has_value();
}

SimulatedChip::SimulatedChip(ChipConfig config)
    : config_(std::move(config)), silicon_(silicon_of(config_)) {
    for (const Fault& fault : config_.faults) add_fault(fault);
    if (!silicon_) {
        object("there is no chip " + config_.model);
        return;
    }
    replace({});
    counters_.chips = 1;
    if (config_.powered_at != never) power_events_.push_back({config_.powered_at, true, false});
}

Target SimulatedChip::target() {
    return {
        [this](Instant at, std::uint8_t value, double baud) { hear(at, value, baud); },
        [this] { return due(); },
        [this](Instant now) { act(now); },
        [this] { return take_output(); },
    };
}

// ---- what hands do to it ----------------------------------------------------

void SimulatedChip::power_on(Instant now) {
    power_events_.clear();
    switch_on(now);
}

void SimulatedChip::power_off(Instant) {
    power_events_.clear();
    switch_off();
}

void SimulatedChip::power_cycle(Instant now, microseconds off_for, bool fresh_chip) {
    power_off(now);
    if (fresh_chip) replace(now);
    power_events_.push_back({now + off_for, true, false});
}

void SimulatedChip::replace(Instant) {
    switch_off();
    if (!silicon_) return;
    flash_ = NorFlash(silicon_->flash_size, silicon_->sector);
    options_ = config_.options.value_or(factory_options(silicon_->letter, config_.double_speed));
    busy_answers_ = 0;
    ++counters_.chips;
}

void SimulatedChip::load_flash(std::span<const std::uint8_t> bytes) {
    flash_.fill(bytes);
}

// ---- what can be seen ---------------------------------------------------------

std::span<const int> SimulatedChip::option_numbers() const {
    return option_numbers_of(letter());
}

double SimulatedChip::clock() const {
    return is_double_speed(letter(), options_) ? 2 * config_.clock_hz : config_.clock_hz;
}

std::vector<LoggedFrame> SimulatedChip::take_log() {
    return std::exchange(log_, {});
}

std::vector<std::string> SimulatedChip::take_faults() {
    return std::exchange(faults_, {});
}

void SimulatedChip::object(std::string text) {
    append_bounded(faults_, std::move(text), most_objections);
}

void SimulatedChip::log_frame(LoggedFrame frame) {
    append_bounded(log_, std::move(frame), most_logged);
}

// ---- power ----------------------------------------------------------------------

void SimulatedChip::switch_on(Instant at) {
    if (!silicon_ || state_ != ChipState::off) return;
    // Options that change the clock come into force at power-up.
    clock_ = clock();
    ++counters_.power_ups;
    enter_firmware(at);
}

void SimulatedChip::enter_firmware(Instant at) {
    state_ = ChipState::listening;
    sending_.clear();  // what a program was saying
    greets_at_ = never;
    rate_ = pulse_baud;
    by_trigger_ = false;
    pulses_in_row_ = 0;
    receiver_.reset();
    busy_until_ = at;
    objected_ = false;
    tested_pair_.reset();
    written_sector_.reset();
    // A blank chip has no program that it could start.
    const bool waits_for_ever = config_.listen_window.count() == 0 || flash_.blank();
    listens_until_ = waits_for_ever ? never : at + config_.listen_window;
}

void SimulatedChip::switch_off() {
    state_ = ChipState::off;
    rate_ = 0;
    listens_until_ = never;
    greets_at_ = never;
    sending_.clear();
}

void SimulatedChip::run_power_events(Instant now) {
    while (!power_events_.empty() && power_events_.front().at <= now) {
        const PowerEvent event = power_events_.front();
        power_events_.pop_front();
        switch_off();
        if (event.fresh_chip) replace(event.at);
        if (event.on) switch_on(event.at);
    }
}

void SimulatedChip::start_user_program(Instant at) {
    state_ = ChipState::running;
    rate_ = 0;
    heard_in_program_.clear();
    listens_until_ = never;
    ++counters_.starts;
    if (!config_.greeting.empty()) greets_at_ = at + config_.greeting_after;
    const AfterStart& after = config_.after_start;
    if (!after.power_cycle) return;
    power_events_.push_back({at + after.off_after, false, false});
    power_events_.push_back({at + after.off_after + after.off_for, true, after.fresh_chip});
}

// ---- the line ---------------------------------------------------------------------

Instant SimulatedChip::due() const {
    Instant next = std::min(listens_until_, greets_at_);
    if (!power_events_.empty()) next = std::min(next, power_events_.front().at);
    if (!sending_.empty()) next = std::min(next, sending_.front().start);
    return next;
}

void SimulatedChip::act(Instant now) {
    run_power_events(now);
    if (state_ == ChipState::listening && listens_until_ <= now) start_user_program(now);
    if (greets_at_ <= now) greet(now);
    while (!sending_.empty() && sending_.front().start <= now + ahead) {
        output_.push_back(sending_.front());
        sending_.pop_front();
    }
}

std::vector<WireByte> SimulatedChip::take_output() {
    return std::exchange(output_, {});
}

void SimulatedChip::hear(Instant at, std::uint8_t value, double sent_baud) {
    run_power_events(at);
    if (state_ == ChipState::off) return;
    if (state_ == ChipState::running) {
        hear_in_program(at, value, sent_baud);
        return;
    }
    if (at <= busy_until_) {
        // The sync pulses run on until their sender has seen the answer.
        if (value == pulse_byte || objected_) return;
        object("byte " + hex_text({&value, 1}) + " while the chip was at work");
        objected_ = true;
        return;
    }
    if (state_ == ChipState::listening) {
        hear_in_sync(at, value, sent_baud);
        return;
    }
    const auto heard = as_heard(value, sent_baud, rate_);
    if (heard) {
        hear_frame_byte(at, *heard);
        return;
    }
    if (!objected_)
        object("byte at " + baud_text(sent_baud) + " baud, the chip being at " + baud_text(rate_));
    objected_ = true;
    receiver_.reset();
    pulses_in_row_ = 0;
}

void SimulatedChip::greet(Instant now) {
    const double rate = config_.greeting_baud;
    for (std::size_t i = 0; i < config_.greeting.size(); ++i)
        sending_.push_back({now + wire_time(i, rate), config_.greeting[i], rate});
    ++counters_.greetings;
    const Instant end = now + wire_time(config_.greeting.size(), rate);
    const bool again = config_.greeting_every.count() > 0;
    greets_at_ = again ? std::max(now + config_.greeting_every, end) : never;
}

// The program compares the last bytes that came at its rate.
void SimulatedChip::hear_in_program(Instant at, std::uint8_t value, double sent_baud) {
    if (config_.user_code.empty()) return;
    if (!near_to(sent_baud, config_.user_code_baud)) {
        heard_in_program_.clear();
        return;
    }
    heard_in_program_.push_back(value);
    if (heard_in_program_.size() > config_.user_code.size())
        heard_in_program_.erase(heard_in_program_.begin());
    if (heard_in_program_ != config_.user_code) return;
    ++counters_.user_codes;
    enter_firmware(at);
}

// Before it is connected the firmware knows two rates, and anything else is noise.
void SimulatedChip::hear_in_sync(Instant at, std::uint8_t value, double sent_baud) {
    if (near_to(sent_baud, pulse_baud)) {
        hear_pulse(at, value, sent_baud);
        return;
    }
    pulses_in_row_ = 0;
    if (near_to(sent_baud, trigger_baud)) hear_frame_byte(at, value);
}

void SimulatedChip::hear_pulse(Instant at, std::uint8_t value, double baud) {
    const bool follows = at - last_byte_ <= longest_pulse_gap;
    last_byte_ = at;
    if (value != pulse_byte) {
        pulses_in_row_ = 0;
        return;
    }
    ++counters_.pulses;
    pulses_in_row_ = follows ? pulses_in_row_ + 1 : 1;
    if (pulses_in_row_ < pulses_to_measure) return;
    pulses_in_row_ = 0;
    clock_counts_ = counts_of_pulses(clock_, baud);
    connect(at, false, pulse_baud);
}

void SimulatedChip::connect(Instant at, bool by_trigger, double baud) {
    const std::vector<Fault> struck = plan_.strike(FrameKind::status);
    if (struck_dead(at, struck)) return;
    by_trigger_ = by_trigger;
    state_ = ChipState::base;
    rate_ = rate_by_counting(clock_, baud);
    listens_until_ = never;
    receiver_.reset();
    answer(at, FrameKind::status, status(), struck);
}

void SimulatedChip::hear_frame_byte(Instant at, std::uint8_t value) {
    objected_ = false;
    const auto longest = std::max<microseconds>(shortest_gap, wire_time(gap_in_bytes, rate_));
    if (receiver_.inside() && at - last_byte_ > longest) {
        object("frame broken off: " + hex_text(receiver_.frame()));
        receiver_.reset();
    }
    const bool in_sync_again =
        state_ == ChipState::base && !by_trigger_ && !receiver_.inside() && value == pulse_byte;
    if (in_sync_again) {
        hear_pulse(at, value, pulse_baud);
        return;
    }
    last_byte_ = at;
    pulses_in_row_ = 0;
    switch (receiver_.take(value)) {
        case FrameReceiver::Result::none:
            break;
        case FrameReceiver::Result::bad:
            object(receiver_.objection());
            break;
        case FrameReceiver::Result::complete:
            frame_heard(at);
            break;
    }
}

}  // namespace vkm::sim
