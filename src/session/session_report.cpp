#include "session/session_report.h"

#include "session/download_session.h"
#include "session/session_texts.h"
#include "text/numbers.h"

namespace vkm {

void report(frmMain& frm, const MessageText& message) {
    append_message(frm.screen, message);
    scroll_log_to_end(frm.screen);
}

std::string with_time_of_day(const frmMain& frm, std::string_view text) {
    return std::string(text) + frm.platform.wall_clock.time_of_day() + ")";
}

std::string with_time_of_day(const frmMain& frm, const MessageText& text) {
    return with_time_of_day(frm, chosen_text(frm.screen, text));
}

void report_stop(frmMain& frm) {
    frm.platform.sounder.beep();
    report(frm, session_text::stopped);
}

std::string elapsed_time(const frmMain& frm, std::int64_t begin) {
    return minutes_seconds(frm.platform.wall_clock.seconds() - begin);
}

}  // namespace vkm
