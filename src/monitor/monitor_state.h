// The state of the target monitor. The frame on its way lies in rx_frame and
// rx_count of the link: one port, one user of it at a time.
#pragma once

#include <cstdint>

namespace vkm {

inline constexpr std::int16_t debug_retries = 3;

struct MonitorState {
    bool seen_A5 = false;  // the two bytes of the mark before a frame
    bool seen_5A = false;
    std::int16_t Debug_Retries = debug_retries;  // how often a frame will still be asked for again
};

}  // namespace vkm
