#include "board/board_link.h"

#include <array>
#include <string>

#include "board/board_frames.h"
#include "board/board_texts.h"
#include "link/isp_link.h"
#include "link/reply_gathering.h"
#include "session/progress.h"
#include "session/session_report.h"
#include "text/hexadecimal.h"
#include "waiting/waiting.h"

namespace vkm {
namespace {

constexpr std::string_view board_baud = "115200";

constexpr std::array<std::uint8_t, 1> wake_byte = {0xAA};
constexpr int wake_tries = 100001;
constexpr std::int32_t wake_ms = 3;

constexpr std::uint8_t acknowledged = 0x80;
constexpr Board_Command link_check = {.command = 0x80, .timeout_ms = 200, .tries = 201};
constexpr int good_checks = 11;
constexpr Board_Command first_version = {.command = 0x0C, .timeout_ms = 3000, .tries = 4};

constexpr int tries_per_sector = 6;

bool decided(const LinkState& link) {
    return link.reply_timed_out || link.reply_gap_or_bad || link.frame_ok || link.stop_requested;
}

bool wait_for_board(frmMain& frm) {
    LinkState& link = frm.link;
    wait_until(frm, [&] { return decided(link); });
    stop_timer(frm.timers.Timer1);
    if (!link.frame_ok && link.reply_timed_out) link.answer_owed = true;
    if (!link.frame_ok || link.stop_requested) return false;
    copy_receive(frm);
    return true;
}

// One try.
bool ask(frmMain& frm, const Board_Command& command) {
    send_command(frm, command.command, command.timeout_ms, command.parameter);
    if (!wait_for_board(frm)) return false;
    if (command.is_answer(frm.link)) return true;
    frm.link.answer_owed = true;
    return false;
}

// Each wake byte may be answered, and late: such an answer would pass for that to the first
// link check, the check's for that to the second, and so on through the whole job.
bool another_answer_comes(frmMain& frm) {
    forget_reply(frm.link);
    frm.link.seen_46 = false;
    return wait_for_frame(frm, link_check.timeout_ms);
}

// A board without power hears nothing, so the byte goes out until one does. A spoilt
// answer is forgotten, or it would stand in the way of the next one.
bool wake(frmMain& frm) {
    LinkState& link = frm.link;
    int written = 0;
    reset_receive(frm);
    link.reply_gap_or_bad = false;
    for (int attempt = 0; attempt < wake_tries; ++attempt) {
        if (frm.platform.port.output_count() == 0) {
            write_signal(frm, wake_byte);
            ++written;
        }
        link.reply_timed_out = false;
        restart_timer(frm, frm.timers.Timer1, wake_ms);
        wait_until(frm,
                   [&] { return link.reply_timed_out || link.frame_ok || link.stop_requested; });
        if (link.frame_ok || link.stop_requested) break;
        if (!link.reply_gap_or_bad) continue;
        link.reply_gap_or_bad = false;
        forget_reply(link);
        link.seen_46 = false;
    }
    stop_timer(frm.timers.Timer1);
    if (!link.frame_ok || link.stop_requested) return false;
    for (; written > 1 && !link.stop_requested; --written)
        if (!another_answer_comes(frm)) break;
    return !link.stop_requested;
}

bool synchronise(frmMain& frm) {
    for (int check = 0; check < good_checks; ++check)
        if (!board_asked(frm, link_check)) return false;
    return true;
}

bool read_first_version(frmMain& frm) {
    LinkState& link = frm.link;
    frm.board.Board_Version.assign(1, '0');
    bool answered = false;
    for (int attempt = 0; attempt < first_version.tries && !link.stop_requested; ++attempt) {
        answered = ask(frm, first_version);
        if (answered && link.rx_copy[3] == first_version.command) break;
        link.answer_owed = true;
    }
    if (!answered || link.stop_requested) return false;
    frm.board.Board_Version = hex_text(link.rx_copy[4], 2);
    let_owed_answers_pass(frm, first_version.timeout_ms);
    return !link.stop_requested;
}

void report_version(frmMain& frm) {
    const auto tell = [&](std::string_view text) {
        append_message(frm.screen, std::string(text).append(frm.board.Board_Version));
    };
    tell(board_text::version.english);
    if (!frm.screen.Show_English) tell(board_text::version.bilingual);
    scroll_log_to_end(frm.screen);
}

bool send_sector(frmMain& frm, std::span<const std::uint8_t> image, Address_Range sector,
                 bool again) {
    for (const Chunk block : chunks_of(sector, frm.board.Link_Block_Size)) {
        if (Board_Send_Block(frm, image, block.address, block.count, again) != 0) return false;
        again = false;
    }
    return true;
}

bool send_sector_safely(frmMain& frm, std::span<const std::uint8_t> image, Address_Range sector) {
    for (int attempt = 0; attempt < tries_per_sector; ++attempt) {
        const bool sent = send_sector(frm, image, sector, attempt > 0);
        if (frm.link.stop_requested) return false;
        // An acknowledgement names no block: a late one would pass for the next block's.
        let_owed_answers_pass(frm, frm.link.Board_Block_Wait);
        if (frm.link.stop_requested) return false;
        if (sent) return true;
    }
    return false;
}

}  // namespace

void report_stop_or(frmMain& frm, const MessageText& failure) {
    if (!frm.link.stop_requested) return report(frm, failure);
    frm.platform.sounder.beep();
    report(frm, board_text::stopped);
}

void report_no_board(frmMain& frm) {
    report_stop_or(frm, board_text::connect_failed);
}

bool board_answers(frmMain& frm, std::span<const std::uint8_t> frame, std::int32_t timeout_ms) {
    reset_receive(frm);
    expect_board_answer(frm, timeout_ms);
    write_frame(frm, frame);
    return wait_for_board(frm);
}

int reply_length(const LinkState& link) {
    return link.rx_frame[1] * 256 + link.rx_frame[2];
}

bool board_asked(frmMain& frm, const Board_Command& command) {
    LinkState& link = frm.link;
    bool answered = false;
    for (int attempt = 0; attempt < command.tries && !answered && !link.stop_requested; ++attempt)
        answered = ask(frm, command);
    if (!answered) return false;
    let_owed_answers_pass(frm, command.timeout_ms);
    return !link.stop_requested;
}

bool open_board_port(frmMain& frm, const MessageText& failure) {
    LinkState& link = frm.link;
    link.stop_requested = false;
    frm.screen.comStop_Download.Enabled = true;
    if (close_port(frm)) close_port(frm);
    link.frame_ok = false;
    link.answer_owed = false;
    if (!set_port_baud(frm, board_baud) || open_port(frm) != 0) {
        beep_times(frm, 3);
        report(frm, failure);
        return false;
    }
    show_port_picture(frm, true);
    reset_receive(frm);
    link.receive_enabled = true;
    // What a board sends while its power comes up is noise.
    link.hunt_header = true;
    return true;
}

void leave_board_link(LinkState& link) {
    link.use_crc = false;
    link.hunt_header = false;
    link.answer_owed = false;
}

bool Board_Connect(frmMain& frm) {
    if (!open_board_port(frm, board_text::open_failed)) return false;
    report(frm, board_text::connecting);
    report(frm, board_text::power_on);
    if (!wake(frm) || !synchronise(frm) || !read_first_version(frm)) {
        report_no_board(frm);
        close_port(frm);
        return false;
    }
    report_version(frm);
    return true;
}

bool Board_Send_Range(frmMain& frm, std::span<const std::uint8_t> image, Address_Range range) {
    const Progress_Scale scale = progress_scale(range);
    set_up_bar(frm, scale);
    frm.screen.ProgressBar1.Visible = true;
    for (const Address_Range sector : blocks_between(range.first, range.last, board_sector)) {
        if (!send_sector_safely(frm, image, sector)) return false;
        show_programmed(frm, scale, {range.first, sector.last});
    }
    return true;
}

int Board_Send_Block(frmMain& frm, std::span<const std::uint8_t> image, std::int32_t address,
                     std::int32_t count, bool flag) {
    const Frame frame = build_board_block(image, address, count, flag);
    const bool good =
        board_answers(frm, frame, frm.link.Board_Block_Wait) && frm.link.rx_copy[3] == acknowledged;
    return block_result(frm, good);
}

}  // namespace vkm
