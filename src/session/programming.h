// Writing the image into the chip, block by block. Nothing is read back: the
// chip acknowledges each frame with the sum of its data, and that is the
// verification. Between two frames nothing else is done; the screen follows once
// a block.
#pragma once

#include <cstdint>
#include <span>

#include "frmMain.h"
#include "session/program_ranges.h"

namespace vkm {

// Programs the images of the job. The result is in Program_OK; a failure has
// been told in the log.
void Program_Image(frmMain& frm);

// The same; true when it went well.
bool image_programmed(frmMain& frm);

// Programs a range of the bytes. With `split` a block goes out in frames of
// Chunk_Size, otherwise in one; with `cut_allowed` the range of a family 2 chip
// is cut where its boot firmware begins. 0, or -1 after a stop or too many
// failures in a row.
int Program_Range(frmMain& frm, bool split, std::span<const std::uint8_t> bytes,
                  Address_Range range, bool cut_allowed);

// One block: 0 when the chip acknowledged all its frames, -1 at the first one
// that it didn't, or after a stop. A retry tells the chip so in its first frame.
int Program_Block(frmMain& frm, bool split, Address_Range block, bool retry,
                  std::span<const std::uint8_t> source);

// Firmware_Size by the firmware's version, for a chip that didn't tell it.
void Get_Firmware_Size(frmMain& frm);

}  // namespace vkm
