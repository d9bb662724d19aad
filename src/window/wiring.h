// Which event runs which operation, and which timer ticks into which handler:
// the one place where the screen, the timers and the plugs of the lower
// subsystems meet the operations.
#pragma once

#include "frmMain.h"
#include "screen/screen_event.h"

namespace vkm {

// Fills the ticks of the timers and the plugs of the state records. Once, before
// main_window's Load.
void wire(frmMain& frm);

// Runs the operation that belongs to the event; an event that nothing is wired
// to does nothing. May take as long as a whole download.
void handle_event(frmMain& frm, const ScreenEvent& event);

}  // namespace vkm
