// What the operator is told about a file that doesn't fit the chip: one box,
// put together from parts. Blanks and line breaks are those of the given texts.
#pragma once

#include <cstdint>
#include <string>

namespace vkm {

// 54xx with a large data memory.
std::string over_scope_message(bool english);

// Families with a gap between program and data memory.
struct GapFindings {
    bool Gap_Filled = false;  // there was something in the gap, now cleared
    std::int32_t Gap_Low = 0;
    std::int32_t Gap_High = 0;
    bool Data_Seen = false;  // the file reaches the data memory
    bool Over = false;       // and beyond its end
};

// Empty when nothing was found; so also below.
std::string gap_message(const GapFindings& found, bool english);

// All other chips. A HEX file and a binary file have texts of their own.
struct AreaFindings {
    bool Over = false;       // something lay outside the valid area
    bool Data_Seen = false;  // something lay in the data memory
};

std::string hex_area_message(const AreaFindings& found, bool english);
std::string bin_area_message(const AreaFindings& found, bool english);

}  // namespace vkm
