// Which event runs which operation, and which timer ticks into which handler:
// the one place where the screen, the timers and the plugs of the lower
// subsystems meet the operations.
#pragma once

#include <span>
#include <string_view>

#include "frmMain.h"
#include "screen/screen_event.h"

namespace vkm {

// One wire: what the operator does to a control (or to any element of the array
// of that name; the window itself has no name), and what then runs.
struct Wire {
    std::string_view control;
    EventKind kind;
    void (*run)(frmMain&, const ScreenEvent&);
};

// All wires, for the event and for checks of the table.
std::span<const Wire> wires();

// Fills the ticks of the timers and the plugs of the state records. Once, before
// main_window's Load.
void wire(frmMain& frm);

// Runs the operation that belongs to the event; an event that nothing is wired
// to does nothing. May take as long as a whole download.
void handle_event(frmMain& frm, const ScreenEvent& event);

}  // namespace vkm
