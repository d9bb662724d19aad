#include "session/soft_ice.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "catalogue/mcu_catalogue.h"
#include "image/image_files.h"
#include "image/readers.h"
#include "session/download_session.h"
#include "session/end_session.h"
#include "session/job_steps.h"
#include "session/programming.h"
#include "session/session_lease.h"
#include "session/session_report.h"
#include "session/session_texts.h"
#include "session/soft_ice_image.h"
#include "session/verdict.h"
#include "waiting/waiting.h"

namespace vkm {
namespace {

constexpr std::string_view monitor_start_file = "VKM2000.rom";
constexpr std::int32_t show_result_ms = 1000;

std::string beside_program(const frmMain& frm, std::string_view name) {
    return frm.platform.files.program_folder() + "/" + std::string(name);
}

bool tell_empty(frmMain& frm, std::string_view name) {
    const auto& around = session_text::monitor_file_empty;
    frm.platform.dialogs.show_text(std::string(around[0]) + std::string(name) +
                                   std::string(around[1]));
    return false;
}

bool has_content(frmMain& frm, std::string_view name) {
    const std::string path = beside_program(frm, name);
    const auto stamp = frm.platform.files.stamp(path);
    const bool content = stamp && stamp->size > 0 && frm.platform.files.open(path);
    return content || tell_empty(frm, name);
}

// Both files stand beside the program, and there is something in them.
bool files_ready(frmMain& frm) {
    const std::string& monitor = frm.catalogue.SoftICE_File;
    const auto tell_missing = [&](std::string_view name) {
        frm.platform.dialogs.show_text(std::string(session_text::monitor_file_missing) +
                                       std::string(name));
        return false;
    };
    if (!frm.platform.files.exists(beside_program(frm, monitor_start_file)))
        return tell_missing(std::string(monitor_start_file) + ".");
    if (!frm.platform.files.exists(beside_program(frm, monitor))) return tell_missing(monitor);
    return has_content(frm, monitor_start_file) && has_content(frm, monitor);
}

bool operator_agrees(frmMain& frm) {
    Dialogs& dialogs = frm.platform.dialogs;
    return dialogs.ask_yes_no(session_text::ask_for_monitor) &&
           dialogs.ask_yes_no(session_text::ask_for_model);
}

// The first bytes of a file, as the reader of binary files takes them; behind a short one
// stands FF. Nothing when the file has gone since it was looked at.
std::vector<std::uint8_t> beginning_of(frmMain& frm, std::string_view name, std::size_t count) {
    Image_Buffer& buffer = frm.images.AP_Buffer;
    frm.images.Current_File = beside_program(frm, name);
    buffer.Start_Add = 0;
    blank_monitor_area(buffer.Bytes);
    const bool whole = Read_Bin_File(frm, frm.images.Current_File, buffer);
    if (!whole || buffer.File_High < buffer.File_Low) return {};
    return {buffer.Bytes.begin(), buffer.Bytes.begin() + static_cast<std::ptrdiff_t>(count)};
}

bool build_image(frmMain& frm) {
    Settle_ISP_Range(frm);
    Image_Buffer& buffer = frm.images.AP_Buffer;
    const std::string SoftICE_File = frm.catalogue.SoftICE_File;
    const auto start = beginning_of(frm, monitor_start_file, monitor_start_size);
    const auto monitor = beginning_of(frm, SoftICE_File, monitor_size);
    Fill_Bytes(0, buffer.Bytes);
    if (start.empty() || monitor.empty()) {
        frm.images.File_Loaded = false;
        return tell_empty(frm, start.empty() ? monitor_start_file : SoftICE_File);
    }
    lay_out_monitor(buffer.Bytes, std::span(start).first<monitor_start_size>(),
                    std::span(monitor).first<monitor_size>(), SoftICE_File);
    return true;
}

void take_range(Image_Buffer& buffer, Address_Range range) {
    buffer.Image_Low = buffer.File_Low = range.first;
    buffer.Image_High = buffer.File_High = range.last;
}

bool program_monitor(frmMain& frm) {
    Image_Buffer& buffer = frm.images.AP_Buffer;
    take_range(buffer, monitor_range);
    Refresh_Buffer_View(frm, buffer, frm.increase.Auto_Increase);
    keep_keyboard(frm);
    if (!connect_and_erase(frm) || !image_programmed(frm)) return false;
    buffer.Image_Low = reset_range.first;
    buffer.Image_High = reset_range.last;
    return image_programmed(frm);
}

void finish(frmMain& frm) {
    End_Session(frm);
    Show_Progress(frm, Progress::hide);
    report(frm, session_text::monitor_done);
    job_done(frm);
    restart_timer(frm, frm.timers.Timer10, show_result_ms);
    wait_until(frm, [&] { return !frm.timers.Timer10.Enabled || frm.link.stop_requested; });
}

}  // namespace

void comDownSoft_ICE(frmMain& frm) {
    const Session_Lease lease(frm);
    if (!lease.granted()) return;
    close_assistant_port(frm);
    if (!files_ready(frm) || !operator_agrees(frm)) return;
    // The window may have been closed behind the boxes.
    if (frm.link.close_pending) return;
    Reset_Buffer(frm, 0, frm.images.AP_Buffer);
    take_over_image(frm, frm.catalogue.SoftICE_File);
    begin_session(frm);
    job_runs(frm);
    if (build_image(frm)) {
        if (program_monitor(frm)) finish(frm);
    } else {
        job_failed(frm, session_text::step_read_monitor);
    }
    comStop_Download(frm);
}

}  // namespace vkm
