#include "waiting/waiting.h"

#include <algorithm>

#include "plug.h"

namespace vkm {
namespace {

constexpr Milliseconds turn_interval{10};
constexpr std::int32_t beep_pause_ms = 150;

Instant next_due(Timers& timers) {
    Instant due = never;
    for (const Timer* timer : timers.all())
        if (timer->Enabled && !timer->Ticking) due = std::min(due, timer->Due);
    return due;
}

void fire(frmMain& frm, Timer& timer, Instant now) {
    if (!timer.Tick) {
        stop_timer(timer);
        return;
    }
    timer.Due = now + Milliseconds(timer.Interval);
    timer.Ticking = true;
    timer.Tick(frm);
    timer.Ticking = false;
}

}  // namespace

void deliver_due(frmMain& frm) {
    const Instant now = frm.platform.loop.now();
    for (Timer* timer : frm.timers.all())
        if (timer->Enabled && !timer->Ticking && timer->Due <= now) fire(frm, *timer, now);
    if (frm.link.debug_mode && !frm.platform.port.is_open())
        run_plug(frm, frm.link.Assistant_Port_Lost);
    if (frm.link.Receive_Event && frm.platform.port.is_open() &&
        frm.platform.port.input_count() > 0)
        frm.link.Receive_Event(frm);
}

void process_events(frmMain& frm, Sleep sleep) {
    EventLoop& loop = frm.platform.loop;
    loop.turn(sleep == Sleep::no ? loop.now() : next_due(frm.timers));
    deliver_due(frm);
}

void give_turn(frmMain& frm) {
    const Instant now = frm.platform.loop.now();
    if (now - frm.window.Last_Turn < turn_interval) return;
    frm.window.Last_Turn = now;
    process_events(frm);
}

void wait_ms(frmMain& frm, std::int32_t n) {
    if (n <= 0) return;
    restart_timer(frm, frm.timers.Timer6, n);
    wait_until(frm, [&] { return !frm.timers.Timer6.Enabled; });
}

void beep_times(frmMain& frm, int n) {
    for (; n > 0; --n) {
        frm.platform.sounder.beep();
        restart_timer(frm, frm.timers.Timer_beep, beep_pause_ms);
        wait_until(frm, [&] { return !frm.timers.Timer_beep.Enabled; });
    }
}

void restart_timer(frmMain& frm, Timer& timer, std::int32_t interval_ms) {
    start_timer(timer, interval_ms, frm.platform.loop.now());
}

}  // namespace vkm
