#include "session/download_session.h"

#include "image/image_files.h"
#include "increase/number_sequence.h"
#include "link/isp_link.h"
#include "options/option_schema.h"
#include "plug.h"
#include "session/counter.h"
#include "session/download_plan.h"
#include "session/end_session.h"
#include "session/erase.h"
#include "session/program_ranges.h"
#include "session/programming.h"
#include "session/session_lease.h"
#include "session/session_report.h"
#include "session/session_texts.h"
#include "session/verdict.h"
#include "session/write_options.h"
#include "text/numbers.h"
#include "waiting/waiting.h"

namespace vkm {
namespace {

constexpr std::int16_t frame_payload = 128;
constexpr double last_version_without_erase = 0.2;  // that firmware knows no erase command
constexpr std::int32_t settle_ms = 100;
constexpr std::int32_t settle_at_base_baud_ms = 1000;  // the last block needs longer there
constexpr std::int32_t countdown_tick_ms = 1000;

// The terminal and the session never use the port together.
void close_assistant_port(frmMain& frm) {
    run_plug(frm, frm.session.Close_Assistant_Port);
    close_port(frm);
}

bool has_file(frmMain& frm) {
    if (frm.images.File_Loaded) return true;
    frm.platform.dialogs.show_text(chosen_text(frm.screen, session_text::no_file));
    return false;
}

// Only the program file is read again, also when a data file was chosen after
// it; what a project brought along stays. False when the file has gone, whose place
// nothing must take, and when it was refused, by the operator or by its start address.
bool reload_file(frmMain& frm) {
    if (frm.screen.cekReloadFile.Value == 0 || frm.images.Program_File.empty()) return true;
    if (!Check_Last_File(frm)) return false;
    const std::string path = frm.images.Program_File;
    const bool loaded = Load_File(frm, path, frm.images.AP_Buffer);
    keep_keyboard(frm);
    return has_file(frm) && loaded;
}

// A number that the operator touched since the last download is checked and patched now.
void patch_touched_numbers(frmMain& frm) {
    if (!frm.increase.Auto_Increase.Active) cheAuto_Increase(frm);
    keep_keyboard(frm);
    if (!frm.increase.Data_Auto_Increase.Active) cheData_Auto_Increase(frm);
    keep_keyboard(frm);
}

void begin_session(frmMain& frm) {
    Set_UI_Busy(frm);
    frm.session.Chunk_Size = frame_payload;
    frm.link.stop_requested = false;
    frm.session.Download_Plan = {};
}

bool connect(frmMain& frm) {
    frm.link.hunt_header = false;
    frm.screen.textMsg.Text.clear();
    frm.session.Connected = false;
    Connect_MCU(frm, false);
    return frm.session.Connected;
}

// Only a warning: the flow goes on.
void warn_of_locked_block0(frmMain& frm) {
    if (!frm.session.Block0_Rule[2].starts_with('1')) return;
    if (frm.catalogue.Block_Size != frm.session.Chunk_Size) return;
    beep_times(frm, 3);
    report(frm, session_text::block0_locked);
    frm.session.Connected = false;
}

// The plan of the first chip stays for all later chips of a series.
void make_plan(frmMain& frm) {
    if (!frm.session.Download_Plan.Plan_Name.empty()) return;
    const Planned made =
        Make_Download_Plan({frm.catalogue.Chip_Info, frm.link.Chip_Letter,
                            leading_number(frm.link.Chip_Version), frm.images.AP_Buffer.Image_High,
                            option_on(frm.options.Panel_State, option_key::clear_unused_AP)});
    frm.session.Download_Plan = made.plan;
    if (!made.Over_Limit) return;
    beep_times(frm, 2);
    append_to_last_line(
        frm.screen,
        "\r\n\r\n" + std::string(chosen_text(frm.screen, session_text::over_limit)) + "\r\n");
    scroll_log_to_end(frm.screen);
}

void report_erase_failure(frmMain& frm) {
    beep_times(frm, 3);
    append_message(frm.screen, with_time_of_day(frm, session_text::erase_failed));
    report(frm, session_text::erase_advice);
}

bool erase(frmMain& frm) {
    if (leading_number(frm.link.Chip_Version) <= last_version_without_erase) return true;
    Erase_Application(frm);
    if (!frm.link.stop_requested && frm.link.frame_ok) return true;
    job_failed(frm, session_text::step_erase);
    if (frm.link.stop_requested) {
        report_stop(frm);
        comStop_Download(frm);
    } else {
        report_erase_failure(frm);
    }
    return false;
}

bool program(frmMain& frm) {
    frm.session.Program_OK = false;
    Program_Image(frm);
    if (!frm.session.Program_OK) return false;
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
    if (!connect(frm)) return false;
    warn_of_locked_block0(frm);
    make_plan(frm);
    if (!erase(frm)) return false;
    if (!program(frm)) return false;
    if (!write_options(frm)) return false;
    finish_chip(frm);
    return true;
}

void show_countdown(frmMain& frm, const std::string& log, std::int32_t seconds) {
    using namespace session_text;
    const std::string counter = std::to_string(seconds);
    std::string text = log + "\r\n\r\n" + std::string(chosen_text(frm.screen, succeeded));
    text += "\r\n\r\n" + std::string(next_chip) + counter;
    if (!frm.screen.Show_English) text += "\r\n\r\n" + std::string(next_chip_CN) + counter;
    frm.screen.textMsg.Text = std::move(text);
    scroll_log_to_end(frm.screen);
}

// The pause between two chips of a series. Blind to Stop: the next connect sees it.
void pause_between_chips(frmMain& frm) {
    frm.platform.port.clear_input();
    frm.platform.port.clear_output();
    close_port(frm);
    const std::string log = frm.screen.textMsg.Text;
    const std::int32_t seconds = leading_integer(text_of(frm.screen.comDalay_ReDownLoad));
    for (std::int32_t left = seconds; left >= 1; --left) {
        show_countdown(frm, log, left);
        restart_timer(frm, frm.timers.Timer10, countdown_tick_ms);
        wait_until(frm, [&] { return !frm.timers.Timer10.Enabled; });
    }
    frm.screen.textMsg.Text.clear();
}

// One chip, or one after another. True when the last one is good.
bool run_session(frmMain& frm, int Index) {
    const Session_Lease lease(frm);
    if (!lease.granted()) return false;
    close_assistant_port(frm);
    if (!has_file(frm) || !reload_file(frm)) return false;
    patch_touched_numbers(frm);
    // The window may have been closed behind a box of the steps before.
    if (frm.link.close_pending) return false;
    begin_session(frm);
    bool good = program_one_chip(frm);
    while (good && Index == 1) {
        pause_between_chips(frm);
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
