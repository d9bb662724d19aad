#include "session/programming.h"

#include "catalogue/model_traits.h"
#include "link/isp_link.h"
#include "session/download_session.h"
#include "session/progress.h"
#include "session/session_report.h"
#include "session/session_texts.h"
#include "session/verdict.h"
#include "text/numbers.h"
#include "waiting/waiting.h"

namespace vkm {
namespace {

// A block is tried again at once; the sixth failure in a row ends the job.
constexpr int tries_per_block = 11;
constexpr int failures_in_a_row = 5;
constexpr int tries_of_single_block = 3;
constexpr std::int32_t board_block_wait_ms = 600;
constexpr std::int32_t board_gap_wait_ms = 200;
constexpr std::int32_t smallest_firmware = 1024;  // leaves the whole range to the program
// Behind a memory hole a single block is written at the very start or up here only.
constexpr std::int32_t behind_hole = 0x8000;
constexpr std::int32_t reset_vector_end = 2;

struct Block_Job {
    bool split;
    std::span<const std::uint8_t> bytes;
    Progress_Scale scale;
    std::int32_t first;  // of the whole range
};

void begin_programming(frmMain& frm) {
    frm.link.Board_Block_Wait = board_block_wait_ms;
    frm.link.Board_Gap_Wait = board_gap_wait_ms;
    frm.session.Begin_Time = frm.platform.wall_clock.seconds();
    frm.screen.ProgressBar1.Value = frm.screen.ProgressBar1.Min;
    Show_Progress(frm, Progress::down_load);
    append_message(frm.screen, std::string(chosen_text(frm.screen, session_text::programming)) +
                                   " ( Begin: " + frm.platform.wall_clock.time_of_day() + " )");
    scroll_log_to_end(frm.screen);
}

int program_by_family(frmMain& frm) {
    const MCU_Record& model = frm.catalogue.MCU_Info;
    const ImageState& images = frm.images;
    if (joins_data_file(model, images.Data_Buffer)) {
        const Joined_Image joined = join_images(model, images.AP_Buffer, images.Data_Buffer);
        return Program_Range(frm, true, joined.T100_Buffer.Bytes, joined.range, true);
    }
    const auto range =
        program_image_range({model, leading_number(frm.link.Chip_Version)}, images.AP_Buffer);
    if (!range) return -1;
    const bool split = frm.catalogue.Block_Size > frm.session.Chunk_Size;
    return Program_Range(frm, split, images.AP_Buffer.Bytes, *range, true);
}

void report_failure(frmMain& frm) {
    job_failed(frm, session_text::step_program);
    beep_times(frm, 3);
    if (frm.link.stop_requested) {
        report(frm, session_text::stopped);
        return;
    }
    append_message(frm.screen, with_time_of_day(frm, session_text::program_failed));
    report(frm, session_text::program_advice);
}

void tell_cut(frmMain& frm, std::int32_t end) {
    using namespace session_text;
    const std::string kilo = std::to_string((end + 511) / 1024);
    const auto around_kilo = [&](std::span<const std::string_view, 2> pieces) {
        return std::string(pieces[0]) + kilo + std::string(pieces[1]);
    };
    append_message(frm.screen, around_kilo(cut_at));
    frm.session.Cut_Note = around_kilo(cut_note);
    frm.session.Cut_Note_CN = cut_note_CN;
    if (!frm.screen.Show_English) append_to_last_line(frm.screen, around_kilo(cut_at_CN));
    scroll_log_to_end(frm.screen);
}

bool limited_by_firmware(const frmMain& frm, bool cut_allowed) {
    return is_W516(frm.link.Chip_Name) || (frm.catalogue.MCU_Info.MCU_Family == 2 && cut_allowed);
}

// Where programming ends: `range.last`, or where the chip's boot firmware begins.
std::int32_t end_before_firmware(frmMain& frm, Address_Range range, bool cut_allowed) {
    frm.session.Cut_Note.clear();
    frm.session.Cut_Note_CN.clear();
    if (!limited_by_firmware(frm, cut_allowed)) return range.last;
    if (frm.catalogue.MCU_Info.MCU_Family != 0 && !frm.session.Firmware_Size_Known)
        Get_Firmware_Size(frm);
    if (frm.session.Firmware_Size <= smallest_firmware || frm.link.demo_mode) return range.last;
    const std::int32_t limit =
        firmware_limit(frm.catalogue.MCU_Info.Data_End, frm.session.Firmware_Size);
    if (range.last <= limit) return range.last;
    beep_times(frm, 2);
    set_up_bar(frm, progress_scale({range.first, limit}));
    tell_cut(frm, limit);
    return limit;
}

int program_blocks(frmMain& frm, const Block_Job& job, std::int32_t end) {
    frm.screen.ProgressBar1.Visible = true;
    frm.screen.ProgressBar1.Value = job.scale.Min;
    int failures = 0;
    for (const Address_Range block : blocks_between(job.first, end, frm.catalogue.Block_Size)) {
        for (int attempt = 0; attempt < tries_per_block; ++attempt) {
            const int result = Program_Block(frm, job.split, block, attempt > 0, job.bytes);
            if (frm.link.stop_requested) return -1;
            if (result == 0) {
                failures = 0;
                break;
            }
            if (++failures > failures_in_a_row) return -1;
        }
        show_programmed(frm, job.scale, {job.first, block.last});
    }
    return 0;
}

// In a model with a memory hole a single block counts as done unless it begins
// at the reset vector or behind the hole.
bool lies_in_hole(const frmMain& frm, std::int32_t first) {
    return has_memory_hole(frm.screen.txtDevice.Text) && first >= reset_vector_end &&
           first < behind_hole;
}

int program_single_block(frmMain& frm, const Block_Job& job, std::int32_t end) {
    const Address_Range block = {job.first, end};
    for (int attempt = 0; attempt < tries_of_single_block; ++attempt) {
        const int result = lies_in_hole(frm, job.first)
                               ? 0
                               : Program_Block(frm, job.split, block, attempt > 0, job.bytes);
        if (frm.link.stop_requested) return -1;
        if (result != 0) continue;
        show_programmed(frm, job.scale, block);
        return 0;
    }
    return -1;
}

}  // namespace

void Program_Image(frmMain& frm) {
    begin_programming(frm);
    frm.session.Program_OK = program_by_family(frm) == 0;
    if (!frm.session.Program_OK) report_failure(frm);
}

bool image_programmed(frmMain& frm) {
    frm.session.Program_OK = false;
    Program_Image(frm);
    return frm.session.Program_OK;
}

int Program_Range(frmMain& frm, bool split, std::span<const std::uint8_t> bytes,
                  Address_Range range, bool cut_allowed) {
    const std::int32_t block_size = frm.catalogue.Block_Size;
    range.last = programmed_end(range.last, block_size);
    set_up_bar(frm, progress_scale(range));
    range.last = end_before_firmware(frm, range, cut_allowed);
    const Block_Job job = {split, bytes, progress_scale(range), range.first};
    return within_one_block(range.first, range.last, block_size)
               ? program_single_block(frm, job, range.last)
               : program_blocks(frm, job, range.last);
}

int Program_Block(frmMain& frm, bool split, Address_Range block, bool retry,
                  std::span<const std::uint8_t> source) {
    if (!split)
        return send_block(frm, block.first, block.last - block.first + 1, retry, source) < 0 ? -1
                                                                                             : 0;
    for (const Chunk chunk : chunks_of(block, frm.session.Chunk_Size)) {
        const int result = send_block(frm, chunk.address, chunk.count, retry, source);
        if (result < 0 || frm.link.stop_requested) return -1;
        retry = false;
    }
    return 0;
}

void Get_Firmware_Size(frmMain& frm) {
    if (const auto size = firmware_size(leading_number(frm.link.Chip_Version)))
        frm.session.Firmware_Size = *size;
}

}  // namespace vkm
