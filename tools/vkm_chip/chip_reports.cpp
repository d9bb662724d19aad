#include "vkm_chip/chip_reports.h"

#include <cmath>
#include <cstdio>
#include <utility>

#include "simulators/byte_values.h"

namespace vkm::sim {
namespace {

constexpr std::uint8_t done_code = 0x80;
constexpr std::uint8_t busy_code = 0x81;
constexpr std::size_t place_of_code = 5;

std::string rounded(double value) {
    return std::to_string(std::lround(value));
}

std::string block_text(const std::vector<std::uint8_t>& frame) {
    if (frame.size() < 14) return {};
    char text[64];
    std::snprintf(text, sizeof text, "block 0x%04X %d%s", frame[8] * 256U + frame[9],
                  frame[10] * 256 + frame[11], frame[5] == 0x30 ? " retry" : "");
    return text;
}

// What is worth a line of a frame that came in.
std::string frame_text(const LoggedFrame& frame) {
    switch (frame.kind) {
        case FrameKind::erase:
            return "erasing";
        case FrameKind::block:
            return block_text(frame.bytes);
        case FrameKind::options:
            return "option_frame " + hex_text(frame.bytes);
        default:
            return {};
    }
}

// And of an answer.
std::string answer_text(const LoggedFrame& answer, const SimulatedChip& chip) {
    if (answer.bytes.size() <= place_of_code) return {};
    const std::uint8_t code = answer.bytes[place_of_code];
    if (answer.kind == FrameKind::erase && code == done_code) return "erased";
    if (answer.kind != FrameKind::options) return {};
    if (code == busy_code) return "busy";
    return code == done_code ? "options " + options_text(chip) : std::string{};
}

std::string change_text(const SimulatedChip& chip) {
    switch (chip.state()) {
        case ChipState::off:
            return "unpowered";
        case ChipState::listening:
            return "powered";
        case ChipState::base:
            return "connected " + rounded(chip.clock()) + " Hz " + rounded(chip.rate()) + " baud";
        case ChipState::full_rate:
            return "rate " + rounded(chip.rate());
        case ChipState::running:
            return "started";
    }
    return {};
}

}  // namespace

std::vector<std::string> ChipReporter::news(SimulatedChip& chip, Instant now) {
    std::vector<std::string> lines;
    const auto tell = [&lines](std::string text) {
        if (!text.empty()) lines.push_back(std::move(text));
    };
    for (const LoggedFrame& frame : chip.take_log()) {
        if (frame.from_chip)
            to_come_.emplace_back(frame.at, answer_text(frame, chip));
        else
            tell(frame_text(frame));
    }
    if (chip.state() == ChipState::off) to_come_.clear();
    for (; !to_come_.empty() && to_come_.front().first <= now; to_come_.pop_front())
        tell(to_come_.front().second);
    if (chip.state() != state_) {
        state_ = chip.state();
        rested_ = rested_ || state_ == ChipState::off || state_ == ChipState::running;
        tell(change_text(chip));
    }
    for (std::string& objection : chip.take_faults()) tell("objection " + std::move(objection));
    return lines;
}

std::string options_text(const SimulatedChip& chip) {
    std::string text;
    for (const int number : chip.option_numbers()) {
        char entry[16];
        std::snprintf(entry, sizeof entry, "%d=%02X", number,
                      chip.options()[static_cast<std::size_t>(number)]);
        if (!text.empty()) text += ' ';
        text += entry;
    }
    return text;
}

std::string state_text(const SimulatedChip& chip) {
    const ChipCounters& counters = chip.counters();
    return std::string(chip.state_name()) + " chips=" + std::to_string(counters.chips) +
           " power_ups=" + std::to_string(counters.power_ups) +
           " frames=" + std::to_string(counters.frames) +
           " replies=" + std::to_string(counters.replies) +
           " erases=" + std::to_string(counters.erases) +
           " blocks=" + std::to_string(counters.blocks) +
           " retried_blocks=" + std::to_string(counters.retried_blocks) +
           " option_writes=" + std::to_string(counters.option_writes) +
           " starts=" + std::to_string(counters.starts) +
           " user_codes=" + std::to_string(counters.user_codes);
}

}  // namespace vkm::sim
