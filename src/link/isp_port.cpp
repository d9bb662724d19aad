// The port operations of the link.
#include "link/baud.h"
#include "link/isp_link.h"
#include "link/reply_gathering.h"
#include "platform/port_settings.h"

namespace vkm {
namespace {

constexpr int read_all = 0;
constexpr int close_tries = 3;
constexpr int restart_open_tries = 3;
constexpr std::size_t base_baud_digits = 4;

// Port numbers count from 1, the entries of the list from 0.
void take_port_number(frmMain& frm) {
    frm.platform.port.set_port_number(frm.screen.combCommPort.ListIndex + 1);
}

}  // namespace

void set_port_defaults(frmMain& frm) {
    SerialPort& port = frm.platform.port;
    port.set_read_length(read_all);
    port.clear_input();
    port.clear_output();
}

int open_port(frmMain& frm) {
    SerialPort& port = frm.platform.port;
    if (port.is_open()) port.close();
    take_port_number(frm);
    const int error = port.open();
    if (port.is_open()) return 0;
    return error > 0 ? error : not_open;
}

bool close_port(frmMain& frm) {
    SerialPort& port = frm.platform.port;
    for (int tries = 0; tries < close_tries && port.is_open(); ++tries) port.close();
    show_port_picture(frm, false);
    return port.is_open();
}

void Restart_Port(frmMain& frm) {
    if (close_port(frm)) close_port(frm);
    take_port_number(frm);
    SerialPort& port = frm.platform.port;
    for (int tries = 0; tries < restart_open_tries && !port.is_open(); ++tries) port.open();
    show_port_picture(frm, port.is_open());
}

void show_port_picture(frmMain& frm, bool open) {
    frm.screen.imgOpen_sys.Visible = open;
    frm.screen.imgNotOpen_sys.Visible = !open;
}

bool set_port_baud(frmMain& frm, std::string_view baud) {
    return frm.platform.port.set_settings(port_settings(baud));
}

Microseconds time_on_wire(const SerialPort& port, std::size_t bytes) {
    const auto settings = parse_port_settings(port.settings());
    if (!settings) return {};
    const double bits = static_cast<double>(bytes) * settings->bits_per_byte();
    return std::chrono::floor<Microseconds>(std::chrono::duration<double>(bits / settings->baud));
}

std::int32_t ms_on_wire(const SerialPort& port, std::size_t bytes) {
    return static_cast<std::int32_t>(
        std::chrono::ceil<Milliseconds>(time_on_wire(port, bytes)).count());
}

bool over_trigger(const frmMain& frm) {
    return frm.screen.cheTL.Value != 0;
}

bool held_at_base_baud(const frmMain& frm) {
    return text_of(frm.screen.cobBaudMax).substr(0, base_baud_digits) == frm.link.Base_Baud;
}

void reset_receive(frmMain& frm) {
    SerialPort& port = frm.platform.port;
    set_port_defaults(frm);
    const bool was_open = port.is_open();
    if (!was_open) {
        take_port_number(frm);  // the terminal may have left its own
        port.open();
    }
    port.read();
    if (!was_open && !held_at_base_baud(frm)) port.close();
    forget_reply(frm.link);
    frm.link.seen_46 = false;
}

}  // namespace vkm
