#include "board/board_download.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "board/board_build.h"
#include "board/board_help.h"
#include "board/board_image.h"
#include "board/board_link.h"
#include "board/board_texts.h"
#include "link/isp_link.h"
#include "options/mcu_options.h"
#include "session/download_session.h"
#include "session/job_steps.h"
#include "session/session_lease.h"
#include "session/session_report.h"
#include "session/session_texts.h"
#include "session/verdict.h"
#include "text/hexadecimal.h"
#include "text/numbers.h"
#include "text/trimming.h"
#include "waiting/waiting.h"

namespace vkm {
namespace {

constexpr std::int16_t link_block_size = 128;
constexpr std::int32_t block_wait_ms = 600;
constexpr std::int32_t gap_wait_ms = 200;

constexpr std::uint8_t link_check = 0x80;
constexpr std::uint8_t version_command = 0x0C;

// Boards answer with a code of their own here. A late answer to an acknowledged command ends
// before the capacity, and one that tells the version says so.
constexpr int shortest_capacity = 9;  // with flag and capacity
constexpr int shortest_version = 8;
bool tells_capacity(const LinkState& link) {
    return reply_length(link) >= shortest_capacity && link.rx_copy[3] != version_command;
}
bool tells_version(const LinkState& link) {
    return reply_length(link) >= shortest_version && link.rx_copy[3] == version_command;
}

constexpr Board_Command ask_capacity = {
    .command = 0x0E, .timeout_ms = 300, .tries = 4, .is_answer = tells_capacity};
constexpr Board_Command ask_version = {
    .command = version_command, .timeout_ms = 300, .tries = 4, .is_answer = tells_version};
constexpr Board_Command erase_all = {.command = 0x84, .timeout_ms = 4000, .tries = 6};
constexpr Board_Command erase_second = {.command = 0x86, .timeout_ms = block_wait_ms, .tries = 6};
constexpr Board_Command check_between = {
    .command = link_check, .timeout_ms = 50, .tries = 36, .parameter = 0xF1};

// By firmware: how far the first stage reaches, and who has a second one.
constexpr double first_large_version = 17;
constexpr double version_with_two_stages = 15;
constexpr std::int32_t first_address = 0x4000;
constexpr std::int32_t last_of_large = 0xF7FF;
constexpr std::int32_t last_of_others = 0xF3FF;
constexpr Address_Range second_stage = {0x2000, 0x3FFF};
// What the stages hold of the program, as image addresses.
constexpr std::int32_t end_of_first_part = 0xAC00;
constexpr std::int32_t end_of_both_parts = 0xCC00;
constexpr Address_Range whole_image = {first_address, 0xFFFF};

// Where the raw image carries the chip's ID code and its option bytes.
constexpr std::size_t raw_id = 0xFFD0;
constexpr std::size_t raw_options_high = 0xFFE0;  // words 8 to 15
constexpr std::size_t raw_options_low = 0xFFF0;   // words 0 to 7
constexpr std::size_t option_words = 8;

double version_number(const frmMain& frm) {
    return leading_number(frm.board.Board_Version);
}

bool has_second_stage(const frmMain& frm) {
    const double version = version_number(frm);
    const bool by_version = version == version_with_two_stages || version >= first_large_version;
    return by_version && !frm.board.Board_Flag;
}

// What the job may fill, and by which rules it is laid out.
bool learn_board(frmMain& frm) {
    const auto& answer = frm.link.rx_copy;
    if (!board_asked(frm, ask_capacity)) return false;
    frm.board.Board_Capacity = answer[5] * bytes_per_kilobyte;
    frm.board.Board_Flag = answer[4] != 0;
    if (!board_asked(frm, ask_version)) return false;
    frm.board.Board_Version = hex_text(answer[4], 2);
    report(frm, board_text::connected);
    return true;
}

// What neither stage has a place for is not silently missing in the chips.
void tell_code_left_out(frmMain& frm) {
    const std::int32_t end = has_second_stage(frm) ? end_of_both_parts : end_of_first_part;
    const std::int32_t last = std::min(frm.images.AP_Buffer.Image_High, Board_Code_Limit(frm) - 1);
    if (last < end) return;
    beep_times(frm, 2);
    append_message(frm.screen, std::string(board_text::code_left_out[0]) +
                                   hex_text(static_cast<std::uint64_t>(end), 4) +
                                   std::string(board_text::code_left_out[1]));
    scroll_log_to_end(frm.screen);
}

// Stop waits until the whole job is laid out: half of one is none.
bool build_job(frmMain& frm) {
    if (frm.link.stop_requested) return true;
    // Nothing of the program would be on such a board.
    if (Board_Code_Limit(frm) <= 0) {
        report(frm, board_text::download_failed);
        return false;
    }
    frm.screen.comStop_Download.Enabled = false;
    const bool fits = Board_Make_Table(frm);
    if (fits) {
        Board_Make_Block(frm);
        Board_Make_CRC(frm);
        Board_Copy_Code(frm);
        tell_code_left_out(frm);
    }
    // Not when the window was closed behind a box: nothing is there to stop then.
    frm.screen.comStop_Download.Enabled = !frm.link.close_pending;
    return fits;
}

bool erase_board(frmMain& frm) {
    report(frm, board_text::erasing);
    if (board_asked(frm, erase_all)) return true;
    job_failed(frm, session_text::step_erase);
    report_stop_or(frm, board_text::erase_failed);
    return false;
}

// The program image with what the chip needs besides at its end.
std::vector<std::uint8_t> raw_image(frmMain& frm) {
    std::vector<std::uint8_t> image = frm.images.AP_Buffer.Bytes;
    const std::string_view id = frm.catalogue.MCU_Info.MCU_ID;
    if (!id.empty()) {
        image[raw_id] = static_cast<std::uint8_t>(hex_field(first_characters(id, 2), 2));
        image[raw_id + 1] = static_cast<std::uint8_t>(hex_field(last_characters(id, 2), 2));
    }
    Compose_Options(frm);
    const Option_Words& words = frm.options.Option_Bytes[0];
    for (std::size_t word = 0; word < option_words; ++word) {
        image[raw_options_high + word] = static_cast<std::uint8_t>(words[option_words + word]);
        image[raw_options_low + word] = static_cast<std::uint8_t>(words[word]);
    }
    return image;
}

bool send_first_stage(frmMain& frm, bool raw) {
    report(frm, board_text::downloading);
    if (raw) return Board_Send_Range(frm, raw_image(frm), whole_image);
    const bool large = version_number(frm) >= first_large_version;
    const Address_Range range = {first_address, large ? last_of_large : last_of_others};
    return Board_Send_Range(frm, frm.board.Board_Image, range);
}

bool report_send_failure(frmMain& frm, int beeps) {
    if (frm.link.stop_requested) {
        report(frm, board_text::stopped);
        return false;
    }
    report(frm, board_text::download_failed);
    beep_times(frm, beeps);
    return false;
}

bool open_second_stage(frmMain& frm) {
    if (board_asked(frm, erase_second) && board_asked(frm, check_between)) return true;
    report(frm, frm.link.stop_requested ? board_text::stopped : board_text::second_stage_failed);
    return false;
}

bool send_second_stage(frmMain& frm) {
    report(frm, board_text::downloaded);
    if (!open_second_stage(frm)) return false;
    return Board_Send_Range(frm, frm.board.Board_Image, second_stage) ||
           report_send_failure(frm, 3);
}

bool Board_Transfer(frmMain& frm, bool raw) {
    if (!erase_board(frm)) return false;
    if (!send_first_stage(frm, raw)) return report_send_failure(frm, 0);
    if (!raw && has_second_stage(frm) && !send_second_stage(frm)) return false;
    close_port(frm);
    if (!raw) report(frm, board_text::downloaded);
    return true;
}

bool load_board(frmMain& frm, bool raw) {
    if (!raw && !Board_Check_Limit(frm)) return false;
    job_runs(frm);
    Set_UI_Busy(frm);
    if (!Board_Connect(frm)) {
        job_failed(frm, session_text::step_connect);
        return false;
    }
    if (!learn_board(frm)) {
        job_failed(frm, session_text::step_connect);
        report_no_board(frm);
        return false;
    }
    return (raw || build_job(frm)) && Board_Transfer(frm, raw);
}

// The board's frames, and what they need, for as long as the flow runs.
bool with_board_frames(frmMain& frm, bool raw) {
    frm.link.use_crc = true;
    frm.link.Board_Block_Wait = block_wait_ms;
    frm.link.Board_Gap_Wait = gap_wait_ms;
    const bool good = load_board(frm, raw);
    leave_board_link(frm.link);
    return good;
}

// The steps before the link. False when the operator has been told why there is no job.
bool job_is_possible(frmMain& frm, bool raw) {
    const bool numbered = frm.screen.cheAuto_Increase.Value != 0;
    if (!file_ready(frm)) return false;
    if (raw) return true;
    if (numbered && frm.screen.cheAuto_Increase.Value == 0) {
        frm.platform.dialogs.show_text(chosen_text(frm.screen, board_text::numbering_gone));
        return false;
    }
    patch_touched_program_number(frm);
    return Board_Check_Number(frm);
}

// The job on the board is the image of the moment when it was laid out; nothing that
// happened to the image since stays.
void restore_program(frmMain& frm, bool raw) {
    std::vector<std::uint8_t>& saved = frm.board.Saved_AP_Image;
    if (!raw && frm.screen.cheAuto_Increase.Value != 0 && !saved.empty())
        std::ranges::copy(saved, frm.images.AP_Buffer.Bytes.begin());
    saved.clear();
}

}  // namespace

Board_Outcome Board_Download(frmMain& frm, bool raw) {
    frm.board.Link_Block_Size = link_block_size;
    const bool loaded = frm.images.File_Loaded;
    if (!job_is_possible(frm, raw)) return loaded ? Board_Outcome::failed : Board_Outcome::no_file;
    // The window may have been closed behind a box.
    if (frm.link.close_pending) return Board_Outcome::failed;
    const bool good = with_board_frames(frm, raw);
    restore_program(frm, raw);
    if (good)
        job_done(frm);
    else
        job_failed(frm, session_text::step_program);
    Show_Progress(frm, Progress::hide);
    comStop_Download(frm);
    return good ? Board_Outcome::done : Board_Outcome::failed;
}

void comTJXZ(frmMain& frm) {
    const Session_Lease lease(frm);
    if (!lease.granted()) return;
    close_assistant_port(frm);
    Board_Download(frm, false);
}

void com_TJXZ_help(frmMain& frm) {
    frm.platform.dialogs.show_text(board_help, board_help_title);
}

}  // namespace vkm
