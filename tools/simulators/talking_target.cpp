#include "simulators/talking_target.h"

#include <algorithm>
#include <cstdio>
#include <string>
#include <utility>

#include "simulators/bounded_list.h"

namespace vkm::sim {
namespace {

constexpr std::size_t most_heard = 8'000'000;

constexpr std::size_t text_length = 64;  // of a line, CR LF included
constexpr char first_printable = ' ';
constexpr std::size_t printables = '~' - ' ' + 1;

// "00000012 " and printable characters, each line beginning with another one.
std::string burst_line(std::size_t number) {
    char digits[24];
    std::snprintf(digits, sizeof digits, "%08zu ", number);
    std::string line = digits;
    for (std::size_t i = number; line.size() < text_length - 2; ++i)
        line += static_cast<char>(first_printable + i % printables);
    return line + "\r\n";
}

}  // namespace

std::vector<std::uint8_t> burst_bytes(BurstKind kind, std::size_t count) {
    std::vector<std::uint8_t> bytes;
    bytes.reserve(count + text_length);
    if (kind == BurstKind::count) {
        while (bytes.size() < count) bytes.push_back(static_cast<std::uint8_t>(bytes.size()));
        return bytes;
    }
    for (std::size_t number = 0; bytes.size() < count; ++number) {
        const std::string line = burst_line(number);
        bytes.insert(bytes.end(), line.begin(), line.end());
    }
    bytes.resize(count);
    return bytes;
}

TalkingTarget::TalkingTarget(TalkingConfig config)
    : config_(std::move(config)), transmitter_(config_.baud) {
    for (const Saying& saying : config_.sayings)
        planned_.push_back({saying, config_.started_at + saying.first});
}

Target TalkingTarget::target() {
    return {
        [this](Instant at, std::uint8_t value, double baud) { hear(at, value, baud); },
        [this] { return due(); },
        [this](Instant now) { act(now); },
        [this] { return transmitter_.take_output(); },
    };
}

std::vector<HeardByte> TalkingTarget::take_heard() {
    return std::exchange(heard_, {});
}

std::vector<std::uint8_t> TalkingTarget::heard_bytes() const {
    std::vector<std::uint8_t> bytes;
    for (const HeardByte& byte : heard_)
        if (byte.value) bytes.push_back(*byte.value);
    return bytes;
}

void TalkingTarget::hear(Instant at, std::uint8_t value, double sent_baud) {
    const auto heard = as_heard(value, sent_baud, config_.baud);
    append_bounded(heard_, {at, heard, sent_baud}, most_heard);
    if (config_.echo && heard) transmitter_.send(at, {&*heard, 1});
}

Instant TalkingTarget::due() const {
    Instant next = transmitter_.due();
    for (const Planned& planned : planned_) next = std::min(next, planned.at);
    return next;
}

void TalkingTarget::act(Instant now) {
    for (Planned& planned : planned_) {
        if (planned.at > now) continue;
        transmitter_.send(now, planned.saying.bytes);
        const bool again = planned.saying.every.count() > 0;
        planned.at =
            again ? std::max(planned.at + planned.saying.every, transmitter_.free_at()) : never;
    }
    transmitter_.run(now);
}

}  // namespace vkm::sim
