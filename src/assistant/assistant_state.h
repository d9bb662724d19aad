// The state of the serial terminal. That it owns the port stands in debug_mode of
// the link.
#pragma once

#include <cstdint>

#include "assistant/receive_ring.h"

namespace vkm {

struct AssistantState {
    Receive_Ring ring;
    std::uint32_t Receive_Count = 0;  // bytes received since the counts were cleared
    std::uint32_t Send_Count = 0;     // bytes sent, or characters of text
    std::int16_t Spread_Index = 0;    // which of the 25 strings the cycle sends next
};

}  // namespace vkm
