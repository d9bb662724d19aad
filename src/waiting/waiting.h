// Waiting. This is the one concurrency rule of the tool: one thread, and every
// wait first lets pending events run (screen, due timers, the port's receive
// event, in that order of fairness) and then tests its flags. A wait that
// doesn't let events run starves the link.
//
// A waiting tool sleeps: it uses no processor time until something happens.
#pragma once

#include <concepts>
#include <cstdint>

#include "frmMain.h"

namespace vkm {

enum class Sleep {
    no,               // deliver what is pending and return
    until_something,  // sleep until an event comes or a timer is due
};

// The one way in for events.
void process_events(frmMain& frm, Sleep sleep = Sleep::no);

// Runs what is due inside the tool: timers, then the receive event. Part of
// process_events; the edge also calls it while a foreign loop (a dialog of the
// system) is on the stack.
void deliver_due(frmMain& frm);

// Events first, then the test; sleeps in between.
template <std::predicate Condition>
void wait_until(frmMain& frm, Condition&& condition) {
    process_events(frm);
    while (!condition()) process_events(frm, Sleep::until_something);
}

// The cheap form for long loops (a line of a file, a row of a page): lets
// events run when 10 ms have passed since the last turn, else returns at once.
void give_turn(frmMain& frm);

// Waits n ms by Timer6, blind to Stop; n of 0 returns at once.
void wait_ms(frmMain& frm, std::int32_t n);

// n beeps, each followed by 150 ms by Timer_beep; blind to Stop.
void beep_times(frmMain& frm, int n);

// Stops the timer, sets its interval and starts it, as every answer wait does.
void restart_timer(frmMain& frm, Timer& timer, std::int32_t interval_ms);

}  // namespace vkm
