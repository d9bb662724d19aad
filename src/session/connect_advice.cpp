#include "session/connect_advice.h"

#include <span>

#include "screen/message_text.h"
#include "session/session_texts.h"
#include "waiting/waiting.h"

namespace vkm {
namespace {

void append_lines(Screen& screen, std::span<const std::string_view> lines) {
    for (const std::string_view line : lines) append_message(screen, line);
}

}  // namespace

void Timer9_Tick(frmMain& frm) {
    Screen& screen = frm.screen;
    beep_times(frm, 2);
    stop_timer(frm.timers.Timer9);
    if (frm.link.demo_mode) {
        append_lines(screen, session_text::demo_advice);
    } else {
        append_lines(screen, session_text::advice);
        if (!screen.Show_English) append_lines(screen, session_text::advice_CN);
    }
    scroll_log_to_end(screen);
}

}  // namespace vkm
