// Reading a chip's options without programming it.
#pragma once

#include "frmMain.h"

namespace vkm {

// Connects, shows model, firmware and options in the log and on the page, and ends
// the session. Needs no file and touches no image. Does nothing while a session runs.
void comReadChipLock(frmMain& frm);

}  // namespace vkm
