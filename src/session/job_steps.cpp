#include "session/job_steps.h"

#include <string>

#include "image/image_files.h"
#include "image/image_messages.h"
#include "increase/auto_increase.h"
#include "increase/number_sequence.h"
#include "link/isp_link.h"
#include "options/option_schema.h"
#include "plug.h"
#include "session/download_plan.h"
#include "session/download_session.h"
#include "session/erase.h"
#include "session/session_report.h"
#include "session/session_texts.h"
#include "session/verdict.h"
#include "text/numbers.h"
#include "waiting/waiting.h"

namespace vkm {
namespace {

constexpr std::int16_t frame_payload = 128;
constexpr double last_version_without_erase = 0.2;  // that firmware knows no erase command

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

}  // namespace

void close_assistant_port(frmMain& frm) {
    run_plug(frm, frm.session.Close_Assistant_Port);
    close_port(frm);
}

bool file_ready(frmMain& frm) {
    return has_file(frm) && reload_file(frm);
}

void patch_touched_program_number(frmMain& frm) {
    if (!frm.increase.Auto_Increase.Active) cheAuto_Increase(frm);
    keep_keyboard(frm);
}

void patch_touched_data_number(frmMain& frm) {
    if (!frm.increase.Data_Auto_Increase.Active) cheData_Auto_Increase(frm);
    keep_keyboard(frm);
}

void take_over_image(frmMain& frm, std::string_view source) {
    frm.images.Program_File.clear();
    frm.images.Program_Spoilt = false;
    frm.images.Buffer_Edit_OK = false;
    Switch_Numbering_Off(frm);
    frm.screen.Frame7.Caption = std::string(image_text::program_caption) + std::string(source);
}

void begin_session(frmMain& frm) {
    Set_UI_Busy(frm);
    frm.session.Chunk_Size = frame_payload;
    frm.link.stop_requested = false;
    frm.session.Download_Plan = {};
}

bool connect_and_erase(frmMain& frm) {
    if (!connect(frm)) return false;
    warn_of_locked_block0(frm);
    make_plan(frm);
    return erase(frm);
}

}  // namespace vkm
