// Lays the operator's job out in Board_Image: what stands on the screen, the program and
// what the board said of itself, as the storage of the board (board_image.h).
#pragma once

#include <cstdint>

#include "frmMain.h"

namespace vkm {

// Takes the number of chips from txt_download_max (Chip_Limit), clears the layout and writes
// the limit. False for a number that no board takes; the operator has been told then.
bool Board_Check_Limit(frmMain& frm);

// False when numbering is on with a number that can't be written into an image, or that
// the board has no room to count: nobody looks at the chips that it would go into. The
// operator has been told then.
bool Board_Check_Number(frmMain& frm);

// The numbering table, the limit and the areas of FF; keeps AP_Buffer in Saved_AP_Image.
// False when the last chip's number would be too great; the operator has been told then.
bool Board_Make_Table(frmMain& frm);

// The parameter block. Tells the operator when the board can't take the whole program.
void Board_Make_Block(frmMain& frm);

// A CRC for every 128 bytes of the program, with progress.
void Board_Make_CRC(frmMain& frm);

// The program.
void Board_Copy_Code(frmMain& frm);

// Bytes of program that this board takes for the selected model.
std::int32_t Board_Code_Limit(const frmMain& frm);

}  // namespace vkm
