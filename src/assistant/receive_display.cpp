// What is received: counted at once, shown by the tick. The tick of a line that is
// faster than the display comes again as soon as the window has been drawn.
#include <string>

#include "assistant/assistant_help.h"
#include "assistant/assistant_texts.h"
#include "assistant/serial_assistant.h"
#include "monitor/monitor_lists.h"
#include "monitor/target_monitor.h"
#include "session/session_lease.h"
#include "text/hexadecimal.h"
#include "text/trimming.h"
#include "waiting/waiting.h"

namespace vkm {
namespace {

constexpr std::int32_t display_tick_ms = 35;
constexpr std::size_t longest_text = 65000;  // characters
constexpr std::size_t text_kept = 30720;
constexpr std::size_t digits_of_byte = 2;

// So many bytes as hexadecimal digits are drawn in some milliseconds.
constexpr int most_bytes_of_a_tick = 0x2000;
constexpr std::int32_t catch_up_ms = 1;       // until the next tick when more are waiting
constexpr std::uint16_t hurry_from = 0x4000;  // bytes in the ring that don't wait for the tick

void trim_text(Control& text) {
    if (character_count(text.Text) <= longest_text) return;
    text.Text = std::string(last_characters(text.Text, text_kept));
    caret_to_end(text);
}

void append(Control& text, std::string_view more) {
    text.Text += more;
    caret_to_end(text);
}

std::string drain_as_hex(frmMain& frm) {
    Receive_Ring& ring = frm.assistant.ring;
    std::string text;
    for (int i = 0; i < most_bytes_of_a_tick && !ring.empty(); ++i) {
        text += hex_text(ring.take(), digits_of_byte) + ' ';
        give_turn(frm);
    }
    return text;
}

std::string drain_as_text(frmMain& frm) {
    const std::vector<std::uint8_t> bytes = frm.assistant.ring.take_all();
    return frm.platform.code_page.to_screen(std::string(bytes.begin(), bytes.end()));
}

void show_receive_count(frmMain& frm) {
    frm.screen.labReceiveCount.Caption =
        std::string(assistant_text::receive_count) + std::to_string(frm.assistant.Receive_Count);
}

}  // namespace

void Take_Received(frmMain& frm, const std::vector<std::uint8_t>& bytes) {
    frm.assistant.Receive_Count += static_cast<std::uint32_t>(bytes.size());
    frm.assistant.ring.store(bytes);
    Examine_Received(frm, bytes);
    Timer& display = frm.timers.TimerDebugDisplay;
    if (!display.Enabled) restart_timer(frm, display, display_tick_ms);
    if (frm.assistant.ring.waiting() > hurry_from) display.Due = frm.platform.loop.now();
}

void Show_Received(frmMain& frm) {
    Screen& screen = frm.screen;
    // Events have just run, so give_turn lets none in as long as this is quick: a click in
    // here, with a box or a job behind it, would keep the display standing.
    frm.window.Last_Turn = frm.platform.loop.now();
    trim_text(screen.texReceive);
    if (screen.optReceiveHex[1].Value != 0) {
        const std::string text = drain_as_hex(frm);
        append(screen.texReceive, text);
    } else if (!frm.assistant.ring.empty()) {
        append(screen.texReceive, drain_as_text(frm));
    } else {
        return stop_timer(frm.timers.TimerDebugDisplay);
    }
    show_receive_count(frm);
    if (frm.assistant.ring.empty())
        stop_timer(frm.timers.TimerDebugDisplay);
    else
        restart_timer(frm, frm.timers.TimerDebugDisplay, catch_up_ms);
}

void comDebugClear(frmMain& frm, int Index) {
    if (Index != 0) return Clear_Monitor_Lists(frm);
    frm.screen.texReceive.Text.clear();
    caret_to_end(frm.screen.texReceive);
}

void comClearCount(frmMain& frm) {
    frm.assistant.Receive_Count = 0;
    frm.assistant.Send_Count = 0;
    show_receive_count(frm);
    Show_Send_Count(frm);
}

void comDebugHelp(frmMain& frm, int Index) {
    if (Index != 0) {
        const Session_Lease lease(frm);
        return frm.platform.dialogs.show_text(assistant_text::help_is_elsewhere);
    }
    Control& text = frm.screen.texReceive;
    text.Text = assistant_help;
    text.SelStart = 0;
    text.SelLength = 0;
}

}  // namespace vkm
