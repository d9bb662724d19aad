// Gathers a reply out of the bytes that come in, whatever their batches.
//
// Works on rx_frame, rx_count and the flags of LinkState and on nothing else. It
// never writes past rx_frame: bytes that don't fit are dropped, and a reply that
// could never fit is given up as soon as its length is known, so that a length
// out of noise doesn't make the link deaf.
#pragma once

#include <cstdint>
#include <span>

#include "link/link_state.h"

namespace vkm {

// What has been gathered so far is no reply.
void forget_reply(LinkState& link);
void forget_demo_reply(LinkState& link);  // in demo_mode

enum class Gathered {
    incomplete,  // more bytes are needed
    frame,       // a frame passed its check; its flag is set
    bad_mark,    // it doesn't end with 16, or can't be a frame: forgotten
    bad_check,   // its sum or CRC is wrong
};

// Replies of chips and of the download board, 46 B9 68.
Gathered gather_reply(LinkState& link, std::span<const std::uint8_t> bytes);

// Replies of a user's own ISP program, 5A A5.
Gathered gather_demo_reply(LinkState& link, std::span<const std::uint8_t> bytes);

}  // namespace vkm
