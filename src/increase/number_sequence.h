// The numbering together with the hex view: what a click on its box does, and what
// happens behind a good chip.
#pragma once

#include "frmMain.h"

namespace vkm {

// The operator enabled or disabled the numbering of an image. Enabled: the number
// is checked, saved, patched into the image and shown there.
void cheAuto_Increase(frmMain& frm);
void cheData_Auto_Increase(frmMain& frm);

// Scrolls the hex view to the number.
void Show_Auto_Increase(frmMain& frm, Auto_Increase_Set& set);

// Behind a good chip, for each active set: the next number is patched, shown and
// saved.
void Advance_Numbers(frmMain& frm);

// The same for the program's number alone, which counts up from 0 as well: behind a chip
// that was programmed over a user's own ISP program.
void Advance_Program_Number(frmMain& frm);

}  // namespace vkm
