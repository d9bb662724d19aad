// The commands of the boot firmware, from its side.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <numeric>
#include <utility>

#include "simulators/byte_values.h"
#include "simulators/chip_timing.h"
#include "simulators/simulated_chip.h"

namespace vkm::sim {
namespace {

using std::chrono::microseconds;
using std::chrono::milliseconds;
using Bytes = std::vector<std::uint8_t>;
using Body = std::span<const std::uint8_t>;

constexpr std::uint8_t code_done = 0x80;
constexpr std::uint8_t code_refused = 0x8F;

constexpr double trigger_baud = 115200;
constexpr int trigger_preamble = 4;
constexpr std::uint8_t retry_block = 0x30;
constexpr std::uint8_t no_pin = 0xFF;
constexpr std::size_t largest_block = 128;  // bytes of data in one frame
constexpr std::uint32_t erase_unit = 512;   // bytes; in it an erase command counts
constexpr int every_sector = 255;

// Rates that make sense on a line; anything else is a pair for another chip.
constexpr double slowest_rate = 500;
constexpr double fastest_rate = 260000;

// Firmware up to 0.2 is never told to erase; it erases each sector as it comes to it.
constexpr std::uint8_t last_without_erase = 0x02;

bool is_range_letter(char letter) {
    return letter >= 'D' && letter <= 'G';
}

std::string hex_number(std::uint32_t value) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%04X", value);
    return text;
}

// Length of a whole short command; 0 where the command has none of its own.
std::size_t length_of(FrameKind kind, char letter) {
    switch (kind) {
        case FrameKind::watchdog:
            return 9;
        case FrameKind::test_baud:
            return 14;
        case FrameKind::set_baud:
            return 13;
        case FrameKind::link_check:
        case FrameKind::last_command:
            return 12;
        case FrameKind::erase:
            return 15;
        case FrameKind::status:
        case FrameKind::status_read:
        case FrameKind::trigger:
            return 8;
        case FrameKind::options:
            if (letter == 'A') return 9;
            if (letter == 'C') return 12;
            return letter == 'G' ? 18 : 17;
        default:
            return 0;
    }
}

// The second half of the reload pair, as the test and the set frame repeat it.
std::uint8_t doubled_count(std::uint8_t low, int at_most) {
    return static_cast<std::uint8_t>(std::min((256 - low) * 2, at_most));
}

}  // namespace

FrameKind SimulatedChip::kind_of_frame() const {
    switch (receiver_.command()) {
        case 0x00:
        case retry_block:
            return FrameKind::block;
        case 0x50:
            return FrameKind::status_read;
        case 0x52:
            return FrameKind::last_command;
        case 0x80:
            return FrameKind::link_check;
        case 0x82:
            return FrameKind::trigger;
        case 0x84:
            return FrameKind::erase;
        case 0x86:
            return FrameKind::watchdog;
        case 0x8A:
            return FrameKind::status;
        case 0x8D:
            return silicon_->letter == 'B' ? FrameKind::unknown : FrameKind::options;
        case 0x8E:
            return FrameKind::set_baud;
        case 0x8F:
            return FrameKind::test_baud;
        default:
            return FrameKind::unknown;
    }
}

void SimulatedChip::frame_heard(Instant at) {
    const FrameKind kind = kind_of_frame();
    if (kind == FrameKind::status) {
        trigger_heard(at);
        return;
    }
    if (state_ == ChipState::listening) return;  // for nothing but the trigger
    ++counters_.frames;
    log_frame({at, false, kind, rate_, {receiver_.frame().begin(), receiver_.frame().end()}});
    const std::vector<Fault> struck = plan_.strike(kind);
    if (struck_dead(at, struck)) return;
    answer(at, kind, carry_out(kind, at), struck);
}

// The other way of connecting: a frame at 115200 baud instead of pulses.
void SimulatedChip::trigger_heard(Instant at) {
    const bool in_time = state_ == ChipState::listening || by_trigger_;
    if (!in_time || !long_enough(FrameKind::status) || !has_preamble()) return;
    ++counters_.frames;
    clock_counts_ = counts_of_trigger(clock_);
    connect(at, true, trigger_baud);
}

bool SimulatedChip::long_enough(FrameKind kind) {
    const std::size_t wanted = length_of(kind, silicon_->letter);
    const std::size_t length = receiver_.frame().size();
    if (wanted == 0 || wanted == length) return true;
    object(std::string(name_of(kind)) + " frame of " + std::to_string(length) +
           " bytes instead of " + std::to_string(wanted));
    return false;
}

bool SimulatedChip::has_preamble() {
    if (receiver_.preamble() >= trigger_preamble) return true;
    object("trigger without its four FE");
    return false;
}

SimulatedChip::Outcome SimulatedChip::acknowledged(microseconds work) const {
    return {true, {code_done}, work, std::nullopt};
}

SimulatedChip::Outcome SimulatedChip::refused(std::string why) {
    object(std::move(why));
    return {true, {code_refused}, {}, std::nullopt};
}

SimulatedChip::Outcome SimulatedChip::ignored(std::string why) {
    object(std::move(why));
    return {false, {}, {}, std::nullopt};
}

SimulatedChip::Outcome SimulatedChip::carry_out(FrameKind kind, Instant at) {
    if (!long_enough(kind)) return {false, {}, {}, std::nullopt};
    switch (kind) {
        case FrameKind::watchdog:
            return do_watchdog();
        case FrameKind::test_baud:
        case FrameKind::set_baud:
            return do_baud(kind);
        case FrameKind::link_check:
            return do_link_check();
        case FrameKind::erase:
            return do_erase();
        case FrameKind::block:
            return do_block();
        case FrameKind::status_read:
            return do_status_read();
        case FrameKind::options:
            return do_options();
        case FrameKind::trigger:
        case FrameKind::last_command:
            return do_leave(kind, at);
        default:
            return ignored("unknown command: " + hex_text(receiver_.frame()));
    }
}

// The first answer of all; what is longer than its length is left out.
SimulatedChip::Outcome SimulatedChip::status() const {
    const auto id_byte = [this](std::size_t i) {
        return i < silicon_->id.size() ? silicon_->id[i] : std::uint8_t{0xFF};
    };
    Bytes payload = {code_done};
    for (const std::uint16_t count : clock_counts_) {
        payload.push_back(static_cast<std::uint8_t>(count >> 8));
        payload.push_back(static_cast<std::uint8_t>(count));
    }
    payload.push_back(silicon_->version);
    payload.push_back(static_cast<std::uint8_t>(silicon_->letter));
    const bool one_option = option_numbers().size() == 1;
    payload.push_back(one_option ? options_[static_cast<std::size_t>(option_numbers()[0])]
                                 : std::uint8_t{0xFF});
    payload.push_back(id_byte(0));
    payload.push_back(id_byte(1));
    payload.push_back(config_.feature);
    append_options(payload);
    payload.resize(silicon_->status_length - 5, 0xFF);
    return {true, std::move(payload), {}, std::nullopt};
}

SimulatedChip::Outcome SimulatedChip::do_watchdog() {
    const std::uint8_t pin = receiver_.body()[0];
    const int port = pin >> 4;
    const int bit = pin & 0x0F;
    const bool exists = port <= 3 ? bit <= 7 : port == 4 && bit <= 3;
    if (pin != no_pin && !exists) return ignored("watchdog at " + hex_text({&pin, 1}));
    return acknowledged();
}

// Test: the answer alone comes at the new rate. Set: everything does from then on.
SimulatedChip::Outcome SimulatedChip::do_baud(FrameKind kind) {
    const bool test = kind == FrameKind::test_baud;
    const Body body = receiver_.body();
    const std::uint8_t high = body[0];
    const std::uint8_t low = body[1];
    if (body[2] != 255 - high || body[3] != doubled_count(low, test ? 254 : 255))
        return ignored(std::string(name_of(kind)) +
                       " with a pair that isn't repeated: " + hex_text(receiver_.frame()));
    check_waits(kind, body);

    const auto pair = static_cast<std::uint16_t>(high * 256 + low);
    const milliseconds until_host_has_switched{body[4]};
    if (by_trigger_ && pair == 0) return acknowledged(until_host_has_switched);
    const auto rate = rate_of_pair(silicon_->family, clock_, high, low);
    if (!rate || *rate < slowest_rate || *rate > fastest_rate)
        return ignored(std::string(name_of(kind)) + " with the impossible pair " +
                       hex_text(body.first(2)));
    if (test) {
        tested_pair_ = pair;
    } else {
        if (tested_pair_ != pair) object("set_baud to a pair that was not tested");
        rate_ = *rate;
        state_ = ChipState::full_rate;
    }
    return {true, {code_done}, until_host_has_switched, rate};
}

// The firmware takes the waits as they come; wrong ones are the host's mistake.
void SimulatedChip::check_waits(FrameKind kind, Body body) {
    const bool test = kind == FrameKind::test_baud;
    const int delay = body[4];
    const int shortest = by_trigger_ ? 2 : test ? 40 : 23;
    if (delay < shortest)
        object(std::string(name_of(kind)) + " with the delay " + std::to_string(delay));
    if (!test) return;
    // The host knows the clock to half a percent only, and may take the step beside.
    const int family = silicon_->family;
    const std::uint8_t code = body[5];
    if (code != flash_wait_code(family, clock_ * 0.995) &&
        code != flash_wait_code(family, clock_ * 1.005))
        object("test_baud with the flash wait code " + std::to_string(code) + " at " +
               std::to_string(std::lround(clock_)) + " Hz");
}

SimulatedChip::Outcome SimulatedChip::do_link_check() {
    const Body body = receiver_.body();
    if (body[0] != silicon_->family || body[2] != 0x36 || body[3] != 0x01)
        return ignored("link_check for another chip: " + hex_text(receiver_.frame()));
    return acknowledged();
}

SimulatedChip::Outcome SimulatedChip::do_erase() {
    const std::string why = objection_to_erase();
    if (!why.empty()) return refused(why + ": " + hex_text(receiver_.frame()));
    flash_.erase_below(erase_end());
    ++counters_.erases;
    return acknowledged(config_.erase_time);
}

std::string SimulatedChip::objection_to_erase() const {
    const Body body = receiver_.body();
    const Body range = body.subspan(1);
    if (!is_range_letter(silicon_->letter)) {
        if (body[0] == 0) return "erase of no sector";
        const bool filled =
            std::all_of(range.begin(), range.end(), [](std::uint8_t byte) { return byte == 0x33; });
        return filled ? "" : "erase with a range";
    }
    if (body[0] != every_sector) return "erase with a count of sectors";
    const std::uint32_t low = big_endian(range.first(3));
    const std::uint32_t high = big_endian(range.subspan(3));
    if (low > high) return "erase of a range that ends before it begins";
    return high > flash_.size() ? "erase outside the flash" : "";
}

// One past the last byte that the command erases, before it is rounded up to sectors. The
// program area goes in every case where a range is told.
std::uint32_t SimulatedChip::erase_end() const {
    const Body body = receiver_.body();
    if (is_range_letter(silicon_->letter))
        return std::max(silicon_->program_end, big_endian(body.subspan(4)));
    return body[0] == every_sector ? flash_.size() : body[0] * erase_unit;
}

SimulatedChip::Outcome SimulatedChip::do_block() {
    const Body frame = receiver_.frame();
    if (frame.size() < 15) return ignored("block without data: " + hex_text(frame));
    const std::uint32_t address = big_endian(frame.subspan(6, 4));
    const std::uint32_t count = big_endian(frame.subspan(10, 2));
    if (count + 14 != frame.size())
        return ignored("block of " + std::to_string(frame.size() - 14) + " bytes that tells " +
                       std::to_string(count));
    if (count > largest_block) return refused("block of " + std::to_string(count) + " bytes");
    if (!flash_.holds(address, count))
        return refused("block outside the flash: " + hex_number(address) + ", " +
                       std::to_string(count) + " bytes");

    const bool retry = receiver_.command() == retry_block;
    if (retry) flash_.erase_sector_of(address);
    const Body data = frame.subspan(12, count);
    const bool good = write_to_flash(address, data);
    ++counters_.blocks;
    if (retry) ++counters_.retried_blocks;

    // A long answer tells the sum of what the flash now holds, a short one only whether it is
    // right.
    Outcome outcome = acknowledged(config_.block_time);
    if (config_.short_acks) {
        if (!good) outcome.payload[0] = code_refused;
    } else {
        const std::uint8_t sum = sum_of(flash_.bytes().subspan(address, count));
        const bool hidden = !good && sum == sum_of(data);
        outcome.payload.push_back(hidden ? static_cast<std::uint8_t>(~sum) : sum);
    }
    return outcome;
}

bool SimulatedChip::write_to_flash(std::uint32_t address, Body data) {
    if (silicon_->version <= last_without_erase) {
        const auto last = address + static_cast<std::uint32_t>(data.size()) - 1;
        erase_on_entering(address / flash_.sector());
        erase_on_entering(last / flash_.sector());
    }
    const auto wrong = flash_.program(address, data);
    if (!wrong) return true;
    object("program over unerased byte at " + hex_number(*wrong));
    return false;
}

void SimulatedChip::erase_on_entering(std::uint32_t sector) {
    if (written_sector_ == sector) return;
    flash_.erase_sector_of(sector * flash_.sector());
    written_sector_ = sector;
}

SimulatedChip::Outcome SimulatedChip::do_status_read() {
    const std::uint32_t mean = std::accumulate(clock_counts_.begin(), clock_counts_.end(), 0U) / 8;
    Bytes payload = {code_done};
    for (std::size_t i = 0; i < 2; ++i)
        payload.push_back(i < silicon_->id.size() ? silicon_->id[i] : std::uint8_t{0xFF});
    payload.push_back(config_.feature);
    payload.push_back(static_cast<std::uint8_t>(mean >> 8));
    payload.push_back(static_cast<std::uint8_t>(mean));
    payload.push_back(0xFF);
    payload.push_back(0xFF);
    payload.push_back(silicon_->version);
    payload.push_back(static_cast<std::uint8_t>(silicon_->letter));
    append_options(payload);
    return {true, std::move(payload), {}, std::nullopt};
}

// Both end the firmware without an answer.
SimulatedChip::Outcome SimulatedChip::do_leave(FrameKind kind, Instant at) {
    const Outcome silent{false, {}, {}, std::nullopt};
    if (kind == FrameKind::trigger && !has_preamble()) return silent;
    start_user_program(at);
    return silent;
}

}  // namespace vkm::sim
