// Advice for the operator of a chip that stays silent.
#pragma once

#include "frmMain.h"

namespace vkm {

// Timer9's tick, 4 s after a wait for a chip began: two beeps and a list of things
// to try. Once in a wait, which goes on.
void Timer9_Tick(frmMain& frm);

}  // namespace vkm
