// A file on its way into an image. It is placed in a copy of the image's bytes:
// the image itself changes once, when the whole file has been read and ruled, so
// that whatever runs meanwhile (a redraw, a reset) sees a whole image.
#pragma once

#include <cstdint>
#include <vector>

#include "image/hex_line.h"
#include "platform/files.h"

namespace vkm {

struct Placement {
    std::vector<std::uint8_t> Bytes;  // the image so far
    std::int32_t Start = 0;           // where the file begins, not negative
    std::int32_t High = 0;            // highest address of the file, in the image or not
    std::uint32_t Sum = 0;            // of all its data bytes, stored or not
};

// Places a record's data behind Start. Bytes above `highest` or outside the
// image are dropped; they count in High and Sum all the same.
void place_record(Placement& file, const HexLine& line, std::int32_t highest);

// A binary file begins: nothing of it has been stored yet.
void begin_binary(Placement& file);

// Reads the next piece of a binary file. False when it is done: at the end of
// the file, or when the image is full. Never reads more than one byte further
// than the image reaches; when that byte exists, High ends one below the last
// index of the image.
bool place_piece(Placement& file, FileReader& reader);

}  // namespace vkm
