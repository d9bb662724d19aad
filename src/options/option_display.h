// What a chip holds, shown to the operator: lines of the log, and the labels
// LabLock of the page that reads the options.
//
// The firmware letter decides what is shown, not the selected model.
#pragma once

#include <cstdint>

#include "frmMain.h"

namespace vkm {

// The version, letter and flag come with every answer; what is shown goes by
// Chip_Version and Chip_Letter, which the handshake has made of them.

// The chip's model and firmware in the log, then its options by the letter. Sets
// Chip_Double_Speed for the letters that tell it here.
void Show_Chip_Info(frmMain& frm, std::uint8_t version, std::uint8_t letter, std::uint8_t option);

// The lines of the letters A and B in LabLock.
void Show_Panel_Lines(frmMain& frm, std::uint8_t version, std::uint8_t letter, std::uint8_t option,
                      std::int16_t flag);

// States of a group's rows by Chip_Bytes: "1" where the chip agrees; the panel's
// states of the selected family are gone then. Also writes the text of the
// prescaler's row.
void Decode_Chip_Options(frmMain& frm, int group);

// Empties LabLock.
void Clear_Read_Lines(frmMain& frm);

}  // namespace vkm
