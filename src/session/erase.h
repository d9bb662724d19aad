// Erasing the chip before it is programmed.
#pragma once

#include "frmMain.h"

namespace vkm {

// The result is in frame_ok: the chip acknowledged one of three attempts. Takes
// as long as the firmware needs, at most 15 s. The time taken is in Erase_Time.
void Erase_Application(frmMain& frm);

}  // namespace vkm
