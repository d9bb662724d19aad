// An image and what belongs to it on the screen.
#pragma once

#include <cstdint>
#include <string_view>

#include "frmMain.h"

namespace vkm {

struct BufferView {
    Image_Buffer& buffer;
    Auto_Increase_Set& set;
    Control& page;             // the hexadecimal text, as the program fills it
    Control& shown;            // lies over it: the operator's, with a copy
    Control& bar;              // its scroll bar, one step a row
    Control& frame;            // holds both; the path stands in its caption
    std::string_view caption;  // what stands before the path
    Control& sum;
    Control& start;        // start address of the next file
    Control& clear_first;  // clear the image before it
};

// 0 program image, 1 data image.
BufferView view_of_element(frmMain& frm, int element);
BufferView view_of_buffer(frmMain& frm, const Image_Buffer& buffer);

// Shows the page that holds these addresses, as far as they lie in the image and
// the box has room, finds the number in it, and proposes the image's length for
// saving.
void Draw_Page(frmMain& frm, const BufferView& view, std::int64_t first, std::int64_t last);

// The page at the scroll bar's value, drawn anew. The keyboard stays where it is.
void Redraw_Page(frmMain& frm, const Image_Buffer& buffer);

// The page at the height that its box has now. The operator's digit stays selected
// and the length for saving as it was typed.
void Fit_Page(frmMain& frm, const Image_Buffer& buffer);

}  // namespace vkm
