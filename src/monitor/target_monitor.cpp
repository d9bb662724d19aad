#include "monitor/target_monitor.h"

#include <array>

#include "monitor/monitor_frame.h"
#include "monitor/monitor_lists.h"
#include "waiting/waiting.h"

namespace vkm {
namespace {

constexpr std::int32_t dump_timeout_ms = 1000;
constexpr std::uint8_t command_mark = 0xFE;
constexpr std::uint8_t command_start = 0xAA;

// A target that waits for no answer may take it for something else.
void answer(frmMain& frm, std::uint8_t code) {
    if (frm.screen.che_disable_Debug_SFR_232.Value == 0) Send_Debug_Command(frm, code);
}

void take_whole_dump(frmMain& frm) {
    stop_timer(frm.timers.TimerDebug);
    const auto length = static_cast<std::size_t>(frm.link.rx_count);
    Show_Dump(frm, std::span(frm.link.rx_frame).first(length));
    answer(frm, debug_acknowledge);
    forget_dump(frm.link, frm.monitor);
}

}  // namespace

void Send_Debug_Command(frmMain& frm, std::uint8_t code) {
    const std::array<std::uint8_t, 4> command = {command_mark, command_start, code,
                                                 static_cast<std::uint8_t>(command_start + code)};
    frm.platform.port.write(command);
}

void Examine_Received(frmMain& frm, std::span<const std::uint8_t> bytes) {
    frm.monitor.Debug_Retries = debug_retries;
    Gathered_Dump last = Gathered_Dump::hunting;
    while (!bytes.empty()) {
        last = gather_dump(frm.link, frm.monitor, bytes);
        if (last == Gathered_Dump::whole) take_whole_dump(frm);
    }
    // Each batch of a dump gives the next one its full time: at 600 baud a dump is long.
    if (last == Gathered_Dump::incomplete || last == Gathered_Dump::wrong_sum)
        restart_timer(frm, frm.timers.TimerDebug, dump_timeout_ms);
    else
        stop_timer(frm.timers.TimerDebug);
}

void Stop_Monitor(frmMain& frm) {
    stop_timer(frm.timers.TimerDebug);
    forget_dump(frm.link, frm.monitor);
}

void TimerDebug_Tick(frmMain& frm) {
    // To a tool that was held up for a second the rest has come, and is read next.
    if (frm.platform.port.input_count() > 0) return;
    std::int16_t& retries = frm.monitor.Debug_Retries;
    if (retries <= 0) return stop_timer(frm.timers.TimerDebug);
    forget_dump(frm.link, frm.monitor);
    answer(frm, debug_again);
    --retries;
}

}  // namespace vkm
