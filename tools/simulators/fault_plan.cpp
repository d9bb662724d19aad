#include "simulators/fault_plan.h"

#include <array>
#include <limits>
#include <utility>

#include "simulators/value_forms.h"

namespace vkm::sim {
namespace {

constexpr std::array<FrameName<FrameKind>, 13> names_of_chip_frames{{
    {FrameKind::any, "any"},
    {FrameKind::status, "status"},
    {FrameKind::watchdog, "watchdog"},
    {FrameKind::test_baud, "test_baud"},
    {FrameKind::set_baud, "set_baud"},
    {FrameKind::link_check, "link_check"},
    {FrameKind::erase, "erase"},
    {FrameKind::block, "block"},
    {FrameKind::status_read, "status_read"},
    {FrameKind::options, "options"},
    {FrameKind::trigger, "trigger"},
    {FrameKind::last_command, "last_command"},
    {FrameKind::unknown, "unknown"},
}};

constexpr std::array<std::pair<FaultKind, std::string_view>, 12> fault_names{{
    {FaultKind::lose_frame, "lose_frame"},
    {FaultKind::lose_reply, "lose_reply"},
    {FaultKind::damage, "damage"},
    {FaultKind::delay, "delay"},
    {FaultKind::twice, "twice"},
    {FaultKind::cut_off, "cut_off"},
    {FaultKind::noise, "noise"},
    {FaultKind::wrong_sum, "wrong_sum"},
    {FaultKind::wrong_data_sum, "wrong_data_sum"},
    {FaultKind::other_code, "other_code"},
    {FaultKind::wrong_length, "wrong_length"},
    {FaultKind::power_loss, "power_loss"},
}};

// What the kinds do when no value is told.
void set_default_value(Fault& fault) {
    switch (fault.kind) {
        case FaultKind::damage:
            fault.value = 6;
            break;
        case FaultKind::delay:
            fault.value = 100;
            break;
        case FaultKind::cut_off:
            fault.value = 4;
            break;
        case FaultKind::noise:
            fault.bytes = {0x00, 0x68, 0xFF};
            break;
        case FaultKind::other_code:
            fault.value = 0x8F;
            break;
        case FaultKind::wrong_length:
            fault.value = 0xFFFF;
            break;
        default:
            break;
    }
}

}  // namespace

FaultPlan answers_from(FrameKind frame, int nth) {
    if (nth <= 1) return {};
    Fault fault;
    fault.kind = FaultKind::lose_reply;
    fault.frame = frame;
    fault.times = nth - 1;
    return {fault};
}

template <>
std::span<const FrameName<FrameKind>> frame_names<FrameKind>() {
    return names_of_chip_frames;
}

std::string_view name_of(FaultKind kind) {
    for (const auto& [entry, name] : fault_names)
        if (entry == kind) return name;
    return "?";
}

std::optional<FaultKind> fault_kind_named(std::string_view name) {
    for (const auto& [kind, entry] : fault_names)
        if (entry == name) return kind;
    return std::nullopt;
}

std::optional<FaultText> parse_fault_text(std::string_view text) {
    const auto value = split_off(text, '=');
    const auto times = split_off(text, '*');
    const auto nth = split_off(text, ':');
    const auto frame = split_off(text, '@');

    const auto kind = fault_kind_named(text);
    if (!kind || (frame && frame->empty())) return std::nullopt;
    FaultText read{{}, frame.value_or("")};
    Fault& fault = read.fault;
    fault.kind = *kind;
    constexpr int most = std::numeric_limits<int>::max();
    const auto nth_number = parse_whole(nth.value_or("1"), 1, most);
    const auto times_number = parse_whole(times.value_or("1"), 0, most);
    if (!nth_number || !times_number) return std::nullopt;
    fault.nth = *nth_number;
    fault.times = *times_number;

    set_default_value(fault);
    if (!value) return read;
    if (fault.kind == FaultKind::noise) {
        const auto bytes = parse_bytes(*value);
        if (!bytes) return std::nullopt;
        fault.bytes = *bytes;
    } else {
        const auto number = parse_whole(*value, 0, most);
        if (!number) return std::nullopt;
        fault.value = *number;
    }
    return read;
}

}  // namespace vkm::sim
