// The connect step: from a click to a chip that fits the model and waits for work.
#include "link/handshake.h"
#include "link/isp_link.h"
#include "options/option_display.h"
#include "options/option_schema.h"
#include "session/chip_checks.h"
#include "session/download_session.h"
#include "session/session_report.h"
#include "session/session_texts.h"
#include "session/verdict.h"
#include "waiting/waiting.h"

namespace vkm {
namespace {

constexpr std::uint8_t link_check = 0x80;
constexpr std::int32_t link_check_ms = 200;
constexpr int link_checks = 5;
constexpr std::int32_t late_answer_ms = 600;  // beyond the time of a check
constexpr int status_reads = 4;

// Lets the chip settle at its final rate; whether it answers doesn't matter.
void Poll_Chip(frmMain& frm) {
    reset_receive(frm);
    frm.link.demo_frame_ok = false;
    frm.link.demo_stop_requested = false;
    frm.platform.port.clear_input();
    frm.platform.port.clear_output();
    send_command(frm, link_check, link_check_ms, 0);
    wait_for_frame(frm, link_check_ms);
}

// An old firmware's status frame holds no option bytes; they are read here.
bool read_options(frmMain& frm) {
    if (!frm.link.stop_requested) {
        if (frm.link.Chip_Known) return true;
        for (int read = 0; read < status_reads; ++read) {
            Read_Chip_Status(frm, 0);
            if (frm.link.frame_ok || frm.link.stop_requested) break;
        }
        if (!frm.link.stop_requested && frm.link.Status_Read_OK) return true;
    }
    job_failed(frm, session_text::step_read_options);
    if (frm.link.stop_requested) {
        report_stop(frm);
        return false;
    }
    beep_times(frm, 3);
    append_message(frm.screen, with_time_of_day(frm, session_text::handshake_failed));
    scroll_log_to_end(frm.screen);
    return false;
}

// The second way of connecting names its rate whatever was reached.
void show_baud(frmMain& frm, std::int32_t baud) {
    const std::string rate = over_trigger(frm) ? "115200" : std::to_string(baud);
    append_message(frm.screen,
                   std::string(chosen_text(frm.screen, session_text::baud_now)) + rate + " bps.");
    scroll_log_to_end(frm.screen);
}

// True when the chip is ready for work; otherwise the session has to end.
bool connect(frmMain& frm, bool ReadChipLock_just) {
    Clear_Read_Lines(frm);
    report(frm, session_text::connecting);
    std::int32_t baud = 0;
    if (handshake(frm, baud, ReadChipLock_just) != 0) {
        job_failed(frm, session_text::step_connect);
        return false;
    }
    for (int check = 0; check < link_checks && !frm.link.stop_requested; ++check) Poll_Chip(frm);
    // The handshake has read and shown the options: nothing more was wanted.
    if (ReadChipLock_just) return false;
    let_owed_answers_pass(frm, late_answer_ms);
    if (!read_options(frm)) return false;
    Show_Clock(frm);
    show_baud(frm, baud);
    return Check_Model(frm);
}

}  // namespace

void Connect_MCU(frmMain& frm, bool ReadChipLock_just) {
    if (connect(frm, ReadChipLock_just))
        frm.session.Connected = true;
    else
        comStop_Download(frm);
}

void Show_Clock(frmMain& frm) {
    const Clock_Facts facts = {frm.link.Chip_Letter, frm.link.Chip_Clock,
                               option_on(frm.options.Read_State, option_key::double_speed),
                               frm.link.Chip_Double_Speed};
    for (const std::string& line : clock_lines(facts, frm.screen.Show_English))
        append_message(frm.screen, line);
    scroll_log_to_end(frm.screen);
}

bool Check_Model(frmMain& frm) {
    const std::string code = frm.link.Chip_ID_High + frm.link.Chip_ID_Low;
    if (chip_fits_model({frm.link.Chip_Letter, frm.link.Chip_Name, code, frm.screen.txtDevice.Text,
                         frm.catalogue.MCU_Info, frm.catalogue.Block_Size, frm.session.Chunk_Size}))
        return true;
    report_wrong_model(frm);
    return false;
}

void report_wrong_model(frmMain& frm) {
    job_failed(frm, session_text::step_identify);
    beep_times(frm, 3);
    report(frm, session_text::wrong_model);
    frm.images.File_Loaded = false;
    frm.platform.dialogs.show_text(chosen_text(frm.screen, session_text::wrong_model_box));
}

}  // namespace vkm
