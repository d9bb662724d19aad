#include "simulators/dump_faults.h"

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

#include "simulators/value_forms.h"

namespace vkm::sim {
namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::uint8_t mark[] = {0xA5, 0x5A};
constexpr std::size_t place_of_length = 1;
constexpr std::size_t place_of_type = 3;
constexpr int largest_size = 0xFFFF - 17;  // that the length field can tell

struct KindRow {
    DumpFaultKind kind;
    std::string_view name;
    int value;  // when none is told
    int most;
};

constexpr std::array<KindRow, 7> kinds{{
    {DumpFaultKind::wrong_sum, "wrong_sum", 0, 0},
    {DumpFaultKind::cut_off, "cut_off", 20, std::numeric_limits<int>::max()},
    {DumpFaultKind::split_mark, "split_mark", 20, 600'000},
    {DumpFaultKind::other_length, "other_length", 0xFFFF, 0xFFFF},
    {DumpFaultKind::other_type, "other_type", 0x09, 0xFF},
    {DumpFaultKind::other_size, "other_size", 1, largest_size},
    {DumpFaultKind::noise, "noise", 0, 0},
}};

const DumpFault* find(const std::vector<DumpFault>& struck, DumpFaultKind kind) {
    const auto found = std::find_if(struck.begin(), struck.end(),
                                    [kind](const DumpFault& fault) { return fault.kind == kind; });
    return found == struck.end() ? nullptr : &*found;
}

}  // namespace

std::optional<DumpFault> parse_dump_fault(std::string_view text) {
    constexpr int most = std::numeric_limits<int>::max();
    const auto value = split_off(text, '=');
    const auto times = parse_whole(split_off(text, '*').value_or("1"), 0, most);
    const auto nth = parse_whole(split_off(text, ':').value_or("1"), 1, most);
    const auto* row = std::find_if(kinds.begin(), kinds.end(),
                                   [text](const KindRow& each) { return each.name == text; });
    if (row == kinds.end() || !nth || !times) return std::nullopt;

    DumpFault fault{row->kind, *nth, *times, row->value, {}};
    if (fault.kind == DumpFaultKind::noise) {
        const auto bytes = parse_bytes(value.value_or("00A55A41"));  // a mark that leads nowhere
        if (!bytes) return std::nullopt;
        fault.bytes = *bytes;
    } else if (value) {
        const auto number = parse_whole(*value, 0, row->most);
        if (!number) return std::nullopt;
        fault.value = *number;
    }
    return fault;
}

DumpOnWire spoiled_dump(const CpuState& state, Dump dump, const std::vector<DumpFault>& struck) {
    if (const DumpFault* fault = find(struck, DumpFaultKind::other_size))
        dump.size = static_cast<std::size_t>(fault->value);
    Bytes frame = dump_frame(state, dump);
    if (const DumpFault* fault = find(struck, DumpFaultKind::other_length)) {
        frame[place_of_length] = static_cast<std::uint8_t>(fault->value >> 8);
        frame[place_of_length + 1] = static_cast<std::uint8_t>(fault->value);
    }
    if (const DumpFault* fault = find(struck, DumpFaultKind::other_type))
        frame[place_of_type] = static_cast<std::uint8_t>(fault->value);
    renew_sum(frame);
    if (find(struck, DumpFaultKind::wrong_sum)) ++frame.back();

    frame.insert(frame.begin(), std::begin(mark), std::end(mark));
    if (const DumpFault* fault = find(struck, DumpFaultKind::cut_off))
        frame.resize(std::min(static_cast<std::size_t>(fault->value), frame.size()));

    std::size_t behind_a5 = 1;
    if (const DumpFault* fault = find(struck, DumpFaultKind::noise)) {
        frame.insert(frame.begin(), fault->bytes.begin(), fault->bytes.end());
        behind_a5 += fault->bytes.size();
    }
    const DumpFault* split = find(struck, DumpFaultKind::split_mark);
    if (!split || frame.size() < behind_a5) return {std::move(frame), 0, {}};
    return {std::move(frame), behind_a5, std::chrono::milliseconds{split->value}};
}

}  // namespace vkm::sim
