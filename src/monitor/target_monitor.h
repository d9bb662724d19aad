// The target monitor: a program that carries a small debug agent sends dumps of its
// state while it stands at a break point, among whatever else it sends.
//
// Owns the hunt for these dumps (monitor_frame.h), what they tell (target_dump.h) and
// the four lists (monitor_lists.h). The terminal hands it every batch of received
// bytes; it runs only while the terminal owns the port. Always holds: a dump with a
// wrong sum changes nothing on the screen and is not acknowledged; a silent target is
// asked for a dump no more than three times; no value in a frame reaches past a list.
#pragma once

#include <cstdint>
#include <span>

#include "frmMain.h"

namespace vkm {

// Codes of the commands to the agent, as they go over the wire.
inline constexpr std::uint8_t debug_acknowledge = 80;
inline constexpr std::uint8_t debug_again = 82;
inline constexpr std::uint8_t debug_continue = 84;

// FE AA, the code, and the sum of AA and the code. On a closed port nothing happens.
void Send_Debug_Command(frmMain& frm, std::uint8_t code);

// A batch of received bytes.
void Examine_Received(frmMain& frm, std::span<const std::uint8_t> bytes);

// The terminal gives the port away: nothing is waited for any more.
void Stop_Monitor(frmMain& frm);

// A second without the rest of a dump.
void TimerDebug_Tick(frmMain& frm);

}  // namespace vkm
