#include "session/serial_panel.h"

#include "link/isp_link.h"
#include "link/link_texts.h"
#include "session/session_report.h"
#include "session/session_texts.h"
#include "waiting/waiting.h"

namespace vkm {

std::string settings_of(const Serial_Panel& panel) {
    return std::string(text_of(panel.baud)) + ',' +
           std::string(text_of(panel.parity).substr(0, 1)) + ',' +
           std::string(text_of(panel.data_bits)) + ',' + std::string(text_of(panel.stop_bits));
}

bool open_by_panel(frmMain& frm, const Serial_Panel& panel) {
    close_port(frm);
    const std::string settings = settings_of(panel);
    if (!frm.platform.port.set_settings(settings)) {
        frm.platform.dialogs.show_text(
            std::string(chosen_text(frm.screen, session_text::settings_refused)) + settings,
            session_text::panel_port_title);
        return false;
    }
    if (open_port(frm) == 0) return true;
    beep_times(frm, 3);
    append_message(frm.screen, link_text::open_failed);
    report(frm, link_text::port_taken_or_missing);
    return false;
}

}  // namespace vkm
