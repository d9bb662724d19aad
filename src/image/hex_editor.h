// What the operator does in the hex view: paging by keys, and overwriting digits of
// the program image. Elements are 0 program image, 1 data image.
#pragma once

#include <string_view>

#include "frmMain.h"

namespace vkm {

// Page Up, Page Down, and Up and Down at the ends of the page scroll the view.
void Buffer_Key_Down(frmMain& frm, int element, int key);

// A hexadecimal digit overwrites the selected one, in the text and in AP_Buffer (in
// the data view too: its text differs from the data image then), and the next one is
// selected; without a selected one it selects the next one alone. The operator is
// asked first, unless that was less than 20 seconds ago. Other keys do nothing. The
// caller sees to it that no job sends the image meanwhile.
void Buffer_Key_Press(frmMain& frm, int element, std::string_view text);

// Selects the digit at the insertion point, or the next one behind it.
void Snap_Cursor(Control& box);

// The permission to edit ends.
void Timer11_Tick(frmMain& frm);

}  // namespace vkm
