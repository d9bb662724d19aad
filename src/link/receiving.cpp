// The receive handler.
#include "link/isp_link.h"
#include "link/reply_gathering.h"
#include "plug.h"

namespace vkm {

namespace {

// The line is half duplex and replies carry no number: one that is here while a
// request is still leaving the wire is a late one to the request before.
bool answers_older_request(const frmMain& frm) {
    const SerialPort& port = frm.platform.port;
    const auto& gone = frm.link.open_request;
    return gone && port.has_wire() && (port.output_count() > 0 || frm.platform.loop.now() < *gone);
}

// What comes while a request of the 5A A5 class still leaves the wire answers the one before.
void take_demo_reply(frmMain& frm, const std::vector<std::uint8_t>& bytes) {
    const SerialPort& port = frm.platform.port;
    const Gathered gathered = gather_demo_reply(frm.link, bytes);
    if (gathered == Gathered::bad_mark) reset_receive(frm);
    if (gathered == Gathered::frame && port.has_wire() && port.output_count() > 0)
        forget_demo_reply(frm.link);
}

}  // namespace

int copy_receive(frmMain& frm) {
    frm.link.rx_copy = frm.link.rx_frame;
    return frm.link.rx_count;
}

void on_port_event(frmMain& frm) {
    SerialPort& port = frm.platform.port;
    port.set_read_length(0);
    const std::vector<std::uint8_t> bytes = port.read();
    if (bytes.empty()) return;
    LinkState& link = frm.link;
    if (link.demo_mode) {
        take_demo_reply(frm, bytes);
    } else if (link.debug_mode) {
        run_plug(frm, link.Assistant_Bytes, bytes);
    } else if (gather_reply(link, bytes) == Gathered::frame) {
        if (answers_older_request(frm))
            forget_reply(link);
        else
            link.open_request.reset();
    }
}

}  // namespace vkm
