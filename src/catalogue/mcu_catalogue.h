// The fixed knowledge of the chips: 154 models in seven groups.
//
// Owns the table of models, its look-ups with their tie-breaks, the computed
// boot block address and, in model_selection.h, the choice of a model. Called
// by the handshake, the readers and the window. Always holds: the table never
// changes; families are 0, 1, 2, 3, 4, 6, and group 5 is a second list of
// family 4. A code or name that nothing matches is an empty answer.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "catalogue/mcu_record.h"
#include "frmMain.h"

namespace vkm {

inline constexpr std::int32_t not_in_catalogue = 32767;

struct CodePlace {
    std::string name;                   // empty when nothing matched
    std::int32_t x = not_in_catalogue;  // group
    std::int32_t y = not_in_catalogue;  // row
};

// The model that an ID code stands for: two digits are sought in group 1, all
// others in groups 2 to 6; the first match wins.
CodePlace Find_Code(std::string_view code);

// Fills the record with the model of this name and sets Block_Size and the
// SoftICE values by it; the name. Without a match the operator is told, the
// record stays and the answer is empty. Group 4 is passed over.
std::string Find_Model(frmMain& frm, std::string_view name, MCU_Record& record);

// The same by ID code, over all groups.
std::string Find_Code_Record(frmMain& frm, std::string_view code, MCU_Record& record);

// Computes ISP_Start of the selected model and shows its program area.
void Show_ISP_Range(frmMain& frm);

// The 5416, 5420 and 5424 models: family 4 with a data memory of its own above
// 12 K of program.
bool Is_Large_54xx(const MCU_Record& record);

}  // namespace vkm
