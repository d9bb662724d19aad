// What becomes of a file that has been placed: which areas of the chip it may
// fill, what is cut off or cleared, where its image ends, and what the operator
// is told. Three branches: the large 54xx models, the families with a gap
// between program and data memory, and all others.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "catalogue/mcu_record.h"
#include "image/checksum_text.h"
#include "image/placement.h"

namespace vkm {

struct RangeQuestion {
    const MCU_Record& mcu;
    std::string_view device;     // the model as the operator sees it
    std::int32_t ISP_Limit = 0;  // end of the program area as shown
    bool program_image = true;
    bool english = false;  // language of the message
};

struct RangeVerdict {
    std::int32_t File_High = 0;
    std::string message;               // the box, empty when the file fits
    bool sum_of_program_field = true;  // where the sum is shown: program or data
    SumTail sum_tail = SumTail::blanks;
};

// Both clear in file.Bytes what the rules clear.
RangeVerdict apply_hex_rules(const RangeQuestion& question, Placement& file);
RangeVerdict apply_bin_rules(const RangeQuestion& question, Placement& file);

}  // namespace vkm
