// Sending: every operation clears its flags before it writes, or in the same turn, and never
// later, since the receive handler may run between any two of its steps that wait.
#include "link/frames.h"
#include "link/isp_link.h"
#include "link/reply_gathering.h"
#include "waiting/waiting.h"

namespace vkm {
namespace {

constexpr std::uint8_t block_plain = 0x00;
constexpr std::uint8_t block_flagged = 0x30;
constexpr std::uint8_t demo_block_plain = 0xB3;
constexpr std::uint8_t demo_block_flagged = 0xB4;

constexpr std::uint8_t acknowledged = 0x80;
// The answer of older firmware has this length and echoes no sum.
constexpr int answer_without_sum = 6;

// Time in which a chip takes in the end of a frame before the line is touched again.
constexpr std::int32_t settle_ms = 3;
constexpr std::int32_t demo_pause_ms = 20;
constexpr std::int32_t output_poll_ms = 1;
constexpr std::int32_t output_margin_ms = 500;

// The window closes at the next chance, not inside the failing call.
constexpr std::int32_t close_window_ms = 1;

bool block_acknowledged(const LinkState& link, std::uint16_t data_sum) {
    if (link.rx_copy[3] != acknowledged) return false;
    const int length = link.rx_copy[1] * 256 + link.rx_copy[2];
    return length == answer_without_sum || link.rx_copy[4] == data_sum;
}

bool send_chip_block(frmMain& frm, const DataFrame& frame) {
    reset_receive(frm);
    write_frame(frm, frame.bytes);
    arm_reply_timer(frm);
    if (!wait_for_armed_timer(frm, frm.timers.Timer7)) return false;
    copy_receive(frm);
    if (!block_acknowledged(frm.link, frame.data_sum)) return false;
    // The answer to the try before would pass for the next block's: two blocks of
    // like content have like sums, and old firmware tells none.
    let_owed_answers_pass(frm, frm.timers.Timer7.Interval);
    return true;
}

// No longer than so many bytes need, and a margin: a driver may never let go of them.
template <typename Unsent>
void poll_while(frmMain& frm, std::size_t bytes, Unsent unsent) {
    const Instant limit = frm.platform.loop.now() + time_on_wire(frm.platform.port, bytes) +
                          Milliseconds(output_margin_ms);
    while (unsent() > 0 && frm.platform.loop.now() < limit) wait_ms(frm, output_poll_ms);
}

void wait_until_handed_over(frmMain& frm, std::size_t bytes) {
    poll_while(frm, bytes, [&] { return frm.platform.port.held_output(); });
}

bool demo_block_acknowledged(const LinkState& link, std::uint16_t data_sum) {
    return link.rx_copy[5] * 256 + link.rx_copy[6] == data_sum;
}

// This class clears behind the write: whatever the program answered to the frame before is
// not taken for the answer to this one. What is received is forgotten at once, and what
// comes while the frame still leaves the wire by the receive handler (receiving.cpp), since
// later the answer of a quick target would go along. Output is left alone until the device
// has it all: a clearing would cut the frame off. The time for the answer begins then.
bool send_demo_block(frmMain& frm, const DataFrame& frame) {
    LinkState& link = frm.link;
    if (link.stop_requested) return false;
    reset_receive(frm);
    write_frame(frm, frame.bytes);
    forget_demo_input(frm);
    link.demo_stop_requested = false;
    wait_until_handed_over(frm, frame.bytes.size());
    arm_reply_timer(frm);
    if (!wait_for_demo_frame(frm)) return false;
    link.frame_ok = true;
    copy_receive(frm);
    return demo_block_acknowledged(link, frame.data_sum);
}

bool send_block_frame(frmMain& frm, std::int32_t address, std::int32_t count, bool flag,
                      std::span<const std::uint8_t> image) {
    if (frm.link.demo_mode) {
        const std::uint8_t command = flag ? demo_block_flagged : demo_block_plain;
        return send_demo_block(frm, build_demo_frame(address, count, command, image));
    }
    const std::uint8_t command = flag ? block_flagged : block_plain;
    return send_chip_block(frm, build_data_frame(address, count, command, image));
}

}  // namespace

void write_frame(frmMain& frm, std::span<const std::uint8_t> bytes) {
    const SerialPort& port = frm.platform.port;
    frm.link.open_request = frm.platform.loop.now() + time_on_wire(port, bytes.size());
    frm.platform.port.write(bytes);
}

void write_signal(frmMain& frm, std::span<const std::uint8_t> bytes) {
    frm.link.open_request.reset();
    frm.platform.port.write(bytes);
}

void forget_demo_input(frmMain& frm) {
    frm.platform.port.clear_input();
    forget_demo_reply(frm.link);
}

void wait_until_sent(frmMain& frm, std::size_t bytes) {
    poll_while(frm, bytes, [&] { return frm.platform.port.output_count(); });
}

void settle(frmMain& frm) {
    if (frm.platform.port.output_count() > 0) process_events(frm);
    wait_ms(frm, settle_ms);
}

void write_and_settle(frmMain& frm, std::span<const std::uint8_t> bytes) {
    write_frame(frm, bytes);
    settle(frm);
}

int send_block(frmMain& frm, std::int32_t address, std::int32_t count, bool flag,
               std::span<const std::uint8_t> image) {
    return block_result(frm, send_block_frame(frm, address, count, flag, image));
}

int block_result(frmMain& frm, bool good) {
    if (good) return 0;
    if (frm.link.close_pending) restart_timer(frm, frm.timers.Timer4, close_window_ms);
    return -1;
}

void expect_board_answer(frmMain& frm, std::int32_t timeout_ms) {
    LinkState& link = frm.link;
    link.reply_timed_out = false;
    link.reply_gap_or_bad = false;
    link.frame_ok = false;
    restart_timer(frm, frm.timers.Timer1, timeout_ms);
    stop_timer(frm.timers.Timer2);
    frm.timers.Timer2.Interval = link.Board_Gap_Wait;
}

void send_command(frmMain& frm, std::uint8_t command, std::int32_t timeout_ms,
                  std::uint8_t parameter) {
    LinkState& link = frm.link;
    reset_receive(frm);
    expect_board_answer(frm, timeout_ms);
    const auto family = static_cast<std::uint8_t>(frm.catalogue.MCU_Info.MCU_Family & 0xFF);
    write_frame(frm, build_board_command(command, family, parameter, link.use_crc));
}

void send_demo_command(frmMain& frm, std::uint8_t command) {
    wait_until_sent(frm, frm.platform.port.output_count());
    wait_ms(frm, demo_pause_ms);
    if (!demo_stopped(frm.link)) write_frame(frm, build_demo_command(command));
}

int send_trigger(frmMain& frm, std::uint8_t command) {
    const auto trigger = build_trigger(command);
    if (!trigger) return -1;
    set_port_defaults(frm);
    if (!frm.platform.port.is_open() && open_port(frm) == not_open) return -1;
    forget_reply(frm.link);
    write_signal(frm, *trigger);
    return 0;
}

}  // namespace vkm
