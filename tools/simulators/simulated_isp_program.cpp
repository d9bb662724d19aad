#include "simulators/simulated_isp_program.h"

#include <algorithm>
#include <cstdio>
#include <utility>

namespace vkm::sim {
namespace {

using std::chrono::milliseconds;
using Bytes = std::vector<std::uint8_t>;

constexpr std::uint8_t code_done = 0x80;
constexpr std::uint8_t retry_block = 0xB4;
constexpr std::size_t short_length = 8;
constexpr std::size_t block_overhead = 14;

constexpr std::array<FrameName<IspFrame>, 7> names{{
    {IspFrame::any, "any"},
    {IspFrame::connect, "connect"},
    {IspFrame::version, "version"},
    {IspFrame::erase, "erase"},
    {IspFrame::block, "block"},
    {IspFrame::end, "end"},
    {IspFrame::unknown, "unknown"},
}};

CommandPortConfig port_config(const IspConfig& config) {
    return {isp_frame, isp_frame, config.baud, config.turnaround};
}

std::string place_text(std::uint32_t address, std::size_t count) {
    char text[48];
    std::snprintf(text, sizeof text, "%04X, %zu bytes", address, count);
    return text;
}

Bytes with_sum(std::uint16_t sum) {
    return {code_done, static_cast<std::uint8_t>(sum >> 8), static_cast<std::uint8_t>(sum)};
}

}  // namespace

template <>
std::span<const FrameName<IspFrame>> frame_names<IspFrame>() {
    return names;
}

SimulatedIspProgram::SimulatedIspProgram(IspConfig config)
    : config_(std::move(config)), port_(port_config(config_)) {
    for (const IspFault& fault : config_.faults) add_fault(fault);
    start();
}

Target SimulatedIspProgram::target() {
    return {
        [this](Instant at, std::uint8_t value, double baud) { hear(at, value, baud); },
        [this] { return due(); },
        [this](Instant now) { act(now); },
        [this] { return port_.take_output(); },
    };
}

// With power, and its flash as it is delivered.
void SimulatedIspProgram::start() {
    flash_ = NorFlash(config_.flash_size, config_.sector);
    port_.silence();
    powered_ = true;
    awake_ = config_.user_code.empty();
    erased_ = false;
    leaves_at_ = never;
    returns_at_ = never;
    heard_.clear();
}

void SimulatedIspProgram::replace(Instant) {
    start();
    ++counters_.chips;
}

// ---- the line -----------------------------------------------------------------------

Instant SimulatedIspProgram::due() const {
    return std::min({leaves_at_, returns_at_, port_.due()});
}

void SimulatedIspProgram::act(Instant now) {
    run_leave(now);
    port_.run(now);
}

void SimulatedIspProgram::run_leave(Instant now) {
    if (leaves_at_ <= now) {
        leaves_at_ = never;
        awake_ = false;
        heard_.clear();
        ++counters_.leaves;
    }
    if (returns_at_ <= now) {
        returns_at_ = never;
        powered_ = true;
        awake_ = config_.user_code.empty();
        heard_.clear();
    }
}

void SimulatedIspProgram::hear(Instant at, std::uint8_t value, double sent_baud) {
    run_leave(at);
    if (!powered_) return;
    if (!awake_) {
        hear_in_program(value, sent_baud);
        return;
    }
    const auto heard = port_.understand(at, value, sent_baud);
    if (heard && port_.take(*heard)) frame_heard(at);
}

void SimulatedIspProgram::hear_in_program(std::uint8_t value, double sent_baud) {
    if (config_.user_code.empty()) return;
    const auto heard = as_heard(value, sent_baud, config_.user_code_baud);
    if (!heard) {
        heard_.clear();
        return;
    }
    heard_.push_back(*heard);
    if (heard_.size() > config_.user_code.size()) heard_.erase(heard_.begin());
    if (heard_ != config_.user_code) return;
    awake_ = true;
    erased_ = false;
    port_.silence();
    ++counters_.user_codes;
}

void SimulatedIspProgram::frame_heard(Instant at) {
    const IspFrame kind = kind_of_frame();
    ++counters_.frames;
    port_.log({at, false, kind, {port_.frame().begin(), port_.frame().end()}});
    const Struck struck = port_.plan.strike(kind);
    if (const IspFault* fault = find_fault(struck, FaultKind::power_loss)) {
        powered_ = false;
        leaves_at_ = never;
        port_.silence();
        erased_ = false;
        if (fault->value > 0) returns_at_ = at + milliseconds{fault->value};
        return;
    }
    if (find_fault(struck, FaultKind::lose_frame)) return;
    PortOutcome outcome = carry_out(kind, at);
    const bool tells_sum = kind == IspFrame::block && outcome.answered;
    if (tells_sum && find_fault(struck, FaultKind::wrong_data_sum)) ++outcome.payload[2];
    if (config_.silent) outcome.answered = false;
    if (port_.answer(at, kind, std::move(outcome), struck)) ++counters_.replies;
}

// ---- commands -------------------------------------------------------------------------

IspFrame SimulatedIspProgram::kind_of_frame() const {
    switch (port_.command()) {
        case 0xB0:
            return IspFrame::connect;
        case 0xB1:
            return IspFrame::end;
        case 0xB2:
            return IspFrame::erase;
        case 0xB3:
        case retry_block:
            return IspFrame::block;
        case 0xB5:
            return IspFrame::version;
        default:
            return IspFrame::unknown;
    }
}

PortOutcome SimulatedIspProgram::ignored(std::string why) {
    port_.object(std::move(why));
    return {false};
}

PortOutcome SimulatedIspProgram::carry_out(IspFrame kind, Instant at) {
    const auto frame = port_.frame();
    if (kind == IspFrame::unknown) return ignored("unknown command: " + hex_text(frame));
    if (kind == IspFrame::block) return write_block();
    if (frame.size() != short_length)
        return ignored(std::string(name_of_frame(kind)) + " frame of " +
                       std::to_string(frame.size()) + " bytes instead of " +
                       std::to_string(short_length));
    switch (kind) {
        case IspFrame::connect:
            ++counters_.connects;
            return {true, {code_done}};
        case IspFrame::version:
            ++counters_.versions;
            return {true, {code_done, 0x10, config_.code[0], config_.code[1], config_.chip_byte}};
        case IspFrame::erase:
            return erase();
        default:
            ++counters_.ends;
            // The order comes twice; it stays for the second.
            if (leaves_at_ == never) leaves_at_ = at + config_.leave_after;
            return {config_.answers_end, {code_done}};
    }
}

PortOutcome SimulatedIspProgram::erase() {
    flash_.erase_below(flash_.size());
    erased_ = true;
    ++counters_.erases;
    return {true, {code_done}, config_.erase_time};
}

PortOutcome SimulatedIspProgram::write_block() {
    const auto frame = port_.frame();
    if (frame.size() <= block_overhead) return ignored("block without data: " + hex_text(frame));
    const std::uint32_t address = big_endian(frame.subspan(5, 4));
    const std::uint32_t count = big_endian(frame.subspan(9, 2));
    if (count + block_overhead != frame.size())
        return ignored("block of " + std::to_string(frame.size() - block_overhead) +
                       " bytes that tells " + std::to_string(count));
    if (!flash_.holds(address, count))
        return ignored("block outside the flash: " + place_text(address, count));
    if (!erased_) port_.object("block before an erase: " + place_text(address, count));

    const auto data = frame.subspan(11, count);
    const auto wrong = flash_.program(address, data);
    if (wrong) port_.object("program over unerased byte at " + place_text(*wrong, 1));
    ++counters_.blocks;
    if (port_.command() == retry_block) ++counters_.retried_blocks;
    // It tells the sum of what the flash now holds.
    std::uint16_t sum = sum16_of(flash_.bytes().subspan(address, count));
    if (wrong && sum == sum16_of(data)) sum = static_cast<std::uint16_t>(~sum);
    return {true, with_sum(sum), config_.block_time};
}

}  // namespace vkm::sim
