// The turns of the terminal and the sessions on the one port.
#include <limits>
#include <string>

#include "assistant/assistant_texts.h"
#include "assistant/serial_assistant.h"
#include "link/isp_link.h"
#include "monitor/target_monitor.h"
#include "session/session_lease.h"
#include "text/trimming.h"

namespace vkm {
namespace {

// Closing waits for what is still on its way, and no event runs meanwhile.
constexpr std::int32_t close_patience_ms = 1000;

bool shown_as_closed(const frmMain& frm) {
    return frm.screen.comOpenCOM.Caption == assistant_text::open_port;
}

// The picture beside the download's list is another one of the same port when both
// lists name it.
void show_open(frmMain& frm, bool open) {
    Screen& screen = frm.screen;
    screen.imgOpen.Visible = open;
    screen.imgNotOpen.Visible = !open;
    screen.comOpenCOM.Caption = open ? assistant_text::close_port : assistant_text::open_port;
    const bool same_port = screen.com_Debug_COM.ListIndex == screen.combCommPort.ListIndex;
    if (!open || same_port) show_port_picture(frm, open);
    frm.link.debug_mode = open;
}

// "115200,N,8,1"
std::string chosen_settings(const Screen& screen) {
    std::string settings(trimmed(text_of(screen.com_Debug_Baud)));
    settings += ',';
    settings += first_characters(trimmed(text_of(screen.com_Debug_ParityCheck)), 1);
    for (const Control* list : {&screen.com_Debug_DataBits, &screen.com_Debug_StopBits})
        settings.append(",").append(trimmed(text_of(*list)));
    return settings;
}

// The number is taken as it stands: one that no port has is refused in opening. The
// greatest index that can be stored has no number behind it.
int chosen_number(const Screen& screen) {
    const std::int32_t index = screen.com_Debug_COM.ListIndex;
    return index < std::numeric_limits<std::int32_t>::max() ? index + 1 : index;
}

bool open_chosen_port(frmMain& frm) {
    SerialPort& port = frm.platform.port;
    const int number = chosen_number(frm.screen);
    if (port.is_open()) port.close();
    port.set_port_number(number);
    return port.set_settings(chosen_settings(frm.screen)) && port.open() == 0;
}

// No job begins behind the box.
void tell_reason(frmMain& frm) {
    const Session_Lease lease(frm);
    const std::string reason = frm.platform.port.reason_text();
    frm.platform.dialogs.show_warning(reason.empty() ? assistant_text::port_refused : reason,
                                      assistant_text::title);
}

}  // namespace

void Open_Assistant_Port(frmMain& frm) {
    if (!shown_as_closed(frm)) return;
    const Session_Lease lease(frm);
    if (!lease.granted()) return;
    if (!open_chosen_port(frm)) {
        Stop_Auto_Send(frm);
        tell_reason(frm);
        return;
    }
    frm.link.demo_mode = false;
    Stop_Monitor(frm);  // what a session left behind is no dump
    show_open(frm, true);
}

void Close_Assistant_Port(frmMain& frm) {
    // Otherwise the next tick would open it again.
    Stop_Auto_Send(frm);
    if (!frm.link.debug_mode) return;  // a session's port is not the terminal's to close
    on_port_event(frm);                // what has come up to now was sent to the terminal
    Stop_Monitor(frm);
    SerialPort& port = frm.platform.port;
    if (ms_on_wire(port, port.output_count()) > close_patience_ms) port.clear_output();
    port.close();
    show_open(frm, false);
}

void Assistant_Port_Lost(frmMain& frm) {
    const bool was_sending = Stop_Auto_Send(frm);
    Close_Assistant_Port(frm);
    if (was_sending) tell_reason(frm);
}

void comOpenCOM(frmMain& frm) {
    if (shown_as_closed(frm))
        Open_Assistant_Port(frm);
    else
        Close_Assistant_Port(frm);
}

void com_Debug_Baud(frmMain& frm) {
    comOpenCOM(frm);
}

}  // namespace vkm
