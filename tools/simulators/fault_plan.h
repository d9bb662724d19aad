// What a simulated target is told to do wrong, and when. Each kind of target has
// frames of its own; what can go wrong with them is the same.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
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
    lose_frame,      // the target doesn't hear the frame: nothing is done, nothing answered
    lose_reply,      // done, but the answer is lost
    damage,          // `mask` is XORed onto the answer's byte number `value` (from its 46)
    delay,           // the answer comes `value` ms later
    twice,           // the answer comes twice, the second directly behind the first
    cut_off,         // only the first `value` bytes of the answer come
    noise,           // `bytes` come directly before the answer
    wrong_sum,       // the sum or CRC of the answer is wrong
    wrong_data_sum,  // what the answer tells of the data is off by one: the data sum of a
                     // block, the first byte of what was read
    other_code,      // the answer's code is `value` instead of 80, its sum being right
    wrong_length,    // the answer's length field is `value`; `extra` more bytes follow it
    power_loss,      // the frame kills the power; it returns `value` ms later, 0: never
};

template <typename Frame>
struct FaultOn {
    FaultKind kind = FaultKind::lose_reply;
    Frame frame = Frame::any;
    int nth = 1;    // the first frame of that kind it strikes, counted from 1 since it was planned
    int times = 1;  // how many of them in a row; 0: all that follow
    std::int64_t value = 0;  // by kind, above
    std::uint8_t mask = 0x01;
    int extra = 0;
    std::vector<std::uint8_t> bytes{};
};

using Fault = FaultOn<FrameKind>;
using FaultPlan = std::vector<Fault>;

// Frames of this kind are answered from the nth on only.
FaultPlan answers_from(FrameKind frame, int nth);

// The names of a target's frames, in plans and reports; `any` is one of them.
template <typename Frame>
using FrameName = std::pair<Frame, std::string_view>;
template <typename Frame>
std::span<const FrameName<Frame>> frame_names();
template <>
std::span<const FrameName<FrameKind>> frame_names<FrameKind>();

template <typename Frame>
std::string_view name_of_frame(Frame kind) {
    for (const auto& [entry, name] : frame_names<Frame>())
        if (entry == kind) return name;
    return "?";
}
inline std::string_view name_of(FrameKind kind) {
    return name_of_frame(kind);
}
template <typename Frame>
std::optional<Frame> frame_named(std::string_view name) {
    for (const auto& [kind, entry] : frame_names<Frame>())
        if (entry == name) return kind;
    return std::nullopt;
}
inline std::optional<FrameKind> frame_kind_named(std::string_view name) {
    return frame_named<FrameKind>(name);
}
std::string_view name_of(FaultKind kind);
std::optional<FaultKind> fault_kind_named(std::string_view name);

// "KIND@FRAME:NTH*TIMES=VALUE", everything behind FRAME being optional: "lose_reply@block:3",
// "delay@erase=2500", "noise@block:1*0=0068FF" (bytes in hexadecimal). Nothing
// when the text isn't of that form.
template <typename Frame>
std::optional<FaultOn<Frame>> parse_fault_on(std::string_view text);
inline std::optional<Fault> parse_fault(std::string_view text) {
    return parse_fault_on<FrameKind>(text);
}

// The same without the frame, which is told as it stands; empty: any.
struct FaultText {
    FaultOn<FrameKind> fault;
    std::string_view frame;
};
std::optional<FaultText> parse_fault_text(std::string_view text);

template <typename Frame>
std::optional<FaultOn<Frame>> parse_fault_on(std::string_view text) {
    auto read = parse_fault_text(text);
    if (!read) return std::nullopt;
    const auto frame = frame_named<Frame>(read->frame.empty() ? "any" : read->frame);
    if (!frame) return std::nullopt;
    Fault& terms = read->fault;
    return FaultOn<Frame>{terms.kind,  *frame,     terms.nth,   terms.times,
                          terms.value, terms.mask, terms.extra, std::move(terms.bytes)};
}

}  // namespace vkm::sim
