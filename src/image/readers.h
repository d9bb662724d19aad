// The two readers: a file into an image, the range rules of the selected model,
// the sum and the box. A file that can't be opened or read is an empty one.
//
// Both return false when they were overtaken: a load or a reset of the same
// image came in one of their turns of the event loop or behind one of their
// boxes. The image then is as that left it.
#pragma once

#include <string>

#include "frmMain.h"

namespace vkm {

// Intel HEX. A bad line is told, and after the third the operator may give up,
// which empties the image.
bool Read_Hex_File(frmMain& frm, const std::string& path, Image_Buffer& buffer);

// Binary, byte for byte from the start address on.
bool Read_Bin_File(frmMain& frm, const std::string& path, Image_Buffer& buffer);

// Chooses the reader: HEX when ".HEX" stands anywhere in the path or when the
// first three lines begin with ":"; a file of one or two such lines is HEX too.
bool Load_Any_File(frmMain& frm, const std::string& path, Image_Buffer& buffer);

}  // namespace vkm
