#include "session/write_options.h"

#include <algorithm>
#include <cmath>

#include "catalogue/model_traits.h"
#include "link/handshake.h"
#include "link/isp_link.h"
#include "link/status_frame.h"
#include "options/mcu_options.h"
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

constexpr std::int32_t pause_ms = 5;  // for a chip that has just answered
constexpr std::int32_t family_0_answer_ms = 50;
constexpr std::int32_t family_0_chip_ms = 20;    // for the chip, where the line is slow
constexpr std::size_t family_0_line_bytes = 17;  // the frame and its answer
constexpr std::int32_t answer_ms = 500;
constexpr int family_0_attempts = 3;
constexpr int rounds = 2;
constexpr int attempts_of_a_round = 2;

constexpr std::size_t answer_code_at = 3;  // in rx_frame
constexpr std::uint8_t taken = 0x80;
constexpr std::uint8_t busy = 0x81;

constexpr std::int16_t after_writing = -1;  // for the read-back display

// ---- the option bytes ---------------------------------------------------------

constexpr std::uint8_t family_0_option = 0x40;
constexpr std::uint8_t family_0_option_PCA = 0x20;
constexpr std::uint8_t family_0_double_speed = 0x08;
constexpr std::uint8_t no_option_byte = 0xFF;

constexpr std::size_t word_8 = 8;
constexpr std::size_t watchdog_word = 3;            // of families 3 and 4
constexpr double last_without_watchdog_word = 3.6;  // that firmware has no such byte
constexpr std::int16_t lacking = 0xFF;
constexpr std::int16_t on_crystal = 0x02;      // of the word that chooses the clock
constexpr int first_firmware_to_compare = 32;  // 3.2

bool send_option_frame(frmMain& frm, const Frame& frame, std::int32_t timeout_ms) {
    frm.link.receive_enabled = true;
    wait_ms(frm, pause_ms);
    write_and_settle(frm, frame);
    return wait_for_frame(frm, timeout_ms);
}

std::span<const int> words_of(const frmMain& frm) {
    return option_words_of_family(frm.catalogue.MCU_Info.MCU_Family);
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

// Below 4800 baud the line alone needs longer than the chip is given.
std::int32_t family_0_wait_ms(const frmMain& frm) {
    const Microseconds on_line = time_on_wire(frm.platform.port, family_0_line_bytes);
    const auto line_ms = std::chrono::ceil<Milliseconds>(on_line).count();
    return std::max(family_0_answer_ms, static_cast<std::int32_t>(line_ms) + family_0_chip_ms);
}

void write_family_0(frmMain& frm) {
    const Frame frame = build_option_frame(Family0_Option_Byte(frm));
    Restart_Port(frm);
    for (int attempt = 0; attempt < family_0_attempts; ++attempt) {
        reset_receive(frm);
        if (send_option_frame(frm, frame, family_0_wait_ms(frm))) break;
    }
    if (frm.link.frame_ok) Read_Chip_Status(frm, after_writing);
    if (!frm.link.frame_ok) return Option_Write_Failed(frm);
    const std::string_view done =
        frm.screen.Option0[0].Value != 0 ? session_text::double_speed_done : "";
    append_message(frm.screen, with_time_of_day(frm, std::string(done) + " (End: "));
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

bool send_family_2(frmMain& frm) {
    const Frame frame = build_option_frame(frm.options.Option_Bytes[0], pair_of_new_mode(frm));
    for (int attempt = 0; attempt < attempts_of_a_round; ++attempt)
        if (send_option_frame(frm, frame, answer_ms)) return true;
    return false;
}

bool chip_takes_options(std::int16_t word) {
    return (word & ~0x10) != 0 && (word & ~0x08) != 0;
}

void write_family_2(frmMain& frm) {
    Compose_Options(frm);
    if (chip_takes_options(frm.options.Option_Bytes[0][word_8]) && chip_has_the_options(frm))
        return leave_options_as_they_are(frm);
    reset_receive(frm);
    Restart_Port(frm);
    for (int round = 0; round < rounds; ++round) {
        if (!send_family_2(frm)) continue;
        Read_Chip_Status(frm, after_writing);
        if (!frm.link.frame_ok) return Option_Write_Failed(frm);
        if (chip_has_the_options(frm)) return report_options_written(frm);
    }
    // A chip that took the frame twice and holds another byte doesn't end the job;
    // the lines of what it holds stand in the log.
    frm.link.Status_Read_OK = false;
    if (!frm.link.frame_ok) Option_Write_Failed(frm);
}

// ---- families 3, 4 and 6 ----------------------------------------------------------

std::size_t clock_source_word(const frmMain& frm) {
    return frm.catalogue.MCU_Info.MCU_Family == 6 ? 3 : 2;
}

// The panel's choices, without what old firmware lacks.
void compose_for_firmware(frmMain& frm) {
    Compose_Options(frm);
    if (frm.catalogue.MCU_Info.MCU_Family == 6) return;
    if (leading_number(frm.link.Chip_Version) <= last_without_watchdog_word)
        frm.options.Option_Bytes[0][watchdog_word] = lacking;
}

// On its own oscillator the chip wants to be told what clock that makes.
Frame frame_with_clock(const frmMain& frm) {
    const OptionWords& options = frm.options.Option_Bytes[0];
    std::optional<std::int32_t> clock;
    if ((options[clock_source_word(frm)] & on_crystal) == 0)
        clock = round_half_even(frm.link.Chip_Clock);
    return build_option_frame(options, words_of(frm), clock);
}

// One round. A firmware that says busy is asked again without limit: only Stop
// ends that.
bool send_with_clock(frmMain& frm, const Frame& frame) {
    LinkState& link = frm.link;
    for (int attempt = 0; attempt < attempts_of_a_round && !link.stop_requested;) {
        reset_receive(frm);
        const bool answered = send_option_frame(frm, frame, answer_ms);
        link.frame_ok = answered && link.rx_frame[answer_code_at] == taken;
        if (link.frame_ok) return true;
        const bool asks_to_wait = answered && link.rx_frame[answer_code_at] == busy;
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
    const bool crystal = (frm.options.Chip_Bytes[clock_source_word(frm)] & on_crystal) != 0;
    if (crystal && chip_has_the_options(frm)) return leave_options_as_they_are(frm);
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
    switch (frm.catalogue.MCU_Info.MCU_Family) {
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
    const MCU_Record& model = frm.catalogue.MCU_Info;
    if (model.MCU_Family != 0) return no_option_byte;
    const std::uint8_t option =
        has_PCA_option(model.MCU_Name) ? family_0_option_PCA : family_0_option;
    return frm.screen.Option0[0].Value != 0 ? option | family_0_double_speed : option;
}

void Option_Write_Failed(frmMain& frm) {
    beep_times(frm, 3);
    report(frm, session_text::options_failed);
    frm.link.Status_Read_OK = false;
    frm.link.frame_ok = false;
}

}  // namespace vkm
