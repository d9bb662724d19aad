#include "simulators/debug_command.h"

#include <utility>

namespace vkm::sim {
namespace {

constexpr std::uint8_t first_byte = 0xFE;
constexpr std::uint8_t second_byte = 0xAA;
constexpr std::size_t command_length = 4;

bool can_be_next(std::span<const std::uint8_t> heard, std::uint8_t value) {
    switch (heard.size()) {
        case 0:
            return value == first_byte;
        case 1:
            return value == second_byte;
        case 2:
            return name_of(static_cast<DebugCode>(value)) != "?";
        default:
            return value == static_cast<std::uint8_t>(second_byte + heard[2]);
    }
}

}  // namespace

std::string_view name_of(DebugCode code) {
    switch (code) {
        case DebugCode::acknowledge:
            return "acknowledge";
        case DebugCode::again:
            return "again";
        case DebugCode::go_on:
            return "go_on";
    }
    return "?";
}

DebugCommandReceiver::Result DebugCommandReceiver::take(std::uint8_t value) {
    const bool fits = can_be_next(heard_, value);
    heard_.push_back(value);
    if (fits && heard_.size() < command_length) return Result::none;
    what_ = std::exchange(heard_, {});
    if (fits) return Result::complete;
    // The byte that didn't fit may begin the next one.
    if (what_.size() > 1 && value == first_byte) {
        what_.pop_back();
        heard_.push_back(value);
    }
    return Result::bad;
}

}  // namespace vkm::sim
