// The conductor of a download: what happens between the click on Download and
// the end of the session.
//
// Owns the job's steps (erase.h, programming.h), the repeat loop, Stop, the
// enabled state of the controls, the counter and the verdict. Called by the
// window's wiring. Always holds: every session ends in comStop_Download, which
// closes the port and gives the controls back and may run twice; a second
// session never starts inside a first one. Failures are told in the log, with
// one beep for a stop, two for a warning, three for a failure.
#pragma once

#include <cstdint>
#include <string>

#include "frmMain.h"

namespace vkm {

// Programs one chip (Index 0), or chips without end (Index 1). Does nothing
// while a session runs.
void comDownload(frmMain& frm, int Index);

// Command2: one download over the second way of connecting (cheTL).
void Command2(frmMain& frm);

// Stop: every wait for an answer ends, the port is closed, the controls come back.
// The driver itself calls it as its last act; before that nobody but the
// operator or the closing window does, so that a job that finds stop_requested
// set was stopped.
void comStop_Download(frmMain& frm);

// The connect step; the result is in Connected.
void Connect_MCU(frmMain& frm, bool ReadChipLock_just);

// True when the chip fits the model that the operator chose; otherwise the
// operator has been told and the file must be opened again.
bool Check_Model(frmMain& frm);

// The chip is none of the model that was chosen: the job ends, and the file must be
// opened again for the right one.
void report_wrong_model(frmMain& frm);

// Appends the clock lines of the log.
void Show_Clock(frmMain& frm);

// The bar of a download, that of the buffer view, or none.
enum class Progress { down_load, fill_grid, hide };
void Show_Progress(frmMain& frm, Progress mode);

// Stores the state (UI_State_Value) and enables the controls and the option panel
// by it.
void Set_UI_State(frmMain& frm, std::int16_t state);

// A session begins: 0 becomes 1, 2 becomes 3.
void Set_UI_Busy(frmMain& frm);

// The operator freezes the options, and frees them again.
void comLockOptions(frmMain& frm);
void comUnlockOptions(frmMain& frm);

// A view that was drawn anew asks for the keyboard. In a job it stays at the button,
// for the next chip.
inline void keep_keyboard(frmMain& frm) {
    frm.screen.Focus_Request = {};
}

// comClear_OK_Count: the counter back to 0, saved at once.
void comClear_OK_Count(frmMain& frm);

// Wall-clock seconds from `begin` to now, as "mm:ss".
std::string elapsed_time(const frmMain& frm, std::int64_t begin);

}  // namespace vkm
