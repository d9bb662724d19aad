#include "session/erase.h"

#include <algorithm>

#include "link/isp_link.h"
#include "session/download_session.h"
#include "session/erase_frame.h"
#include "session/session_report.h"
#include "session/session_texts.h"
#include "text/numbers.h"
#include "waiting/waiting.h"

namespace vkm {
namespace {

constexpr int attempts = 3;
// A chip that heard a repeat erases again, and takes as long for it as before.
constexpr std::int32_t second_answer_ms = 6000;
constexpr std::int32_t beyond_first_ms = 1000;
constexpr std::int32_t answer_ms = 5000;  // the firmware answers when the flash is erased
constexpr std::int32_t settle_after_ms = 100;
constexpr std::int16_t keep_data_bit = 0x02;  // of option byte 8: the data memory is kept
constexpr std::size_t keep_data_byte = 8;

Frame erase_frame(const frmMain& frm) {
    const std::string& letter = frm.link.Chip_Letter;
    const Erase_Facts facts{letter, leading_number(frm.link.Chip_Version),
                            frm.screen.txtDevice.Text, frm.images.AP_Buffer.Image_High};
    const bool keep_data = (frm.options.Chip_Bytes[keep_data_byte] & keep_data_bit) != 0;
    return build_erase_frame(letter, Erase_Sectors(facts),
                             Erase_Range(letter, frm.session.Download_Plan, keep_data));
}

bool send_erase(frmMain& frm, const Frame& frame) {
    for (int attempt = 0; attempt < attempts; ++attempt) {
        if (try_request(frm, frame, answer_ms)) return true;
    }
    return false;
}

void note_erase_time(frmMain& frm, std::int64_t begin) {
    frm.session.Erase_Time = elapsed_time(frm, begin);
    append_to_last_line(frm.screen, " ( " + frm.session.Erase_Time + " )");
    scroll_log_to_end(frm.screen);
}

std::int32_t second_answer_time(const frmMain& frm, Instant asked) {
    const Microseconds took = frm.platform.loop.now() - asked;
    const auto took_ms =
        static_cast<std::int32_t>(std::chrono::duration_cast<Milliseconds>(took).count());
    return std::max(second_answer_ms, took_ms + beyond_first_ms);
}

}  // namespace

void Erase_Application(frmMain& frm) {
    report(frm, session_text::erasing);
    const std::int64_t begin = frm.platform.wall_clock.seconds();
    frm.session.Erase_Time.clear();
    Restart_Port(frm);
    reset_receive(frm);
    const Instant asked = frm.platform.loop.now();
    const bool erased = send_erase(frm, erase_frame(frm));
    if (erased) {
        note_erase_time(frm, begin);
        let_owed_answers_pass(frm, second_answer_time(frm, asked));
    }
    wait_ms(frm, settle_after_ms);
    // An answer that comes only now comes too late: it has been given up.
    frm.link.frame_ok = erased;
}

}  // namespace vkm
