// Progress of the programming, as values of ProgressBar1 and labKbyte.
#pragma once

#include "frmMain.h"
#include "session/program_ranges.h"

namespace vkm {

void set_up_bar(frmMain& frm, const Progress_Scale& scale);

// Everything from `first` to `last` has been programmed.
void show_programmed(frmMain& frm, const Progress_Scale& scale, Address_Range programmed);

}  // namespace vkm
