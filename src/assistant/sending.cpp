// What is sent.
#include <span>
#include <string>

#include "assistant/assistant_texts.h"
#include "assistant/hex_bytes.h"
#include "assistant/serial_assistant.h"
#include "monitor/target_monitor.h"
#include "session/session_lease.h"
#include "text/trimming.h"

namespace vkm {
namespace {

// A command to the agent counts as three, the mark before it not being one of its bytes.
constexpr std::uint32_t count_of_command = 3;

// False while it is closed or a session has it, and when its device has gone.
bool port_is_ours(const frmMain& frm) {
    return frm.link.debug_mode && frm.platform.port.is_open();
}

// The same, opened for that if it is closed.
bool have_port(frmMain& frm) {
    if (!frm.link.debug_mode) Open_Assistant_Port(frm);
    return port_is_ours(frm);
}

void count_sent(frmMain& frm, std::size_t count) {
    frm.assistant.Send_Count += static_cast<std::uint32_t>(count);
    Show_Send_Count(frm);
}

void write_text(frmMain& frm, std::string_view text) {
    const std::string bytes = frm.platform.code_page.to_file(text);
    frm.platform.port.write(std::vector<std::uint8_t>(bytes.begin(), bytes.end()));
    count_sent(frm, character_count(text));
}

// A line end, which a text of several lines has, as the symbol for it.
std::string visible(const std::string& character) {
    constexpr unsigned char first_symbol = 0x80;  // U+2400, its last byte in UTF-8
    const auto code = static_cast<unsigned char>(character.front());
    if (code >= ' ') return character;
    return {'\xE2', '\x90', static_cast<char>(first_symbol + code)};
}

// The cycles end first: their ticks would raise the box again and again.
void refuse(frmMain& frm, const Hex_Bytes& read) {
    using namespace assistant_text;
    Stop_Auto_Send(frm);
    const Session_Lease lease(frm);
    frm.platform.dialogs.show_text(std::string(hex_bad_at) + std::to_string(read.bad_at) +
                                       std::string(hex_bad_character) +
                                       visible(read.bad_character) + std::string(hex_advice),
                                   hex_title);
}

void write_hex(frmMain& frm, std::string_view text) {
    const Hex_Bytes read = read_hex_bytes(text);
    if (read.bad_at != 0) return refuse(frm, read);
    if (read.bytes.empty()) return;
    frm.platform.port.write(read.bytes);
    count_sent(frm, read.bytes.size());
}

}  // namespace

void Show_Send_Count(frmMain& frm) {
    frm.screen.labSendCount.Caption =
        std::string(assistant_text::send_count) + std::to_string(frm.assistant.Send_Count);
}

void Send_Text(frmMain& frm, std::string text, bool hex) {
    if (!have_port(frm)) return;
    if (hex)
        write_hex(frm, text);
    else
        write_text(frm, text);
}

void comDebugSend(frmMain& frm) {
    Send_Text(frm, frm.screen.texSend.Text, frm.screen.optHexSend[1].Value != 0);
}

void comSpreadSendCom(frmMain& frm, int Index) {
    const auto element = static_cast<std::size_t>(Index);
    Send_Text(frm, frm.screen.texSpreadSend[element].Text,
              frm.screen.cheSpreadHex[element].Value != 0);
    frm.assistant.Spread_Index = static_cast<std::int16_t>(Index + 1);
}

void comClearSend(frmMain& frm) {
    frm.screen.texSend.Text.clear();
    caret_to_end(frm.screen.texSend);
}

void texReceive_KeyPress(frmMain& frm, std::string_view character) {
    if (!port_is_ours(frm) || character.size() != 1) return;
    const auto code = static_cast<unsigned char>(character.front());
    if (code >= 0x80 || code == '\r' || code == '\n') return;
    write_text(frm, character);
}

void comDebugContinue(frmMain& frm) {
    if (!have_port(frm)) return;
    Send_Debug_Command(frm, debug_continue);
    count_sent(frm, count_of_command);
}

}  // namespace vkm
