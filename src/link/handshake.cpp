#include "link/handshake.h"

#include <algorithm>
#include <array>
#include <span>
#include <string>

#include "catalogue/mcu_catalogue.h"
#include "catalogue/model_traits.h"
#include "link/baud.h"
#include "link/baud_exchange.h"
#include "link/exchange_frames.h"
#include "link/isp_link.h"
#include "link/link_texts.h"
#include "link/status_frame.h"
#include "options/mcu_options.h"
#include "options/option_display.h"
#include "text/numbers.h"
#include "text/trimming.h"
#include "waiting/waiting.h"

namespace vkm {
namespace {

constexpr int succeeded = 0;
constexpr int failed = -1;

constexpr std::string_view base_baud = "1200";
constexpr std::string_view trigger_baud = "115200";
constexpr std::int32_t trigger_baud_rate = 115200;

// A chip measures its clock by these pulses once it has power.
constexpr std::array<std::uint8_t, 2> sync_pulse = {0x7F, 0x7F};
constexpr std::int32_t pulse_ms = 10;
constexpr std::uint8_t connect_trigger = 0x8A;
constexpr std::int32_t trigger_ms = 100;
constexpr std::int32_t advice_ms = 4000;  // a chip that is silent so long gets the operator advice

constexpr int status_tries = 3;
constexpr int lock_tries = 4;
constexpr std::int32_t status_retry_ms = 50;
constexpr std::int32_t status_answer_ms = 900;

constexpr int baud_attempts = 4;
// A rate found in the fourth attempt is not trusted.
constexpr int last_good_attempt = 3;
constexpr int test_tries = 3;
constexpr int set_tries = 3;
constexpr std::int32_t before_test_ms = 150;  // the chip settles back to the base baud
// Counts up to 1 leave nothing to divide: no other rate is tried.
constexpr std::int16_t lowest_refused_count = 1;
// The rate text of a test that only hands over the wait codes.
constexpr std::string_view no_new_baud = " 0";

constexpr int word_16 = 16;

// ---- what the operator is told ----------------------------------------------

void tell(frmMain& frm, const MessageText& text) {
    append_message(frm.screen, text);
    scroll_log_to_end(frm.screen);
}

int tell_stopped(frmMain& frm) {
    frm.platform.sounder.beep();
    tell(frm, link_text::stopped);
    return failed;
}

int tell_failed(frmMain& frm) {
    beep_times(frm, 3);
    append_message(frm.screen, link_text::handshake_failed_at);
    append_to_last_line(frm.screen, frm.platform.wall_clock.time_of_day() + ")");
    scroll_log_to_end(frm.screen);
    return failed;
}

void clear_buffers(frmMain& frm) {
    frm.platform.port.clear_input();
    frm.platform.port.clear_output();
}

// ---- the port ---------------------------------------------------------------

void start_afresh(frmMain& frm) {
    frm.link.Base_Baud = base_baud;
    frm.link.answer_owed = false;
    frm.session.Firmware_Size = 0;
    frm.session.Firmware_Size_Known = false;
    reset_receive(frm);
    if (close_port(frm)) close_port(frm);
}

bool open_at_base_baud(frmMain& frm) {
    SerialPort& port = frm.platform.port;
    port.set_port_number(frm.screen.combCommPort.ListIndex + 1);
    frm.link.frame_ok = false;
    const bool accepted = set_port_baud(frm, frm.link.Base_Baud);
    const bool opened = port.open() == 0;
    clear_buffers(frm);
    if (accepted && opened) return true;
    beep_times(frm, 3);
    tell(frm, link_text::open_failed);
    tell(frm, link_text::port_taken_or_missing);
    return false;
}

void begin_connecting(frmMain& frm) {
    show_port_picture(frm, true);
    frm.link.hunt_header = false;
    restart_timer(frm, frm.timers.Timer9, advice_ms);
    SerialPort& port = frm.platform.port;
    for (int tries = 0; tries < 2 && !port.is_open(); ++tries) port.open();
}

// ---- waiting for the chip -----------------------------------------------------

bool answered_or_stopped(const LinkState& link) {
    return link.frame_ok || link.stop_requested;
}

// How long the line needs, in ms, until no more than one pulse is unsent.
std::int32_t until_one_pulse_is_left(const SerialPort& port) {
    const std::size_t unsent = port.output_count();
    if (unsent <= sync_pulse.size()) return 0;
    return ms_on_wire(port, unsent - sync_pulse.size());
}

// Until the operator gives the chip its power. Pulses must not pile up in the
// output: the chip would hear old ones long after its answer. An operator may
// take an hour to switch on, so the tool sleeps as long as the line is busy.
void pulse_until_answer(frmMain& frm) {
    LinkState& link = frm.link;
    link.receive_enabled = true;
    while (!answered_or_stopped(link)) {
        write_signal(frm, sync_pulse);
        do wait_for_frame(frm, std::max(pulse_ms, until_one_pulse_is_left(frm.platform.port)));
        while (!answered_or_stopped(link) && frm.platform.port.output_count() > sync_pulse.size());
    }
}

// A running program hands over to the boot firmware when it sees the trigger.
void trigger_until_answer(frmMain& frm) {
    LinkState& link = frm.link;
    link.receive_enabled = true;
    frm.platform.port.close();
    set_port_baud(frm, trigger_baud);
    frm.platform.port.open();
    clear_buffers(frm);
    reset_receive(frm);
    while (!answered_or_stopped(link)) {
        send_trigger(frm, connect_trigger);
        wait_for_frame(frm, trigger_ms);
    }
}

void end_connecting(frmMain& frm) {
    clear_buffers(frm);
    set_port_baud(frm, over_trigger(frm) ? trigger_baud : std::string_view(frm.link.Base_Baud));
    stop_timer(frm.timers.Timer9);
    frm.link.TL_Link = false;
}

// ---- what the status frame tells ------------------------------------------------

void measure_clock(frmMain& frm, const StatusFrame& status) {
    LinkState& link = frm.link;
    link.TL_Link = over_trigger(frm);
    link.crystal_frequency =
        link.TL_Link ? crystal_from_trigger(status.clock_counts)
                     : crystal_from_pulses(status.clock_counts, leading_integer(link.Base_Baud));
    link.Chip_Clock = link.crystal_frequency;
    link.Chip_Known = false;
    link.Chip_Double_Speed = false;
}

// False when the catalogue knows the code but not the model.
bool find_chip_model(frmMain& frm, const StatusFrame& status) {
    LinkState& link = frm.link;
    link.Chip_ID_High = status.ID_High;
    link.Chip_Known = true;
    if (!status.ID_Low.empty()) link.Chip_ID_Low = status.ID_Low;
    if (!status.ID_code.empty()) link.Chip_Name = Find_Code(status.ID_code).name;
    if (link.Chip_Name.empty()) return true;
    link.Chip_Name = Find_Model(frm, link.Chip_Name, frm.catalogue.Chip_Info);
    return !link.Chip_Name.empty();
}

void compose_options(frmMain& frm) {
    Compose_Options(frm);
    frm.options.Chip_Bytes[word_16] = frm.options.Option_Bytes[0][word_16];
}

void keep_chip_bytes(frmMain& frm, std::span<const int> words,
                     const std::vector<std::uint8_t>& bytes) {
    for (std::size_t i = 0; i < words.size() && i < bytes.size(); ++i)
        frm.options.Chip_Bytes[static_cast<std::size_t>(words[i])] = bytes[i];
}

void show_options(frmMain& frm, std::uint8_t version, std::uint8_t letter, std::uint8_t option,
                  std::int16_t flag) {
    Show_Chip_Info(frm, version, letter, option);
    Show_Panel_Lines(frm, version, letter, option, flag);
}

void take_firmware_and_options(frmMain& frm, const StatusFrame& status) {
    frm.link.Chip_Letter = letter_text(status.letter);
    Set_Chip_Version(frm, status.version);
    compose_options(frm);
    keep_chip_bytes(frm, option_words(status.letter), status.options);
    Read_All_Options(frm);
    show_options(frm, status.version, status.letter, status.option, 0);
}

bool model_fits(frmMain& frm) {
    return !frm.link.Check_Model || frm.link.Check_Model(frm);
}

void take_features(frmMain& frm, const StatusFrame& status) {
    LinkState& link = frm.link;
    link.Chip_Extended = status.has_features;
    if (!status.has_features) return;
    link.Chip_Needs_Header = status.needs_header;
    link.hunt_header = status.needs_header;
    const bool size_stays_open = has_2k_isp(trimmed(frm.screen.txtDevice.Text));
    link.Chip_Flash_Info = size_stays_open ? std::int16_t{0} : status.flash_info;
    frm.session.Firmware_Size = link.Chip_Flash_Info;
    frm.session.Firmware_Size_Known = true;
}

// ---- only the options are wanted ------------------------------------------------

int read_lock_by_command(frmMain& frm) {
    LinkState& link = frm.link;
    clear_buffers(frm);
    tell(frm, link_text::reading_lock);
    for (int tries = 0; tries < lock_tries; ++tries) {
        Read_Chip_Status(frm, 0);
        if (answered_or_stopped(link)) break;
    }
    if (link.stop_requested) return tell_stopped(frm);
    return link.Status_Read_OK ? succeeded : tell_failed(frm);
}

// ---- the fastest baud -------------------------------------------------------------

// The chip is given its wait codes; the link stays as fast as the trigger made it.
int settle_trigger_link(frmMain& frm, std::int32_t& newbaud) {
    reset_receive(frm);
    bool accepted = false;
    for (int tries = 0; tries < test_tries && !accepted; ++tries)
        accepted = test_new_baud(frm, no_new_baud, 0, 0);
    if (frm.link.stop_requested) return tell_stopped(frm);
    if (!accepted) return tell_failed(frm);
    newbaud = trigger_baud_rate;
    Keep_Baud_Pair(frm);
    return succeeded;
}

// What the search found: the chip answers at choice.baud.
struct FoundBaud {
    BaudChoice choice;
    ReloadPair pair;
};

bool test_baud(frmMain& frm, const FoundBaud& found) {
    const std::string baud = std::to_string(found.choice.baud);
    reset_receive(frm);
    for (int tries = 0; tries < test_tries; ++tries) {
        wait_ms(frm, before_test_ms);
        if (test_new_baud(frm, baud, found.pair.high, found.pair.low)) return true;
    }
    return false;
}

// From the highest rate that the clock and the operator's limit allow downward.
// False: stopped, or no rate was accepted.
bool search_baud(frmMain& frm, FoundBaud& found) {
    BaudChoice& choice = found.choice;
    const auto clock = round_half_even(frm.link.crystal_frequency);
    const std::int16_t family = frm.catalogue.MCU_Info.MCU_Family;
    for (int attempt = 1; attempt <= baud_attempts && choice.MaxNo >= 1; ++attempt) {
        const std::int32_t limit = leading_integer(text_of(frm.screen.cobBaudMax));
        const std::int16_t count = calculate_baud(clock, family, limit, choice);
        process_events(frm);
        if (!frm.platform.port.is_open()) frm.platform.port.open();
        if (count <= lowest_refused_count) choice.MaxNo = 0;
        found.pair = reload_pair_of(count, family, choice);
        const bool accepted = test_baud(frm, found);
        if (frm.link.stop_requested) return false;
        if (accepted) return attempt <= last_good_attempt;
        --choice.MaxNo;
    }
    return false;
}

bool switch_baud(frmMain& frm, const FoundBaud& found) {
    frm.link.newBaud_H = found.pair.high;
    frm.link.newBaud_L = found.pair.low;
    const std::string baud = std::to_string(found.choice.baud);
    reset_receive(frm);
    for (int tries = 0; tries < set_tries; ++tries) {
        if (held_at_base_baud(frm)) return true;
        if (set_new_baud(frm, baud, found.pair.high, found.pair.low)) return true;
    }
    return false;
}

int bring_to_fastest_baud(frmMain& frm, std::int32_t& newbaud) {
    FoundBaud found;
    const bool tested = search_baud(frm, found);
    if (frm.link.stop_requested) return tell_stopped(frm);
    if (!tested) return tell_failed(frm);
    // What the tests still owe would come at a rate that nobody hears any more.
    if (!held_at_base_baud(frm)) frm.link.answer_owed = false;
    const bool switched = switch_baud(frm, found);
    if (frm.link.stop_requested) return tell_stopped(frm);
    reset_receive(frm);
    if (!switched) return tell_failed(frm);
    newbaud = found.choice.baud;
    Keep_Baud_Pair(frm);
    return succeeded;
}

int enter_programming(frmMain& frm, std::int32_t& newbaud) {
    if (!frm.link.TL_Link) tell(frm, link_text::trying_to_program);
    if (!send_extern_WDT_address(frm)) {
        if (frm.link.stop_requested) return tell_stopped(frm);
        beep_times(frm, 3);
        tell(frm, link_text::handshake_failed);
        return failed;
    }
    return frm.link.TL_Link ? settle_trigger_link(frm, newbaud)
                            : bring_to_fastest_baud(frm, newbaud);
}

// ---- the status read --------------------------------------------------------------

// An acknowledgement that came late, or twice, is no status: passing for one it
// would tell of options that the chip hasn't got.
bool is_status(const LinkState& link) {
    return link.rx_frame[1] * 256 + link.rx_frame[2] >= shortest_status_reply;
}

}  // namespace

int handshake(frmMain& frm, std::int32_t& newbaud, bool ReadChipLock_just) {
    LinkState& link = frm.link;
    start_afresh(frm);
    if (!open_at_base_baud(frm)) return failed;
    begin_connecting(frm);
    if (over_trigger(frm))
        trigger_until_answer(frm);
    else
        pulse_until_answer(frm);
    if (link.stop_requested) return tell_stopped(frm);
    end_connecting(frm);

    const StatusFrame status = decode_status_frame(link.rx_frame);
    measure_clock(frm, status);
    link.Chip_Name.clear();
    if (status.has_ID) {
        if (!find_chip_model(frm, status)) return failed;
        take_firmware_and_options(frm, status);
        if (ReadChipLock_just) {
            link.Status_Read_OK = true;
            return succeeded;
        }
        if (status.names_a_model && !model_fits(frm)) return failed;
    }
    take_features(frm, status);
    return ReadChipLock_just ? read_lock_by_command(frm) : enter_programming(frm, newbaud);
}

void Read_Chip_Status(frmMain& frm, std::int16_t flag) {
    LinkState& link = frm.link;
    link.Status_Read_OK = false;
    reset_receive(frm);
    for (int tries = 0; tries < status_tries && !link.frame_ok; ++tries) {
        if (tries > 0) {
            clear_buffers(frm);
            wait_ms(frm, status_retry_ms);
        }
        try_request(frm, build_status_read(), status_answer_ms, is_status);
    }
    compose_options(frm);
    if (!link.frame_ok) return;

    link.Status_Read_OK = true;
    const StatusReply reply = decode_status_reply(link.rx_frame);
    const std::span<const int> words = option_words_of_family(frm.catalogue.MCU_Info.MCU_Family);
    keep_chip_bytes(frm, words, reply.options);
    if (!words.empty()) Read_All_Options(frm);
    Compose_Options(frm);
    link.Chip_Letter = letter_text(reply.letter);
    Set_Chip_Version(frm, reply.version);
    show_options(frm, reply.version, reply.letter, reply.option, flag);
    let_owed_answers_pass(frm, status_answer_ms);
}

void Set_Chip_Version(frmMain& frm, std::uint8_t version_byte) {
    frm.link.Chip_Version = version_text(version_byte);
    frm.link.Chip_Double_Speed = false;
}

void Keep_Baud_Pair(frmMain& frm) {
    LinkState& link = frm.link;
    const ReloadPair pair{static_cast<std::uint8_t>(link.newBaud_H),
                          static_cast<std::uint8_t>(link.newBaud_L)};
    const ReloadPairs pairs = pairs_of_both_modes(pair, link.Chip_Double_Speed);
    link.newBaud_H = pairs.present.high;
    link.newBaud_L = pairs.present.low;
    link.other_Baud_H = pairs.other.high;
    link.other_Baud_L = pairs.other.low;
}

}  // namespace vkm
