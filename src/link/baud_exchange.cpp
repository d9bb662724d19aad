#include "link/baud_exchange.h"

#include "link/exchange_frames.h"
#include "link/isp_link.h"
#include "link/reply_gathering.h"
#include "text/numbers.h"
#include "waiting/waiting.h"

namespace vkm {
namespace {

constexpr int WDT_tries = 3;
constexpr std::int32_t WDT_answer_ms = 500;
// A faster baud would ask for less time, but less than this is never given.
constexpr std::int32_t test_answer_ms = 950;
constexpr std::int32_t set_answer_ms = 800;
// Pause before a frame, for a chip that has just answered the one before.
constexpr std::int32_t pause_ms = 5;
constexpr std::int32_t set_pause_ms = 1;

bool ensure_open(SerialPort& port) {
    return port.is_open() || port.open() == 0;
}

bool reopen_at(frmMain& frm, std::string_view baud) {
    frm.platform.port.close();
    const bool accepted = set_port_baud(frm, baud);
    return frm.platform.port.open() == 0 && accepted;
}

bool WDT_chosen(const frmMain& frm) {
    return frm.screen.opt_ISP_DEMO_WDT[1].Value != 0;
}

Frame test_frame(const frmMain& frm, std::string_view new_baud, ReloadPair pair) {
    const LinkState& link = frm.link;
    const double frequency = double{link.crystal_frequency} / (link.Chip_Double_Speed ? 2.0 : 1.0);
    const std::uint8_t delay = over_trigger(frm)
                                   ? test_delay_code_at_115200(frequency)
                                   : test_delay_code(leading_integer(new_baud), frequency);
    return build_test_frame(pair, delay,
                            flash_wait_code(frm.catalogue.MCU_Info.MCU_Family, frequency));
}

}  // namespace

bool send_extern_WDT_address(frmMain& frm) {
    if (!WDT_chosen(frm)) return true;
    ensure_open(frm.platform.port);
    for (int tries = 0; tries < WDT_tries; ++tries) {
        forget_reply(frm.link);
        wait_ms(frm, pause_ms);
        // The operator may have changed the choice meanwhile.
        const std::uint8_t pin =
            WDT_chosen(frm) ? WDT_pin(text_of(frm.screen.comb_WDT)) : no_WDT_pin;
        write_and_settle(frm, build_WDT_frame(pin));
        if (wait_for_frame(frm, WDT_answer_ms)) return true;
    }
    frm.platform.port.close();
    return false;
}

bool test_new_baud(frmMain& frm, std::string_view new_baud, std::uint8_t newBaud_H,
                   std::uint8_t newBaud_L) {
    SerialPort& port = frm.platform.port;
    reset_receive(frm);
    bool port_good = ensure_open(port);
    forget_reply(frm.link);
    wait_ms(frm, pause_ms);
    frm.link.receive_enabled = true;
    frm.link.frame_ok = false;
    write_and_settle(frm, test_frame(frm, new_baud, {newBaud_H, newBaud_L}));

    const std::string settings_before = port.settings();
    const bool rate_changes = !held_at_base_baud(frm);
    if (rate_changes && !over_trigger(frm)) port_good = reopen_at(frm, new_baud) && port_good;
    if (port_good) wait_for_frame(frm, test_answer_ms);
    if (rate_changes) {
        port.close();
        port.set_settings(settings_before);
        port.open();
    }
    return frm.link.frame_ok;
}

bool set_new_baud(frmMain& frm, std::string_view new_baud, std::uint8_t newBaud_H,
                  std::uint8_t newBaud_L) {
    forget_reply(frm.link);
    wait_ms(frm, set_pause_ms);
    const std::uint8_t delay =
        set_delay_code(leading_integer(new_baud), frm.link.crystal_frequency);
    write_and_settle(frm, build_set_frame({newBaud_H, newBaud_L}, delay));
    if (!held_at_base_baud(frm)) reopen_at(frm, new_baud);
    restart_timer(frm, frm.timers.Timer8, set_answer_ms);
    return wait_for_armed_timer(frm, frm.timers.Timer8);
}

}  // namespace vkm
