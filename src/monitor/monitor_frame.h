// How the dumps of a debug agent are found among whatever else a target sends.
//
// A dump is the mark A5 5A, then a frame: AA, its length (two bytes, the high one
// first, from AA to the sum), type, a byte without meaning, two bytes of address,
// seven registers, R1, R0, the payload, and the sum of all bytes before it. The
// frame is gathered in rx_frame and rx_count of the link, never more than 1100
// bytes of it.
#pragma once

#include <cstdint>
#include <span>

#include "link/link_state.h"
#include "monitor/monitor_state.h"

namespace vkm {

inline constexpr int longest_monitor_frame = 1100;  // bytes

enum class Gathered_Dump {
    hunting,     // no mark yet, or one that wasn't followed by a frame
    incomplete,  // the mark is here, and of the frame as much as has come
    wrong_sum,   // a frame came to its end and isn't right; the mark stays
    whole,       // rx_frame holds a good frame of rx_count bytes
};

// Takes bytes off the front of `bytes` up to the end of a good frame, or all of them:
// what comes behind a broken frame in the same batch belongs to it. After `whole` the
// caller reads the frame and calls forget_dump before the next call.
Gathered_Dump gather_dump(LinkState& link, MonitorState& monitor,
                          std::span<const std::uint8_t>& bytes);

// Back to the hunt for a mark.
void forget_dump(LinkState& link, MonitorState& monitor);

}  // namespace vkm
