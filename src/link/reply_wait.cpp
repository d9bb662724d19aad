// Waiting for a reply, and how long.
#include <algorithm>
#include <array>

#include "link/isp_link.h"
#include "link/reply_gathering.h"
#include "text/numbers.h"
#include "waiting/waiting.h"

namespace vkm {
namespace {

// Slow chips write their flash slowly (clock in Hz, time in ms).
struct ClockRow {
    double below;
    std::int32_t timeout_ms;
};
constexpr std::array<ClockRow, 5> by_clock = {
    {{3e6, 4000}, {4e6, 3000}, {6e6, 2000}, {8e6, 1500}, {1.2e7, 1200}}};
constexpr std::int32_t shortest_timeout_ms = 1000;

constexpr int most_answers_owed = 6;         // a block fails as often in a row, no more
constexpr std::int32_t pause_before_ms = 5;  // for a chip that has just answered

// On a slow line the block itself takes this long.
struct BaudRow {
    std::int32_t up_to;
    std::int32_t at_least_ms;
};
constexpr std::array<BaudRow, 4> by_baud = {
    {{1200, 5000}, {2400, 3000}, {4800, 2000}, {9600, 1500}}};

}  // namespace

std::int32_t reply_timeout(double crystal_frequency, std::int32_t baud) {
    const auto clock = std::find_if(by_clock.begin(), by_clock.end(), [&](const ClockRow& row) {
        return crystal_frequency < row.below;
    });
    const std::int32_t timeout = clock != by_clock.end() ? clock->timeout_ms : shortest_timeout_ms;
    const auto line = std::find_if(by_baud.begin(), by_baud.end(),
                                   [&](const BaudRow& row) { return baud <= row.up_to; });
    return line != by_baud.end() ? std::max(timeout, line->at_least_ms) : timeout;
}

std::int32_t answer_time(const frmMain& frm, std::int32_t at_least_ms, std::size_t bytes,
                         std::int32_t chip_ms) {
    return std::max(at_least_ms, ms_on_wire(frm.platform.port, bytes) + chip_ms);
}

bool try_request(frmMain& frm, std::span<const std::uint8_t> frame, std::int32_t timeout_ms,
                 Is_Answer is_answer) {
    LinkState& link = frm.link;
    link.receive_enabled = true;
    wait_ms(frm, pause_before_ms);
    const bool repeat = link.answer_owed;
    if (repeat && link.frame_ok && is_answer(link)) return true;
    if (!repeat || link.frame_ok) forget_reply(link);
    if (repeat)
        write_signal(frm, frame);
    else
        write_frame(frm, frame);
    settle(frm);
    bool answered = wait_for_frame(frm, timeout_ms);
    while (answered && !is_answer(link)) {
        forget_reply(link);
        answered = wait_for_armed_timer(frm, frm.timers.Timer7);
    }
    if (!answered) link.answer_owed = true;
    return answered;
}

void arm_reply_timer(frmMain& frm) {
    const std::int32_t baud = leading_integer(frm.platform.port.settings());
    restart_timer(frm, frm.timers.Timer7, reply_timeout(frm.link.crystal_frequency, baud));
}

bool wait_for_armed_timer(frmMain& frm, const Timer& timer) {
    LinkState& link = frm.link;
    wait_until(frm, [&] { return link.frame_ok || link.stop_requested || !timer.Enabled; });
    if (!link.frame_ok && link.open_request) link.answer_owed = true;
    return link.frame_ok;
}

bool wait_for_frame(frmMain& frm, std::int32_t timeout_ms) {
    restart_timer(frm, frm.timers.Timer7, timeout_ms);
    return wait_for_armed_timer(frm, frm.timers.Timer7);
}

bool demo_stopped(const LinkState& link) {
    return link.demo_stop_requested || link.stop_requested;
}

bool wait_for_demo_frame(frmMain& frm) {
    const LinkState& link = frm.link;
    wait_until(frm, [&] {
        return link.demo_frame_ok || demo_stopped(link) || !frm.timers.Timer7.Enabled;
    });
    return link.demo_frame_ok && !demo_stopped(link);
}

void let_owed_answers_pass(frmMain& frm, std::int32_t timeout_ms) {
    LinkState& link = frm.link;
    const bool answered = link.frame_ok;
    for (int passed = 0; link.answer_owed && passed <= most_answers_owed; ++passed) {
        forget_reply(link);
        link.open_request.reset();
        if (!wait_for_frame(frm, timeout_ms)) link.answer_owed = false;
    }
    link.answer_owed = false;
    link.frame_ok = answered;
}

void Timer1_Tick(frmMain& frm) {
    stop_timer(frm.timers.Timer1);
    frm.link.reply_timed_out = true;
}

void Timer2_Tick(frmMain& frm) {
    stop_timer(frm.timers.Timer2);
    frm.link.reply_gap_or_bad = true;
}

}  // namespace vkm
