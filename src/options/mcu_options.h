// Option bytes, from the panel to the bytes that a chip takes and from a chip's
// bytes to choices.
//
// Owns the schema (option_schema.h) and the words Option_Bytes and Chip_Bytes;
// beside it the panel (option_panel.h) and the display of what a chip holds
// (option_display.h). Called by the handshake, the option write and the choice of
// a model. Always holds: the family of the selected model decides the rows;
// Option_State is reset before it is written; a family that no group belongs to
// does nothing. Nothing here can fail.
#pragma once

#include <string>
#include <string_view>

#include "frmMain.h"

namespace vkm {

// Fills the schema. Once, at start-up.
void Fill_Options(frmMain& frm);

// The rows of the selected model's family, or null.
std::vector<Option_Row>* family_rows(frmMain& frm);
const std::vector<Option_Row>* family_rows(const frmMain& frm);

// The control of a row, or null.
Control* control_of(Screen& screen, const Option_Row& row);

// Empties Option_State of the family's rows.
void Reset_Option_State(frmMain& frm);

// Reads the panel into Option_State: "True" or "False" for each choice with a
// bit, and the prescaler's text.
void Refresh_Option_State(frmMain& frm);

// Columns 0 to 2 of Option_Bytes as they are before any choice.
void Fill_Option_Defaults(frmMain& frm);

// The panel's choices to Option_Bytes column 0, and to Panel_State.
void Compose_Options(frmMain& frm);

// "1" when the bit of the chip (Read_) or of the panel's choices (Preview_)
// agrees with the key's row, "0" when not, and nothing for a key that the family
// lacks or that has no bit.
std::string Read_Option(const frmMain& frm, std::string_view key);
std::string Preview_Option(const frmMain& frm, std::string_view key);

// The states of all keys, from Chip_Bytes and from Option_Bytes. Reading leaves
// the defaults in Option_Bytes.
void Read_All_Options(frmMain& frm);
void Preview_All_Options(frmMain& frm);

}  // namespace vkm
