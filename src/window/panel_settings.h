// The fields of the serial terminal and of the two panels with a serial setting: read
// at the start of a run, stored at its end. An index is taken as it was stored; a list
// that doesn't have it shows nothing chosen.
#pragma once

#include "frmMain.h"

namespace vkm {

void Load_Assistant_Settings(frmMain& frm);
void Save_Assistant_Settings(frmMain& frm);

void Load_User_Code_Settings(frmMain& frm);
void Save_User_Code_Settings(frmMain& frm);

void Load_Demo_Settings(frmMain& frm);
void Save_Demo_Settings(frmMain& frm);

}  // namespace vkm
