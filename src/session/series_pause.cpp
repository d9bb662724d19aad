#include "session/series_pause.h"

#include <string>

#include "link/isp_link.h"
#include "session/session_texts.h"
#include "text/numbers.h"
#include "waiting/waiting.h"

namespace vkm {
namespace {

constexpr std::int32_t countdown_tick_ms = 1000;

void show_countdown(frmMain& frm, const std::string& log, std::int32_t seconds) {
    using namespace session_text;
    const std::string counter = std::to_string(seconds);
    std::string text = log + "\r\n\r\n" + std::string(chosen_text(frm.screen, succeeded));
    text += "\r\n\r\n" + std::string(next_chip) + counter;
    if (!frm.screen.Show_English) text += "\r\n\r\n" + std::string(next_chip_CN) + counter;
    frm.screen.textMsg.Text = std::move(text);
    scroll_log_to_end(frm.screen);
}

}  // namespace

void pause_between_chips(frmMain& frm, Pause_Stop stop) {
    frm.platform.port.clear_input();
    frm.platform.port.clear_output();
    close_port(frm);
    const std::string log = frm.screen.textMsg.Text;
    const auto ended = [&] { return stop == Pause_Stop::at_once && frm.link.stop_requested; };
    const std::int32_t seconds = leading_integer(text_of(frm.screen.comDalay_ReDownLoad));
    for (std::int32_t left = seconds; left >= 1 && !ended(); --left) {
        show_countdown(frm, log, left);
        restart_timer(frm, frm.timers.Timer10, countdown_tick_ms);
        wait_until(frm, [&] { return !frm.timers.Timer10.Enabled || ended(); });
    }
    frm.screen.textMsg.Text.clear();
}

}  // namespace vkm
