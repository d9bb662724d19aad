// A target whose program listens on its serial port is told to jump to its boot
// firmware: a user code at the program's own settings, and then a download at once.
// Beside it the watch on the program file, which starts that by itself.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "frmMain.h"
#include "session/serial_panel.h"

namespace vkm {

// The bytes of a user code: characters below "0" part them, every two others are a
// byte, and a last one alone is one too. What is no hexadecimal digit ends its byte.
std::vector<std::uint8_t> user_code_bytes(std::string_view text);

// Sends the user code in that text at these settings, and gives the target time to jump.
// False when there is no port to send on; the operator has been told then. The port
// stays open.
bool send_user_code(frmMain& frm, const Control& text, const Serial_Panel& panel);

// Sends the user code and downloads. Does nothing while a session runs.
void comSendUserCode(frmMain& frm);

// Reads the program file again when it has changed on the disk and one of the ticks
// wants that, and starts what the ticks want. A change is taken once time and size
// rest from one tick to the next and there is something in the file, since a compiler
// may still be writing; a file that is gone is waited for. While a job runs the
// change waits.
void Timer12_Tick(frmMain& frm);

}  // namespace vkm
