// The two cycles.
#include <algorithm>
#include <string>

#include "assistant/assistant_texts.h"
#include "assistant/serial_assistant.h"
#include "link/isp_link.h"
#include "session/session_lease.h"
#include "text/numbers.h"
#include "text/trimming.h"
#include "waiting/waiting.h"

namespace vkm {
namespace {

constexpr std::int32_t longest_cycle_ms = 65535;

// More than this many ms of unsent bytes, and a tick is passed over: a cycle faster
// than the wire would pile up bytes that take hours to leave.
constexpr std::int32_t most_unsent_ms = 1000;

struct Cycle {
    Control& button;
    Control& interval;  // ms, as typed
    Timer& timer;
    std::string_view start_caption;
    std::string_view stop_caption;
    std::string_view too_short;
};

Cycle auto_send(frmMain& frm) {
    using namespace assistant_text;
    return {frm.screen.comAutoSend, frm.screen.texSendCycle, frm.timers.TimerDebugAutoSend,
            start_auto_send,        stop_auto_send,          auto_send_too_short};
}

Cycle spread_send(frmMain& frm) {
    using namespace assistant_text;
    return {frm.screen.comSpreadAutoSend,
            frm.screen.texSpreadSendCycle,
            frm.timers.TimerSpreadAutoSend,
            start_spread_send,
            stop_spread_send,
            spread_send_too_short};
}

bool stop(const Cycle& cycle) {
    const bool ran = cycle.timer.Enabled;
    stop_timer(cycle.timer);
    cycle.button.Caption = cycle.start_caption;
    return ran;
}

// No cycle begins while a session runs: it would open the port behind it.
void start(frmMain& frm, const Cycle& cycle) {
    const Session_Lease lease(frm);
    if (!lease.granted()) return;
    const double wanted = leading_number(cycle.interval.Text);
    if (wanted < 1) {
        stop_timer(cycle.timer);
        return frm.platform.dialogs.show_text(cycle.too_short);
    }
    const std::int32_t interval = std::min(round_half_even(wanted), longest_cycle_ms);
    // What holds is what stands there.
    if (wanted > longest_cycle_ms) cycle.interval.Text = std::to_string(interval);
    restart_timer(frm, cycle.timer, interval);
    cycle.button.Caption = cycle.stop_caption;
}

void toggle(frmMain& frm, const Cycle& cycle) {
    if (cycle.button.Caption == cycle.start_caption)
        start(frm, cycle);
    else
        stop(cycle);
}

bool wire_keeps_up(const frmMain& frm) {
    const SerialPort& port = frm.platform.port;
    return ms_on_wire(port, port.output_count()) <= most_unsent_ms;
}

bool blank(const Control& text) {
    return trimmed(text.Text).empty();
}

// The first element from here on with something to send; -1 when there is none.
int next_filled(const frmMain& frm, std::int16_t from) {
    const auto& texts = frm.screen.texSpreadSend;
    const auto found = std::find_if_not(texts.begin() + from, texts.end(), blank);
    return found == texts.end() ? -1 : static_cast<int>(found - texts.begin());
}

}  // namespace

void comAutoSend(frmMain& frm) {
    toggle(frm, auto_send(frm));
}

void comSpreadAutoSend(frmMain& frm) {
    toggle(frm, spread_send(frm));
}

bool Stop_Auto_Send(frmMain& frm) {
    const bool single_ran = stop(auto_send(frm));
    const bool spread_ran = stop(spread_send(frm));
    return single_ran || spread_ran;
}

void TimerDebugAutoSend_Tick(frmMain& frm) {
    if (wire_keeps_up(frm)) comDebugSend(frm);
}

void TimerSpreadAutoSend_Tick(frmMain& frm) {
    if (!wire_keeps_up(frm)) return;
    std::int16_t& index = frm.assistant.Spread_Index;
    const auto count = static_cast<std::int16_t>(frm.screen.texSpreadSend.size());
    if (index < 0 || index >= count) index = 0;
    int element = next_filled(frm, index);
    if (element < 0) {
        index = 0;
        element = next_filled(frm, index);
    }
    if (element < 0)
        stop(spread_send(frm));
    else
        comSpreadSendCom(frm, element);
}

}  // namespace vkm
