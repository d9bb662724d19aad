// Where a file is placed in its image.
#pragma once

#include <cstdint>
#include <string_view>

#include "catalogue/mcu_record.h"

namespace vkm {

// The start address that the operator typed, in hexadecimal. Up to four digits
// read as a signed 16-bit number, so "FFF0" is -16; longer ones as they stand,
// held at FFFFFF, which is out of every range. Reading ends at the first
// character that is no hexadecimal digit; no digit is 0.
std::int32_t start_address(std::string_view text);

// What the readers make of it: a negative one has 0x10000 added. Never negative.
std::int32_t placement_start(std::int32_t Start_Add);

// A program file may start up to Data_End, a data file as far up as the data
// memory is long. A negative start passes.
bool start_in_range(std::int32_t Start_Add, const MCU_Record& mcu, bool program_image);

}  // namespace vkm
