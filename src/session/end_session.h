// The end of a good session: the chip leaves its boot firmware and starts the
// new program.
#pragma once

#include "frmMain.h"

namespace vkm {

// Closes the port. Done twice it opens the port once more, which a chip that has
// left the firmware doesn't mind.
void End_Session(frmMain& frm);

}  // namespace vkm
