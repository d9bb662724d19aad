// Line settings that the operator chooses for a target's own program: four lists, and
// the port opened by them.
#pragma once

#include <string>

#include "frmMain.h"

namespace vkm {

struct Serial_Panel {
    const Control& baud;
    const Control& parity;  // its first letter counts
    const Control& data_bits;
    const Control& stop_bits;
};

// "9600,n,8,1", as a port takes it.
std::string settings_of(const Serial_Panel& panel);

// The port of combCommPort, opened anew by these settings. False when that can't be;
// the operator has been told then.
bool open_by_panel(frmMain& frm, const Serial_Panel& panel);

}  // namespace vkm
