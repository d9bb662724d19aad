// The serial debug assistant: a terminal on the one serial port, in turn with the
// sessions.
//
// Owns the opening of the port for itself, what is received (ring, count, display on
// the 35 ms tick) and what is sent (one text, one of 25, single keys, both on a
// cycle). While it owns the port debug_mode is set. Always holds: a session closes it
// first, and it never opens or writes while a session runs; closing it ends the
// sending cycles; what arrives is counted even where the display can't follow. A port
// that won't open, or goes away under a running cycle, is told in one box.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "frmMain.h"

namespace vkm {

// ---- the port: assistant_port.cpp ----------------------------------------------

// Opens the port with the terminal's own number and settings. Nothing when it is open,
// or while a session runs.
void Open_Assistant_Port(frmMain& frm);

// Gives the port away. What has not left the wire shortly is dropped.
void Close_Assistant_Port(frmMain& frm);

// The device has gone while the terminal owned the port.
void Assistant_Port_Lost(frmMain& frm);

// Opens or closes, as the caption of comOpenCOM tells.
void comOpenCOM(frmMain& frm);
void com_Debug_Baud(frmMain& frm);

// ---- receiving: receive_display.cpp ------------------------------------------------

// A batch of received bytes: counted, kept for the display, and searched for a dump
// of the target monitor.
void Take_Received(frmMain& frm, const std::vector<std::uint8_t>& bytes);

// The tick of TimerDebugDisplay: what waits in the ring goes to texReceive.
void Show_Received(frmMain& frm);

// Element 0 empties the received text, the others the lists of the target monitor.
void comDebugClear(frmMain& frm, int Index);
void comClearCount(frmMain& frm);

// Element 0 shows the help in texReceive, the others tell where it is.
void comDebugHelp(frmMain& frm, int Index);

// ---- sending: sending.cpp ------------------------------------------------------------

// Sends the text in the code page of the targets or, with `hex`, the bytes that its
// digits are. Opens the port first if it is closed; without one nothing is sent. A
// character that is no digit is told in a box, and ends both cycles.
void Send_Text(frmMain& frm, std::string text, bool hex);

void comDebugSend(frmMain& frm);
void comSpreadSendCom(frmMain& frm, int Index);
void comClearSend(frmMain& frm);

void Show_Send_Count(frmMain& frm);

// A key typed into texReceive: sent at once if it is a single ASCII character other
// than a line end.
void texReceive_KeyPress(frmMain& frm, std::string_view character);

// Lets a stopped target go on; opens the port if it is closed.
void comDebugContinue(frmMain& frm);

// ---- cycles: auto_send.cpp -------------------------------------------------------------

// Start the cycle, or stop it, as their captions tell.
void comAutoSend(frmMain& frm);
void comSpreadAutoSend(frmMain& frm);

// Stops both. False when none ran.
bool Stop_Auto_Send(frmMain& frm);

void TimerDebugAutoSend_Tick(frmMain& frm);
void TimerSpreadAutoSend_Tick(frmMain& frm);

}  // namespace vkm
