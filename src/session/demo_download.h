// Programming over a user's own ISP program in the chip, which speaks the 5A A5 frames at
// line settings that the operator chooses. A simpler driver beside comDownload: no sync
// pulses, no options; the program behind it is the user's.
//
// Always holds: demo_mode is on only inside; every way out gives the port and the
// controls back; either Stop ends every wait, the pause of a series included.
#pragma once

#include "frmMain.h"

namespace vkm {

// One chip, or chips until a Stop or a failure. Does nothing while a session runs.
void com_Demo_DownLoad(frmMain& frm);
void com_Demo_Re_DownLoad(frmMain& frm);

// Stop, as comStop_Download.
void com_Demo_Stop(frmMain& frm);

}  // namespace vkm
