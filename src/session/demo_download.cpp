#include "session/demo_download.h"

#include <string>

#include "catalogue/older_codes.h"
#include "increase/auto_increase.h"
#include "increase/number_sequence.h"
#include "link/isp_link.h"
#include "options/option_display.h"
#include "session/download_session.h"
#include "session/job_steps.h"
#include "session/programming.h"
#include "session/serial_panel.h"
#include "session/series_pause.h"
#include "session/session_lease.h"
#include "session/session_report.h"
#include "session/session_texts.h"
#include "session/user_code.h"
#include "session/verdict.h"
#include "text/hexadecimal.h"
#include "text/numbers.h"
#include "waiting/waiting.h"

namespace vkm {
namespace {

enum Command : std::uint8_t {
    connect_command = 0xB0,
    end_of_job = 0xB1,
    erase_command = 0xB2,
    read_version = 0xB5,
};

constexpr int further_polls = 3;
constexpr std::size_t poll_bytes = 8 + 8;  // and the answer
constexpr std::int32_t poll_chip_ms = 10;
constexpr int version_tries = 3;
constexpr std::int32_t version_ms = 2000;
constexpr int erase_tries = 3;
constexpr std::int32_t erase_ms = 5000;
constexpr std::int32_t settle_ms = 100;
constexpr std::int32_t advice_ms = 4000;

// Of the reply to read_version: the older ID code, and the byte behind it.
constexpr std::size_t code_high = 6;
constexpr std::size_t code_low = 7;
constexpr std::size_t chip_byte = 8;
constexpr int shortest_version_reply = 12;  // these, the sum and the end mark

// A slow line carries the answer that much longer; the slowest need more time for the
// bytes alone.
std::int32_t poll_ms(const frmMain& frm) {
    const std::int32_t baud = leading_integer(frm.platform.port.settings());
    const std::int32_t usual = baud < 2400 ? 200 : baud < 4800 ? 100 : 50;
    return answer_time(frm, usual, poll_bytes, poll_chip_ms);
}

// One try of a command; true when it was answered. The frame before isn't cut off by it.
// What came in the pause before the command answers an older one; to a poll that is as
// good an answer. A reply too short for what is asked is none.
bool ask(frmMain& frm, Command command, std::int32_t timeout_ms, int shortest_reply = 0) {
    wait_until_sent(frm, frm.platform.port.output_count());
    if (demo_stopped(frm.link)) return false;
    reset_receive(frm);
    frm.link.demo_frame_ok = false;
    send_demo_command(frm, command);
    if (command != connect_command) forget_demo_input(frm);
    restart_timer(frm, frm.timers.Timer7, timeout_ms);
    while (wait_for_demo_frame(frm)) {
        if (frm.link.rx_expected >= shortest_reply) return true;
        forget_demo_input(frm);
    }
    return false;
}

// Up to `tries` of them; the answer is in rx_copy then. Behind a repeat the line has to be
// silent, or the answer to one of the tries would pass for the answer to what comes next.
bool ask_until_answered(frmMain& frm, Command command, int tries, std::int32_t timeout_ms,
                        int shortest_reply = 0) {
    for (int attempt = 0; attempt < tries && !demo_stopped(frm.link); ++attempt) {
        if (!ask(frm, command, timeout_ms, shortest_reply)) continue;
        copy_receive(frm);
        for (int owed = attempt; owed > 0; --owed) {
            forget_demo_input(frm);
            restart_timer(frm, frm.timers.Timer7, timeout_ms);
            if (!wait_for_demo_frame(frm)) break;
        }
        return !demo_stopped(frm.link);
    }
    return false;
}

// The user's program has to be running; until it answers the operator may still switch
// the target on. Then the line has to carry on for three polls more, of which a damaged
// one is no failure.
bool reach_target(frmMain& frm) {
    const std::int32_t wait = poll_ms(frm);
    restart_timer(frm, frm.timers.Timer9, advice_ms);
    while (!ask(frm, connect_command, wait))
        if (demo_stopped(frm.link)) return false;
    stop_timer(frm.timers.Timer9);
    int answered = 0;
    for (int poll = 0; poll < further_polls && !demo_stopped(frm.link); ++poll)
        if (ask(frm, connect_command, wait)) ++answered;
    return answered > 0 && !demo_stopped(frm.link);
}

bool Demo_Connect(frmMain& frm) {
    const Screen& screen = frm.screen;
    if (!open_by_panel(frm, {screen.cob_DEMO_DownLoad_Baud, screen.cob_DEMO_DownLoad_Parity,
                             screen.cob_DEMO_DownLoad_DataBits, screen.cob_DEMO_DownLoad_StopBits}))
        return false;
    show_port_picture(frm, true);
    report(frm, session_text::connecting);
    const bool reached = reach_target(frm);
    if (reached)
        report(frm, session_text::demo_connected);
    else
        append_message(frm.screen, with_time_of_day(frm, session_text::handshake_failed));
    scroll_log_to_end(frm.screen);
    return reached;
}

bool Demo_Read_Version(frmMain& frm) {
    report(frm, session_text::demo_reading_version);
    Clear_Read_Lines(frm);
    if (!ask_until_answered(frm, read_version, version_tries, version_ms, shortest_version_reply)) {
        if (demo_stopped(frm.link)) return false;
        beep_times(frm, 3);
        append_message(frm.screen, with_time_of_day(frm, session_text::demo_version_failed));
        scroll_log_to_end(frm.screen);
        return false;
    }
    LinkState& link = frm.link;
    const OlderCode chip =
        find_older_code(hex_text(link.rx_copy[code_high], 2) + hex_text(link.rx_copy[code_low], 2));
    link.Chip_Name = chip.Chip_Name;
    link.Chip_ID_High = chip.Chip_ID_High;
    link.Chip_ID_Low = chip.Chip_ID_Low;
    if (frm.catalogue.MCU_Info.MCU_ID != link.Chip_ID_High + link.Chip_ID_Low) {
        report_wrong_model(frm);
        return false;
    }
    frm.options.Chip_Bytes[0] = link.rx_copy[chip_byte];
    return true;
}

bool Demo_Erase(frmMain& frm) {
    report(frm, session_text::erasing);
    if (ask_until_answered(frm, erase_command, erase_tries, erase_ms)) return true;
    if (demo_stopped(frm.link)) return false;
    append_message(frm.screen, with_time_of_day(frm, session_text::erase_failed));
    scroll_log_to_end(frm.screen);
    return false;
}

bool program(frmMain& frm) {
    wait_ms(frm, settle_ms);
    return image_programmed(frm);
}

bool numbered(const frmMain& frm) {
    return frm.screen.cheAuto_Increase.Value != 0 && frm.increase.Auto_Increase.Active;
}

// The chip has its number, whatever becomes of the tool from here on: the next one is on
// the disk before anything else.
void keep_next_number(frmMain& frm) {
    if (!numbered(frm)) return;
    Note_Number_Behind(frm, frm.increase.Auto_Increase);
    if (!frm.platform.settings.flush()) report(frm, session_text::count_not_saved);
}

void report_success(frmMain& frm) {
    append_message(frm.screen, session_text::demo_program_ok);
    append_message(frm.screen, std::string(chosen_text(frm.screen, session_text::demo_verify_ok)) +
                                   elapsed_time(frm, frm.session.Begin_Time) + " )");
    scroll_log_to_end(frm.screen);
}

// A step that fails ends the job; the verdict names it.
bool step(frmMain& frm, bool good, const MessageText& name) {
    if (!good) job_failed(frm, name);
    return good;
}

// True when the chip is good and the series may go on.
bool program_one_chip(frmMain& frm) {
    using namespace session_text;
    job_runs(frm);
    if (!step(frm, Demo_Connect(frm), step_connect)) return false;
    if (!step(frm, Demo_Read_Version(frm), step_identify)) return false;
    if (!step(frm, Demo_Erase(frm), step_erase)) return false;
    if (!step(frm, program(frm), step_program)) return false;
    keep_next_number(frm);
    Show_Progress(frm, Progress::hide);
    for (int told = 0; told < 2; ++told) send_demo_command(frm, end_of_job);
    wait_until_sent(frm, frm.platform.port.output_count());
    report_success(frm);
    job_done(frm);
    if (frm.screen.optBeepYes.Value != 0) frm.platform.sounder.beep();
    // Also when Stop came behind the last block: no other chip gets this one's number.
    if (numbered(frm)) Advance_Program_Number(frm);
    return !demo_stopped(frm.link);
}

bool send_code_first(frmMain& frm) {
    Screen& screen = frm.screen;
    if (screen.che_Demo_DownLoad.Value == 0) return true;
    return send_user_code(frm, screen.txt_DEMO_UserCode,
                          {screen.cob_DEMO_UserCode_Baud, screen.cob_DEMO_UserCode_Parity,
                           screen.cob_DEMO_UserCode_DataBits, screen.cob_DEMO_UserCode_StopBits});
}

void program_chips(frmMain& frm, bool repeat) {
    job_runs(frm);
    if (!step(frm, send_code_first(frm), session_text::step_connect)) return;
    while (!demo_stopped(frm.link)) {
        stop_timer(frm.timers.Timer9);
        patch_touched_program_number(frm);
        frm.screen.Focus_Request = "Text1";
        // The window may have been closed behind the box of a bad number.
        if (demo_stopped(frm.link)) break;
        frm.link.demo_mode = true;
        if (!program_one_chip(frm) || !repeat) return;
        pause_between_chips(frm, Pause_Stop::at_once);
    }
}

void leave(frmMain& frm) {
    if (demo_stopped(frm.link)) {
        job_failed(frm, session_text::step_connect);
        report_stop(frm);
    }
    frm.platform.port.clear_input();
    frm.platform.port.clear_output();
    comStop_Download(frm);
    frm.link.demo_mode = false;
    frm.screen.Focus_Request = "Text1";
}

void Demo_Download(frmMain& frm, bool repeat) {
    const Session_Lease lease(frm);
    if (!lease.granted()) return;
    close_assistant_port(frm);
    frm.screen.Focus_Request = "Text1";
    frm.link.demo_mode = false;
    if (!frm.images.File_Loaded) {
        frm.platform.dialogs.show_text(chosen_text(frm.screen, session_text::no_file_for_demo));
        return;
    }
    if (frm.link.close_pending) return;
    begin_session(frm);
    frm.link.demo_stop_requested = false;
    program_chips(frm, repeat);
    leave(frm);
}

}  // namespace

void com_Demo_DownLoad(frmMain& frm) {
    Demo_Download(frm, false);
}

void com_Demo_Re_DownLoad(frmMain& frm) {
    Demo_Download(frm, true);
}

void com_Demo_Stop(frmMain& frm) {
    frm.link.demo_stop_requested = true;
    comStop_Download(frm);
}

}  // namespace vkm
