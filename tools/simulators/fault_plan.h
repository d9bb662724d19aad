// What a simulated chip is told to do wrong, and when.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vkm::sim {

// The exchanges of the boot firmware. `status` is the answer to the sync pulses
// or to the trigger at 115200 baud; `block` is a program block, first try or retry.
enum class FrameKind {
    any,
    status,
    watchdog,
    test_baud,
    set_baud,
    link_check,
    erase,
    block,
    status_read,
    options,
    trigger,
    last_command,
    unknown,
};

enum class FaultKind {
    lose_frame,      // the chip doesn't hear the frame: nothing is done, nothing answered
    lose_reply,      // done, but the answer is lost
    damage,          // `mask` is XORed onto the answer's byte number `value` (from its 46)
    delay,           // the answer comes `value` ms later
    twice,           // the answer comes twice, the second directly behind the first
    cut_off,         // only the first `value` bytes of the answer come
    noise,           // `bytes` come directly before the answer
    wrong_data_sum,  // the data sum of a long block answer is off by one
    other_code,      // the answer's code is `value` instead of 80, its sum being right
    wrong_length,    // the answer's length field is `value`; `extra` more bytes follow it
    power_loss,      // the frame kills the power; it returns `value` ms later, 0: never
};

struct Fault {
    FaultKind kind = FaultKind::lose_reply;
    FrameKind frame = FrameKind::any;
    int nth = 1;    // the first frame of that kind it strikes, counted from 1 since it was planned
    int times = 1;  // how many of them in a row; 0: all that follow
    std::int64_t value = 0;  // by kind, above
    std::uint8_t mask = 0x01;
    int extra = 0;
    std::vector<std::uint8_t> bytes{};
};

using FaultPlan = std::vector<Fault>;

// Frames of this kind are answered from the nth on only.
FaultPlan answers_from(FrameKind frame, int nth);

std::string_view name_of(FrameKind kind);
std::string_view name_of(FaultKind kind);
std::optional<FrameKind> frame_kind_named(std::string_view name);
std::optional<FaultKind> fault_kind_named(std::string_view name);

// "KIND@FRAME:NTH*TIMES=VALUE", everything behind FRAME being optional: "lose_reply@block:3",
// "delay@erase=2500", "noise@block:1*0=0068FF" (bytes in hexadecimal). Nothing
// when the text isn't of that form.
std::optional<Fault> parse_fault(std::string_view text);

}  // namespace vkm::sim
