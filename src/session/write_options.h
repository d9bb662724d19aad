// Writing the option bytes: the step of a job between the image and its end.
#pragma once

#include <cstdint>

#include "frmMain.h"

namespace vkm {

// Writes the panel's choices to the chip, unless it has them already, and compares
// what it then holds. The result is in frame_ok: true lets the job go on, false
// when the operator has been told why not. Families 1 and 5 and unknown ones have
// no such step and leave frame_ok as it is.
//
// A chip that had its options already has left the firmware when this returns.
void Write_Options(frmMain& frm);

// The option byte of the selected model; 255 outside family 0.
std::uint8_t Family0_Option_Byte(const frmMain& frm);

// Three beeps, the report, and frame_ok false.
void Option_Write_Failed(frmMain& frm);

}  // namespace vkm
