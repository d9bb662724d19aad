// The timers of the tool: records, driven by the monotonic clock. They serve as
// timeouts (one-shot, asked whether they still run) and as ticks.
#pragma once

#include <array>
#include <cstdint>

#include "platform/event_loop.h"

namespace vkm {

struct frmMain;

struct Timer {
    const char* Name = "";
    std::int32_t Interval = 0;  // ms; 0 or below never fires
    bool Enabled = false;       // runs
    Instant Due = never;        // when it fires next, while it runs
    bool Ticking = false;       // its tick is on the stack: it doesn't fire again inside it
    // What a firing does; the tick itself stops a timer that must not repeat.
    // A timer without a tick is a timeout: it stops itself when it fires.
    void (*Tick)(frmMain&) = nullptr;
};

// One row each: role, and where its tick is set (src/window/wiring.cpp) if it has one.
struct Timers {
    Timer Timer1{"Timer1"};                        // total answer time of send_command
    Timer Timer2{"Timer2"};                        // gap time of board transfers
    Timer Timer3{"Timer3"};                        // 500 ms: saves the settings once after a change
    Timer Timer4{"Timer4"};                        // closes the window after a failed block
    Timer Timer6{"Timer6"};                        // wait_ms
    Timer Timer7{"Timer7"};                        // answer wait
    Timer Timer8{"Timer8"};                        // answer wait at the final baud
    Timer Timer9{"Timer9"};                        // 4000 ms: advice when a chip stays silent
    Timer Timer10{"Timer10"};                      // 1000 ms: second of the pause between chips
    Timer Timer11{"Timer11"};                      // 20000 ms: permission to edit the buffer
    Timer Timer12{"Timer12"};                      // 1000 ms, always on: watches the program file
    Timer Timer_beep{"Timer_beep"};                // 150 ms: pause behind a beep
    Timer TimerUnload{"TimerUnload"};              // 500 ms: second pass of closing
    Timer TimerDebug{"TimerDebug"};                // 1000 ms: monitor frame
    Timer TimerDebugDisplay{"TimerDebugDisplay"};  // 35 ms: terminal display
    Timer TimerDebugAutoSend{"TimerDebugAutoSend"};    // terminal, operator's cycle
    Timer TimerSpreadAutoSend{"TimerSpreadAutoSend"};  // 25 strings, operator's cycle

    std::array<Timer*, 17> all() {
        return {&Timer1,
                &Timer2,
                &Timer3,
                &Timer4,
                &Timer6,
                &Timer7,
                &Timer8,
                &Timer9,
                &Timer10,
                &Timer11,
                &Timer12,
                &Timer_beep,
                &TimerUnload,
                &TimerDebug,
                &TimerDebugDisplay,
                &TimerDebugAutoSend,
                &TimerSpreadAutoSend};
    }
};

inline void stop_timer(Timer& timer) {
    timer.Enabled = false;
    timer.Due = never;
}

// Starts it anew, even while it runs.
inline void start_timer(Timer& timer, std::int32_t interval_ms, Instant now) {
    timer.Interval = interval_ms;
    timer.Enabled = interval_ms > 0;
    timer.Due = timer.Enabled ? now + Milliseconds(interval_ms) : never;
}

}  // namespace vkm
