#include "session/download_session.h"

#include "increase/number_sequence.h"
#include "link/isp_link.h"
#include "plug.h"
#include "session/counter.h"
#include "session/end_session.h"
#include "session/job_steps.h"
#include "session/program_ranges.h"
#include "session/programming.h"
#include "session/series_pause.h"
#include "session/session_lease.h"
#include "session/session_report.h"
#include "session/session_texts.h"
#include "session/verdict.h"
#include "session/write_options.h"
#include "waiting/waiting.h"

namespace vkm {
namespace {

constexpr std::int32_t settle_ms = 100;
constexpr std::int32_t settle_at_base_baud_ms = 1000;  // the last block needs longer there

bool program(frmMain& frm) {
    if (!image_programmed(frm)) return false;
    wait_ms(frm, held_at_base_baud(frm) ? settle_at_base_baud_ms : settle_ms);
    Show_Progress(frm, Progress::hide);
    return true;
}

bool write_options(frmMain& frm) {
    if (frm.catalogue.MCU_Info.MCU_Family == 1) return true;
    frm.link.Status_Read_OK = false;
    Write_Options(frm);
    if (frm.link.frame_ok) return true;
    job_failed(frm, session_text::step_write_options);
    return false;
}

// What was prepared for the chip and isn't in it: no silent half job.
void report_unsent(frmMain& frm) {
    using namespace session_text;
    const MCU_Record& model = frm.catalogue.MCU_Info;
    const Image_Buffer& data = frm.images.Data_Buffer;
    const IncreaseState& increase = frm.increase;
    const std::int32_t block = frm.catalogue.Block_Size;
    const Data_File_Sent sent = data_file_sent(model, data, block);
    if (sent == Data_File_Sent::no) append_message(frm.screen, data_file_not_sent);
    if (sent == Data_File_Sent::in_part) append_message(frm.screen, data_file_cut);
    if (increase.Auto_Increase.Active &&
        !program_number_sent(model, data, increase.Auto_Increase.Address))
        append_message(frm.screen, program_number_not_sent);
    if (increase.Data_Auto_Increase.Active &&
        !data_number_sent(model, data, block, increase.Data_Auto_Increase.Address))
        append_message(frm.screen, data_number_not_sent);
}

void report_success(frmMain& frm) {
    using namespace session_text;
    Screen& screen = frm.screen;
    const std::string length = elapsed_time(frm, frm.session.Begin_Time);
    const auto chosen = [&](const MessageText& text) {
        return std::string(chosen_text(screen, text));
    };
    if (screen.Show_English) {
        append_message(screen, chosen(program_ok) + frm.session.Cut_Note);
        append_message(screen, chosen(verify_ok) + length + " )");
    } else {
        append_message(screen, chosen(program_ok) + frm.session.Cut_Note_CN);
        append_message(screen, verify_ok);
        if (!frm.session.Erase_Time.empty())
            append_message(screen, std::string(erase_times) + frm.session.Erase_Time);
        append_message(screen, std::string(program_times) + length);
    }
    append_message(screen, encrypted);
    report_unsent(frm);
}

void finish_chip(frmMain& frm) {
    End_Session(frm);
    report_success(frm);
    count_good_chip(frm);
    job_done(frm);
    if (frm.screen.optBeepYes.Value != 0) frm.platform.sounder.beep();
    scroll_log_to_end(frm.screen);
    Advance_Numbers(frm);
}

// One round of the session. False when it ended without a good chip; the
// operator has been told then.
bool program_one_chip(frmMain& frm) {
    job_runs(frm);
    if (!connect_and_erase(frm)) return false;
    if (!program(frm)) return false;
    if (!write_options(frm)) return false;
    finish_chip(frm);
    return true;
}

// One chip, or one after another. True when the last one is good.
bool run_session(frmMain& frm, int Index) {
    const Session_Lease lease(frm);
    if (!lease.granted()) return false;
    close_assistant_port(frm);
    if (!file_ready(frm)) return false;
    patch_touched_program_number(frm);
    patch_touched_data_number(frm);
    // The window may have been closed behind a box of the steps before.
    if (frm.link.close_pending) return false;
    begin_session(frm);
    bool good = program_one_chip(frm);
    while (good && Index == 1) {
        pause_between_chips(frm, Pause_Stop::after_it);
        good = program_one_chip(frm);
    }
    comStop_Download(frm);
    return good;
}

}  // namespace

// The terminal opens behind the session, so that what the new program says is seen.
void comDownload(frmMain& frm, int Index) {
    const bool good = run_session(frm, Index);
    if (good && !frm.link.close_pending && frm.screen.che_AutoOpenPort.Value != 0)
        run_plug(frm, frm.session.Open_Assistant_Port);
}

void Command2(frmMain& frm) {
    if (frm.session.Running) return;
    frm.screen.cheTL.Value = 1;
    comDownload(frm, 0);
    frm.screen.cheTL.Value = 0;
}

void comStop_Download(frmMain& frm) {
    stop_timer(frm.timers.Timer9);
    frm.link.stop_requested = true;
    frm.session.Connected = false;
    frm.platform.port.clear_input();
    frm.platform.port.clear_output();
    close_port(frm);
    if (frm.session.Project_Lock) comLockOptions(frm);
    if (frm.session.UI_State == ui_busy) Set_UI_State(frm, ui_idle);
    if (frm.session.UI_State == ui_busy_locked) Set_UI_State(frm, ui_locked);
}

}  // namespace vkm
