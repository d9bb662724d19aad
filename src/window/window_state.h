// The window's own flags.
#pragma once

#include "platform/event_loop.h"

namespace vkm {

struct WindowState {
    bool Unload_Pass = false;  // closing was asked for once; the next time it closes
    Instant Last_Turn{};       // when give_turn last let events run
};

}  // namespace vkm
