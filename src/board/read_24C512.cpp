// Reading the board's EEPROM back into the program image.
#include <algorithm>
#include <numeric>
#include <span>

#include "board/board_download.h"
#include "board/board_frames.h"
#include "board/board_link.h"
#include "board/board_texts.h"
#include "image/checksum_text.h"
#include "image/image_files.h"
#include "link/isp_link.h"
#include "session/download_session.h"
#include "session/job_steps.h"
#include "session/progress.h"
#include "session/session_lease.h"
#include "session/session_report.h"
#include "session/session_texts.h"
#include "session/verdict.h"
#include "waiting/waiting.h"

namespace vkm {
namespace {

constexpr int pages = 512;
constexpr std::int32_t page_size = 128;
constexpr std::int32_t last_address = pages * page_size - 1;
constexpr int tries_per_page = 3;
constexpr std::int32_t page_wait_ms = 600;

constexpr std::uint8_t storage_reply = 0x53;
constexpr std::size_t data_in_reply = 6;
// The data, its sum of two and the end mark: what is shorter holds less than a page.
constexpr int shortest_reply = static_cast<int>(data_in_reply) + page_size + 3;

bool is_page(const LinkState& link) {
    return reply_length(link) >= shortest_reply && link.rx_copy[3] == storage_reply;
}

// A page doesn't tell which one it is, so that behind a repeat the line must be silent
// before the next one is asked for.
bool read_page(frmMain& frm, std::int32_t address) {
    LinkState& link = frm.link;
    const Frame frame = build_board_read(address);
    bool read = false;
    for (int attempt = 0; attempt < tries_per_page && !read && !link.stop_requested; ++attempt) {
        read = board_answers(frm, frame, page_wait_ms) && is_page(link);
        link.answer_owed = !read || attempt > 0;
        if (!link.stop_requested) let_owed_answers_pass(frm, page_wait_ms);
    }
    return read && !link.stop_requested;
}

void store_page(frmMain& frm, std::int32_t address) {
    std::copy_n(frm.link.rx_copy.begin() + data_in_reply, page_size,
                frm.images.AP_Buffer.Bytes.begin() + address);
}

bool read_pages(frmMain& frm) {
    for (int page = 0; page < pages; ++page) {
        const std::int32_t address = page * page_size;
        if (!read_page(frm, address)) {
            append_message(frm.screen, frm.link.stop_requested ? board_text::reading_stopped
                                                               : board_text::reading_failed);
            scroll_log_to_end(frm.screen);
            return false;
        }
        store_page(frm, address);
        frm.screen.ProgressBar1.Value = page + 1;
    }
    append_message(frm.screen, board_text::reading_done);
    scroll_log_to_end(frm.screen);
    return true;
}

void show_image(frmMain& frm) {
    Image_Buffer& buffer = frm.images.AP_Buffer;
    const auto read = std::span(buffer.Bytes).first(last_address + 1);
    buffer.Sum = std::accumulate(read.begin(), read.end(), std::int32_t{0});
    frm.screen.txtFileCheckSum.Text = checksum_text(buffer.Sum);
    Refresh_Buffer_View(frm, buffer, frm.increase.Auto_Increase);
    keep_keyboard(frm);
}

// Half of the storage is nothing to download; it can be looked at.
void end_reading(frmMain& frm, bool whole) {
    Image_Buffer& buffer = frm.images.AP_Buffer;
    if (whole) {
        buffer.Image_Low = buffer.File_Low = 0;
        buffer.Image_High = buffer.File_High = last_address;
        job_done(frm);
    } else {
        frm.images.File_Loaded = false;
        job_failed(frm, session_text::step_read_board);
    }
    show_image(frm);
}

void read_storage(frmMain& frm) {
    job_runs(frm);
    if (!open_board_port(frm, board_text::read_open_failed)) {
        job_failed(frm, session_text::step_read_board);
        return;
    }
    take_over_image(frm, "24C512");
    ++frm.images.AP_Buffer.Load_Number;
    Fill_Bytes(0, frm.images.AP_Buffer.Bytes);
    set_up_bar(frm, {.Min = 0, .Max = pages});
    Show_Progress(frm, Progress::down_load);
    append_message(frm.screen, board_text::reading);
    scroll_log_to_end(frm.screen);
    frm.link.use_crc = true;
    const bool whole = read_pages(frm);
    leave_board_link(frm.link);
    Show_Progress(frm, Progress::hide);
    end_reading(frm, whole);
}

}  // namespace

// A board that wasn't reached, or an operator who stopped, ends it before the program in
// the image is given up. Without a program there is none to lose.
void Read24C512(frmMain& frm) {
    const Session_Lease lease(frm);
    if (!lease.granted()) return;
    close_assistant_port(frm);
    if (Board_Download(frm, true) == Board_Outcome::failed) return;
    if (frm.link.close_pending) return;
    // The image is being filled, and Stop has to stay: locking the options would take it.
    Set_UI_Busy(frm);
    read_storage(frm);
    comStop_Download(frm);
}

}  // namespace vkm
