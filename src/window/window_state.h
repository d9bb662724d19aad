// The window's own state.
#pragma once

#include <cstdint>

#include "platform/event_loop.h"

namespace vkm {

struct WindowState {
    std::int32_t Full_Width = 0;  // twips: width of the window before it was shrunk
    bool Moved = false;           // moved or resized since its place was saved
    Instant Last_Turn{};          // when give_turn last let events run
};

}  // namespace vkm
