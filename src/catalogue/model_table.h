// The table of models: 154 rows in seven groups, built into the program.
//
// The row of a new model goes into its group's rows in model_table.cpp; the tree,
// the look-ups and the record follow from it. What a name alone decides is asked
// in model_traits.h.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

namespace vkm {

// Addresses are image addresses in bytes. Every model's program area begins at 0.
struct ModelRow {
    std::string_view MCU_ID;      // ID code: 4 upper-case hex digits, 2 in group 1, "FF" in group 0
    std::string_view MCU_Name;    // as shown and as stored in project files
    std::int32_t AP_End = 0;      // last address of the program area
    std::int32_t AP_End_Alt = 0;  // a second one, group 2 alone; nothing reads it
    std::int32_t Data_Start = 0;  // first address of the data memory
    std::int32_t Data_End = 0;    // last; below Data_Start there is none
    std::int32_t Code_Top = 0;    // one past the code space
    std::int32_t Memory_Top = 0;  // last address that a file may reach
    bool Split_Flag = false;      // the program area reaches up to the boot block
    bool In_Tree = false;         // offered for selection
    std::string_view Old_ID;      // code of the same model in group 4, else empty
    std::string_view SoftICE_ROM;  // image file of the debug monitor, else empty
};

struct ModelGroup {
    std::int16_t MCU_Family = 0;  // of all its rows
    std::span<const ModelRow> rows;
};

// Group and family number part at group 5: it lists family 4 a second time, under
// newer codes and with the larger models.
inline constexpr int two_digit_group = 1;   // its codes have two digits, all others four
inline constexpr int older_54xx_group = 4;  // found by code; never offered, never found by name
inline constexpr int last_filled_group = 6;
inline constexpr int group_count = 8;       // group 7 stays empty
inline constexpr int rows_of_a_group = 57;  // a walk passes 0 to 56; unfilled rows are empty

extern const std::array<ModelGroup, group_count> MCU_AP_ISP_range;

// The row at a place; an empty row where the group has none, inside and outside
// the bounds.
const ModelRow& catalogue_row(int group, int row);

}  // namespace vkm
