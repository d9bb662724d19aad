#include "session/read_chip_lock.h"

#include "plug.h"
#include "session/download_session.h"
#include "session/end_session.h"
#include "session/session_lease.h"
#include "session/session_report.h"
#include "session/session_texts.h"

namespace vkm {
namespace {

constexpr char letter_without_options = 'B';

// Of a session that is open already: the chip has been read, and may go.
void end_open_session(frmMain& frm) {
    Show_Clock(frm);
    if (!frm.link.Status_Read_OK) return report(frm, session_text::read_options_failed);
    End_Session(frm);
    report(frm, frm.link.Chip_Letter.ends_with(letter_without_options)
                    ? session_text::read_version_ok
                    : session_text::read_options_ok);
}

}  // namespace

void comReadChipLock(frmMain& frm) {
    const Session_Lease lease(frm);
    if (!lease.granted()) return;
    run_plug(frm, frm.session.Close_Assistant_Port);
    Set_UI_Busy(frm);
    frm.link.stop_requested = false;
    if (frm.session.Connected) return end_open_session(frm);
    frm.screen.textMsg.Text.clear();
    Connect_MCU(frm, true);
}

}  // namespace vkm
