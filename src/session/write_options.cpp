#include "session/write_options.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <span>
#include <string>

#include "catalogue/model_traits.h"
#include "link/handshake.h"
#include "link/isp_link.h"
#include "link/status_frame.h"
#include "options/mcu_options.h"
#include "options/option_bytes.h"
#include "options/option_schema.h"
#include "session/end_session.h"
#include "session/option_frames.h"
#include "session/session_report.h"
#include "session/session_texts.h"
#include "text/numbers.h"
#include "waiting/waiting.h"

namespace vkm {
namespace {

// ---- the line ---------------------------------------------------------------

constexpr std::int32_t family_0_answer_ms = 50;
constexpr std::int32_t family_0_chip_ms = 14;    // of these, where the line is slow
constexpr std::size_t family_0_line_bytes = 17;  // the frame and its answer
constexpr std::int32_t answer_ms = 500;
constexpr int family_0_attempts = 3;
constexpr int rounds = 2;
constexpr int attempts_of_a_round = 2;

constexpr std::size_t answer_code_at = 3;  // in rx_frame
constexpr std::uint8_t answer_taken = 0x80;
constexpr std::uint8_t answer_busy = 0x81;

constexpr std::int16_t after_writing = -1;  // the flag of the read-back display

// ---- the option bytes ---------------------------------------------------------

constexpr std::uint8_t family_0_option = 0x40;
constexpr std::uint8_t family_0_option_PCA = 0x20;
constexpr std::uint8_t family_0_double_speed = 0x08;
constexpr std::uint8_t no_option_byte = 0xFF;

constexpr std::size_t spare_word_of_family_2 = 8;
constexpr double last_without_watchdog_word = 3.6;  // that firmware has no such byte
constexpr std::int16_t lacking_word = 0xFF;
constexpr std::int16_t on_crystal = 0x02;      // of the byte that chooses the clock
constexpr int first_firmware_to_compare = 32;  // 3.2

std::int16_t family(const frmMain& frm) {
    return frm.catalogue.MCU_Info.MCU_Family;
}

std::span<const int> words_of(const frmMain& frm) {
    return option_words_of_family(family(frm));
}

bool chip_has_the_options(const frmMain& frm) {
    return std::ranges::all_of(words_of(frm), [&](int word) {
        const auto at = static_cast<std::size_t>(word);
        return frm.options.Chip_Bytes[at] == frm.options.Option_Bytes[0][at];
    });
}

void leave_options_as_they_are(frmMain& frm) {
    frm.link.Status_Read_OK = true;
    End_Session(frm);
    frm.link.frame_ok = true;
}

void report_options_written(frmMain& frm) {
    report(frm, session_text::options_ok);
}

// ---- family 0 -------------------------------------------------------------------

bool send_family_0(frmMain& frm, const Frame& frame) {
    const std::int32_t timeout_ms =
        answer_time(frm, family_0_answer_ms, family_0_line_bytes, family_0_chip_ms);
    for (int attempt = 0; attempt < family_0_attempts && !frm.link.stop_requested; ++attempt) {
        reset_receive(frm);
        if (try_request(frm, frame, timeout_ms)) return true;
    }
    return false;
}

void write_family_0(frmMain& frm) {
    const Frame frame = build_family_0_options(Family0_Option_Byte(frm));
    Restart_Port(frm);
    if (!send_family_0(frm, frame)) return Option_Write_Failed(frm);
    Read_Chip_Status(frm, after_writing);
    if (!frm.link.frame_ok) return Option_Write_Failed(frm);
    std::string done(session_text::options_end);
    if (frm.screen.Option0[0].Value != 0) done.insert(0, session_text::double_speed_done);
    append_message(frm.screen, with_time_of_day(frm, done));
    scroll_log_to_end(frm.screen);
}

// ---- family 2 -------------------------------------------------------------------

// The pair of the clock mode that the chip will run in.
ReloadPair pair_of_new_mode(const frmMain& frm) {
    const LinkState& link = frm.link;
    const bool other = option_on(frm.options.Panel_State, option_key::double_speed);
    return {static_cast<std::uint8_t>(other ? link.other_Baud_H : link.newBaud_H),
            static_cast<std::uint8_t>(other ? link.other_Baud_L : link.newBaud_L)};
}

// One round.
bool send_family_2(frmMain& frm) {
    const Frame frame = build_family_2_options(frm.options.Option_Bytes[0], pair_of_new_mode(frm));
    for (int attempt = 0; attempt < attempts_of_a_round && !frm.link.stop_requested; ++attempt)
        if (try_request(frm, frame, answer_ms)) return true;
    return false;
}

// A byte of nothing but one of two marks says that the chip is to be written in any
// case. No choice of the family touches this byte, so it holds all ones.
bool may_be_left_alone(std::int16_t spare_word) {
    return (spare_word & ~0x10) != 0 && (spare_word & ~0x08) != 0;
}

void write_family_2(frmMain& frm) {
    Compose_Options(frm);
    const std::int16_t spare_word = frm.options.Option_Bytes[0][spare_word_of_family_2];
    if (may_be_left_alone(spare_word) && chip_has_the_options(frm))
        return leave_options_as_they_are(frm);
    reset_receive(frm);
    Restart_Port(frm);
    bool written = false;
    for (int round = 0; round < rounds; ++round) {
        written = send_family_2(frm);
        if (!written) continue;
        Read_Chip_Status(frm, after_writing);
        if (!frm.link.frame_ok) return Option_Write_Failed(frm);
        if (chip_has_the_options(frm)) return report_options_written(frm);
    }
    if (!written) return Option_Write_Failed(frm);
    // A chip that took the frame and holds another byte doesn't end the job; the
    // lines of what it holds stand in the log.
    frm.link.Status_Read_OK = false;
}

// ---- families 3, 4 and 6 ----------------------------------------------------------

// The panel's choices, without what old firmware lacks.
void compose_for_firmware(frmMain& frm) {
    Compose_Options(frm);
    if (family(frm) == 6) return;
    if (leading_number(frm.link.Chip_Version) <= last_without_watchdog_word)
        frm.options.Option_Bytes[0][*prescaler_byte(family(frm))] = lacking_word;
}

bool runs_on_crystal(const frmMain& frm, const Option_Words& options) {
    return (options[*clock_source_byte(family(frm))] & on_crystal) != 0;
}

// On its own oscillator the chip wants to be told what clock that makes.
Frame frame_with_clock(const frmMain& frm) {
    const Option_Words& options = frm.options.Option_Bytes[0];
    std::optional<std::int32_t> clock;
    if (!runs_on_crystal(frm, options)) clock = round_half_even(frm.link.Chip_Clock);
    return build_options_with_clock(options, words_of(frm), clock);
}

// One round. A firmware that says busy is asked again without limit: only Stop
// ends that.
bool send_with_clock(frmMain& frm, const Frame& frame) {
    LinkState& link = frm.link;
    for (int attempt = 0; attempt < attempts_of_a_round && !link.stop_requested;) {
        reset_receive(frm);
        const bool answered = try_request(frm, frame, answer_ms);
        link.frame_ok = answered && link.rx_frame[answer_code_at] == answer_taken;
        if (link.frame_ok) return true;
        const bool asks_to_wait = answered && link.rx_frame[answer_code_at] == answer_busy;
        attempt = asks_to_wait ? 0 : attempt + 1;
    }
    return false;
}

bool firmware_reports_all(const frmMain& frm) {
    return std::floor(leading_number(frm.link.Chip_Version) * 10 + 0.5) >=
           first_firmware_to_compare;
}

void write_with_clock(frmMain& frm) {
    compose_for_firmware(frm);
    if (runs_on_crystal(frm, frm.options.Chip_Bytes) && chip_has_the_options(frm))
        return leave_options_as_they_are(frm);
    reset_receive(frm);
    Restart_Port(frm);
    const Frame frame = frame_with_clock(frm);
    bool written = false;
    for (int round = 0; round < rounds && !written; ++round) written = send_with_clock(frm, frame);
    if (!written) return Option_Write_Failed(frm);
    Read_Chip_Status(frm, after_writing);
    if (!frm.link.frame_ok) return Option_Write_Failed(frm);
    if (!firmware_reports_all(frm)) return;
    // The read has composed the panel's choices anew.
    compose_for_firmware(frm);
    if (!chip_has_the_options(frm)) return Option_Write_Failed(frm);
    report_options_written(frm);
}

}  // namespace

void Write_Options(frmMain& frm) {
    frm.link.Status_Read_OK = false;
    switch (family(frm)) {
        case 0:
            return write_family_0(frm);
        case 2:
            return write_family_2(frm);
        case 3:
        case 4:
        case 6:
            return write_with_clock(frm);
        default:
            return;
    }
}

std::uint8_t Family0_Option_Byte(const frmMain& frm) {
    if (family(frm) != 0) return no_option_byte;
    const std::uint8_t option =
        has_PCA_option(frm.catalogue.MCU_Info.MCU_Name) ? family_0_option_PCA : family_0_option;
    return frm.screen.Option0[0].Value != 0 ? option | family_0_double_speed : option;
}

void Option_Write_Failed(frmMain& frm) {
    beep_times(frm, 3);
    report(frm, session_text::options_failed);
    frm.link.Status_Read_OK = false;
    frm.link.frame_ok = false;
}

}  // namespace vkm
