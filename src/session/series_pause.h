// The pause between two chips of a series.
#pragma once

#include "frmMain.h"

namespace vkm {

enum class Pause_Stop {
    after_it,  // the seconds run to their end; the next connect sees the Stop
    at_once,
};

// Closes the port and counts the seconds of comDalay_ReDownLoad down in the log, which
// is empty behind it.
void pause_between_chips(frmMain& frm, Pause_Stop stop);

}  // namespace vkm
