// From a silent line to a chip that is identified and talks at its final baud.
#pragma once

#include <cstdint>

#include "frmMain.h"

namespace vkm {

// 0 with the baud that the link now uses in newbaud, or -1. With
// ReadChipLock_just only the chip's options are wanted: it ends at the base
// baud. Whatever the outcome, the caller closes the port.
int handshake(frmMain& frm, std::int32_t& newbaud, bool ReadChipLock_just);

// One exchange of the status read, up to three tries; `flag` goes on to the
// read-back display. The result is in Status_Read_OK and frame_ok.
void Read_Chip_Status(frmMain& frm, std::int16_t flag);

// Formats Chip_Version from its byte and clears Chip_Double_Speed.
void Set_Chip_Version(frmMain& frm, std::uint8_t version_byte);

// Works out the reload pair of the other clock mode.
void Keep_Baud_Pair(frmMain& frm);

}  // namespace vkm
