// The look-ups in the table of models. The first match in the order of the walk
// wins, which decides between rows that share a code or a name.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "catalogue/mcu_record.h"

namespace vkm {

inline constexpr std::int32_t not_in_catalogue = 32767;

struct CodePlace {
    std::string name;                   // empty when nothing matched
    std::int32_t x = not_in_catalogue;  // group
    std::int32_t y = not_in_catalogue;  // row
};

// The model that an ID code stands for: two digits are sought in group 1, all
// others in groups 2 to 6. Group 0 has no codes. Blanks at the ends don't count.
// An empty code stands for the first empty row, whose name is empty.
CodePlace Find_Code(std::string_view code);

// The record of a model by its exact name; group 4 is passed over, so a name
// that it shares with group 5 is the one of group 5. ISP_Start is 0. Empty when
// there is no such model.
std::optional<MCU_Record> record_by_name(std::string_view name);

// The same by ID code, over all groups, group 4 and the "FF" of group 0 included.
std::optional<MCU_Record> record_by_code(std::string_view code);

}  // namespace vkm
