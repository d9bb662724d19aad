// The chip's boot firmware is replaced by a debug monitor: an image put together from the
// user's monitor files and a loader of our own (monitor_loader.h), programmed as any other.
//
// The monitor takes the place of the boot firmware, so that the chip can't be programmed
// over it any more; the operator is asked twice.
#pragma once

#include "frmMain.h"

namespace vkm {

// Asks, builds the image in AP_Buffer and programs it. Does nothing while a session runs.
void comDownSoft_ICE(frmMain& frm);

}  // namespace vkm
