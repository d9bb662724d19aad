// What a stopped target does wrong with its frames, and with which of them.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "simulators/dump_frame.h"

namespace vkm::sim {

enum class DumpFaultKind {
    wrong_sum,     // the sum is off by one
    cut_off,       // only the first `value` bytes come, the mark's two included
    split_mark,    // `value` ms pass between A5 and 5A
    other_length,  // the length field is `value`, the frame being as it is and its sum right
    other_type,    // the type is `value`, the sum being right
    other_size,    // `value` bytes of memory instead of the dump's, length and sum being right
    noise,         // `bytes` come directly before the mark
};

struct DumpFault {
    DumpFaultKind kind = DumpFaultKind::wrong_sum;
    int nth = 1;    // the first frame that it strikes, counted from 1 since it was planned;
                    // one that is sent again counts again
    int times = 1;  // how many of them in a row; 0: all that follow
    int value = 0;  // by kind, above
    std::vector<std::uint8_t> bytes{};
};

// "KIND:NTH*TIMES=VALUE", everything behind KIND being optional: "wrong_sum:3",
// "noise:1*0=A55A" (bytes in hexadecimal). Nothing when the text isn't of that form.
std::optional<DumpFault> parse_dump_fault(std::string_view text);

// A frame as it goes over the wire, from its mark.
struct DumpOnWire {
    std::vector<std::uint8_t> bytes;
    std::size_t pause_before = 0;  // the byte with this number; only if there is a pause
    std::chrono::milliseconds pause{0};
};

DumpOnWire spoiled_dump(const CpuState& state, Dump dump, const std::vector<DumpFault>& struck);

}  // namespace vkm::sim
