// The receive handler.
#include "link/isp_link.h"
#include "link/reply_gathering.h"
#include "plug.h"

namespace vkm {

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
        if (gather_demo_reply(link, bytes) == Gathered::bad_mark) reset_receive(frm);
    } else if (link.debug_mode) {
        run_plug(frm, link.Monitor_Bytes, bytes);
    } else {
        gather_reply(link, bytes);
    }
}

}  // namespace vkm
