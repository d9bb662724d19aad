#include "session/user_code.h"

#include <string>

#include "image/image_files.h"
#include "link/isp_link.h"
#include "plug.h"
#include "session/download_session.h"
#include "session/session_lease.h"
#include "session/session_texts.h"
#include "text/hexadecimal.h"
#include "text/trimming.h"
#include "waiting/waiting.h"

namespace vkm {
namespace {

constexpr std::int32_t jump_ms = 20;  // in which the target reaches its boot firmware

// One character of the text each, so that pairs are counted right whatever was typed.
std::string single_bytes(std::string_view utf8) {
    std::string text;
    for (const char c : utf8) {
        const bool continuation = (static_cast<unsigned char>(c) & 0xC0) == 0x80;
        if (!continuation) text += static_cast<unsigned char>(c) < 0x80 ? c : '?';
    }
    return text;
}

// False when there was nothing to download, or no port to send on.
bool send_code_for_download(frmMain& frm) {
    const Session_Lease lease(frm);
    if (!lease.granted()) return false;
    run_plug(frm, frm.session.Close_Assistant_Port);
    if (!frm.images.File_Loaded) {
        frm.platform.dialogs.show_text(chosen_text(frm.screen, session_text::no_file_for_code));
        return false;
    }
    const Screen& screen = frm.screen;
    return send_user_code(frm, screen.txtUserCode,
                          {screen.cobUserCodeBaud, screen.cobUserCodeParity,
                           screen.cobUserCodeDataBits, screen.cobUserCodeStopBits});
}

// The ticks that want something done when the file has changed.
bool send_code_wanted(const frmMain& frm) {
    return frm.screen.cekReloadFileWhileFileChange1.Value != 0;
}

bool download_wanted(const frmMain& frm) {
    return frm.screen.cekReloadFileWhileFileChange.Value != 0;
}

// Looks at the file and remembers what it saw. True once the file is another than the
// one that was read, and rests.
bool notice_change(frmMain& frm) {
    SessionState& session = frm.session;
    const std::string& file = frm.images.Program_File;
    const std::optional<FileStamp> now = frm.platform.files.stamp(file);
    if (file != session.Watched_File) {
        session.Watched_File = file;
        session.Watched_Time = now ? now->time : std::string();
        session.Unsettled.reset();
        return false;
    }
    if (!now || now->size == 0 || now->time == session.Watched_Time) {
        session.Unsettled.reset();
        return false;
    }
    // A compiler may still be writing, or hold the file.
    if (now != session.Unsettled || !frm.platform.files.open(file)) {
        session.Unsettled = now;
        return false;
    }
    session.Watched_Time = now->time;
    session.Unsettled.reset();
    return true;
}

// True when the changed file is in the image now.
bool reload_changed_file(frmMain& frm) {
    const Session_Lease lease(frm);
    if (!lease.granted() || !notice_change(frm) || !Check_Last_File(frm)) return false;
    const std::string path = frm.images.Program_File;
    const bool loaded = Load_File(frm, path, frm.images.AP_Buffer);
    keep_keyboard(frm);
    return loaded && !frm.link.close_pending;
}

}  // namespace

std::vector<std::uint8_t> user_code_bytes(std::string_view text) {
    const std::string characters = single_bytes(trimmed(text));
    std::vector<std::uint8_t> bytes;
    for (std::size_t at = 0; at < characters.size();) {
        if (characters[at] < '0') {
            ++at;
            continue;
        }
        const std::string_view pair = std::string_view(characters).substr(at, 2);
        int value = 0;
        for (const char c : pair) {
            if (hex_digit(c) < 0) break;
            value = value * 16 + hex_digit(c);
        }
        bytes.push_back(static_cast<std::uint8_t>(value));
        at += pair.size();
    }
    return bytes;
}

bool send_user_code(frmMain& frm, const Control& text, const Serial_Panel& panel) {
    if (!open_by_panel(frm, panel)) return false;
    const std::vector<std::uint8_t> code = user_code_bytes(text.Text);
    wait_until_sent(frm, 0);
    write_signal(frm, code);
    wait_until_sent(frm, code.size());
    wait_ms(frm, jump_ms);
    return true;
}

void comSendUserCode(frmMain& frm) {
    if (send_code_for_download(frm) && !frm.link.close_pending) comDownload(frm, 0);
}

void Timer12_Tick(frmMain& frm) {
    if (!frm.images.File_Loaded || !(send_code_wanted(frm) || download_wanted(frm))) return;
    if (frm.images.Program_File.empty() || !reload_changed_file(frm)) return;
    if (send_code_wanted(frm)) {
        frm.session.Result = Job_Result::none;
        comSendUserCode(frm);
        // Stop means both.
        if (frm.session.Result == Job_Result::stopped) return;
    }
    if (download_wanted(frm)) comDownload(frm, 0);
}

}  // namespace vkm
