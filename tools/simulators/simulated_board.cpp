#include "simulators/simulated_board.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

namespace vkm::sim {
namespace {

using std::chrono::milliseconds;
using Bytes = std::vector<std::uint8_t>;
using Frame = std::span<const std::uint8_t>;

constexpr std::uint8_t wake_byte = 0xAA;
constexpr std::uint8_t code_done = 0x80;
constexpr std::uint8_t code_read = 0x53;
constexpr std::uint8_t retried_sector = 0x30;
constexpr std::uint8_t blank = 0xFF;

constexpr std::size_t short_length = 13;
constexpr std::size_t read_length = 11;
constexpr std::size_t block_overhead = 15;
constexpr std::size_t read_count = 128;

constexpr std::uint32_t sector = 512;
constexpr std::uint32_t second_stage_first = 0x2000;
constexpr std::uint32_t second_stage_end = 0x4000;

constexpr std::array<FrameName<BoardFrame>, 10> names{{
    {BoardFrame::any, "any"},
    {BoardFrame::wake, "wake"},
    {BoardFrame::link_check, "link_check"},
    {BoardFrame::version, "version"},
    {BoardFrame::capacity, "capacity"},
    {BoardFrame::erase, "erase"},
    {BoardFrame::erase_second, "erase_second"},
    {BoardFrame::block, "block"},
    {BoardFrame::read, "read"},
    {BoardFrame::unknown, "unknown"},
}};

CommandPortConfig port_config(const BoardConfig& config) {
    return {board_request, board_reply, 115200, config.turnaround};
}

std::string place_text(std::uint32_t address, std::size_t count) {
    char text[48];
    std::snprintf(text, sizeof text, "%04X, %zu bytes", address, count);
    return text;
}

// The whole length that a command has; 0 where it has none of its own.
std::size_t length_of(BoardFrame kind) {
    if (kind == BoardFrame::block || kind == BoardFrame::unknown) return 0;
    return kind == BoardFrame::read ? read_length : short_length;
}

}  // namespace

template <>
std::span<const FrameName<BoardFrame>> frame_names<BoardFrame>() {
    return names;
}

SimulatedBoard::SimulatedBoard(BoardConfig config)
    : config_(std::move(config)),
      port_(port_config(config_)),
      storage_(board_storage_size, blank),
      powers_at_(config_.powered_at) {
    std::copy_n(config_.storage.begin(), std::min(config_.storage.size(), storage_.size()),
                storage_.begin());
    for (const BoardFault& fault : config_.faults) add_fault(fault);
}

Target SimulatedBoard::target() {
    return {
        [this](Instant at, std::uint8_t value, double baud) { hear(at, value, baud); },
        [this] { return due(); },
        [this](Instant now) { act(now); },
        [this] { return port_.take_output(); },
    };
}

// ---- power ------------------------------------------------------------------------

void SimulatedBoard::power_on(Instant) {
    powers_at_ = never;
    switch_on();
}

void SimulatedBoard::power_off(Instant) {
    powers_at_ = never;
    switch_off();
}

void SimulatedBoard::switch_on() {
    if (powered_) return;
    powered_ = true;
    erased_ = false;
    wakes_without_power_ = 0;
    ++counters_.power_ups;
}

void SimulatedBoard::switch_off() {
    powered_ = false;
    port_.silence();
}

void SimulatedBoard::run_power(Instant now) {
    if (powers_at_ > now) return;
    powers_at_ = never;
    switch_on();
}

// ---- the line -----------------------------------------------------------------------

Instant SimulatedBoard::due() const {
    return std::min(powers_at_, port_.due());
}

void SimulatedBoard::act(Instant now) {
    run_power(now);
    port_.run(now);
}

void SimulatedBoard::hear(Instant at, std::uint8_t value, double sent_baud) {
    run_power(at);
    if (!powered_) {
        if (value != wake_byte) return;
        ++counters_.wakes;
        if (++wakes_without_power_ == config_.powered_after_wakes) switch_on();
        return;
    }
    const bool lone = !port_.inside_frame();
    if (lone && value == wake_byte) ++counters_.wakes;
    const auto heard = port_.understand(at, value, sent_baud, wake_byte);
    if (!heard) return;
    if (!port_.inside_frame() && *heard == wake_byte)
        wake(at);
    else if (port_.take(*heard))
        frame_heard(at);
}

void SimulatedBoard::wake(Instant at) {
    answer(at, BoardFrame::wake, {{wake_byte}});
}

void SimulatedBoard::frame_heard(Instant at) {
    ++counters_.frames;
    answer(at, kind_of_frame(), port_.frame());
}

void SimulatedBoard::answer(Instant at, BoardFrame kind, Frame logged) {
    port_.log({at, false, kind, {logged.begin(), logged.end()}});
    const Struck struck = port_.plan.strike(kind);
    if (const BoardFault* fault = find_fault(struck, FaultKind::power_loss)) {
        switch_off();
        if (fault->value > 0) powers_at_ = at + milliseconds{fault->value};
        return;
    }
    if (find_fault(struck, FaultKind::lose_frame)) return;
    PortOutcome outcome = carry_out(kind);
    const bool tells_data = kind == BoardFrame::read && outcome.answered;
    if (tells_data && find_fault(struck, FaultKind::wrong_data_sum)) ++outcome.payload[3];
    if (port_.answer(at, kind, std::move(outcome), struck)) ++counters_.replies;
}

// ---- commands -------------------------------------------------------------------------

BoardFrame SimulatedBoard::kind_of_frame() const {
    switch (port_.command()) {
        case 0x00:
        case retried_sector:
            return BoardFrame::block;
        case 0x0C:
            return BoardFrame::version;
        case 0x0E:
            return BoardFrame::capacity;
        case 0x53:
            return BoardFrame::read;
        case 0x80:
            return BoardFrame::link_check;
        case 0x84:
            return BoardFrame::erase;
        case 0x86:
            return BoardFrame::erase_second;
        default:
            return BoardFrame::unknown;
    }
}

PortOutcome SimulatedBoard::ignored(std::string why) {
    port_.object(std::move(why));
    return {false};
}

PortOutcome SimulatedBoard::carry_out(BoardFrame kind) {
    if (kind == BoardFrame::wake) return {true, {code_done}};
    const std::size_t length = length_of(kind);
    const Frame frame = port_.frame();
    if (length != 0 && frame.size() != length)
        return ignored(std::string(name_of_frame(kind)) + " frame of " +
                       std::to_string(frame.size()) + " bytes instead of " +
                       std::to_string(length));
    if (length == short_length && (frame[8] != 0x36 || frame[9] != 0x01))
        return ignored(std::string(name_of_frame(kind)) +
                       " frame without its mark: " + hex_text(frame));
    switch (kind) {
        case BoardFrame::link_check:
            ++counters_.link_checks;
            return {true, {code_done}};
        case BoardFrame::version:
            ++counters_.versions;
            return {true, {port_.command(), config_.version}};
        case BoardFrame::capacity:
            ++counters_.capacities;
            return {true, {port_.command(), config_.flag, config_.capacity_kb}};
        case BoardFrame::erase:
        case BoardFrame::erase_second:
            return erase(kind);
        case BoardFrame::block:
            return store_block();
        case BoardFrame::read:
            return read();
        default:
            return ignored("unknown command: " + hex_text(frame));
    }
}

PortOutcome SimulatedBoard::erase(BoardFrame kind) {
    const bool all = kind == BoardFrame::erase;
    const auto begin = storage_.begin();
    std::fill(all ? begin : begin + second_stage_first,
              all ? storage_.end() : begin + second_stage_end, blank);
    erased_ = true;
    stage_ = all ? 0 : 1;
    written_[1].clear();
    if (all) written_[0].clear();
    ++(all ? counters_.erases : counters_.second_erases);
    return {true, {code_done}, config_.erase_time};
}

PortOutcome SimulatedBoard::store_block() {
    const Frame frame = port_.frame();
    if (frame.size() <= block_overhead || frame[6] != 0 || frame[7] != 0)
        return ignored("block that is none: " + hex_text(frame));
    const std::uint32_t address = big_endian(frame.subspan(8, 2));
    const std::uint32_t count = big_endian(frame.subspan(10, 2));
    if (count + block_overhead != frame.size())
        return ignored("block of " + std::to_string(frame.size() - block_overhead) +
                       " bytes that tells " + std::to_string(count));
    if (address + count > storage_.size())
        return ignored("block outside the storage: " + place_text(address, count));
    if (!erased_) port_.object("block before an erase: " + place_text(address, count));

    const auto begin = storage_.begin() + address;
    if (port_.command() == retried_sector) {
        const auto start = storage_.begin() + (address - address % sector);
        std::fill(start, start + sector, blank);
        ++counters_.retried_sectors;
    }
    const Frame data = frame.subspan(12, count);
    const bool overwrites = !std::equal(
        data.begin(), data.end(), begin,
        [](std::uint8_t fresh, std::uint8_t old) { return old == blank || old == fresh; });
    if (overwrites) port_.object("block over other bytes: " + place_text(address, count));
    std::copy(data.begin(), data.end(), begin);
    ++counters_.blocks;
    note_written(address, count);
    return {true, {code_done}, config_.block_time};
}

void SimulatedBoard::note_written(std::uint32_t address, std::size_t count) {
    std::vector<WrittenRange>& ranges = written_[stage_];
    const WrittenRange fresh{address, address + static_cast<std::uint32_t>(count) - 1};
    const auto within = [fresh](const WrittenRange& range) {
        return fresh.first >= range.first && fresh.last <= range.last;
    };
    if (std::any_of(ranges.begin(), ranges.end(), within)) return;  // tried again
    if (!ranges.empty() && ranges.back().last + 1 == address)
        ranges.back().last = fresh.last;
    else
        ranges.push_back(fresh);
}

PortOutcome SimulatedBoard::read() {
    const std::uint32_t address = big_endian(port_.body().first(2));
    if (address + read_count > storage_.size())
        return ignored("read outside the storage: " + place_text(address, read_count));
    ++counters_.reads;
    Bytes payload = {code_read, static_cast<std::uint8_t>(address >> 8),
                     static_cast<std::uint8_t>(address)};
    const auto begin = storage_.begin() + address;
    payload.insert(payload.end(), begin, begin + read_count);
    return {true, std::move(payload)};
}

}  // namespace vkm::sim
