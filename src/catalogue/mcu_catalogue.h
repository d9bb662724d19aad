// The fixed knowledge of the chips: 154 models in seven groups.
//
// Owns the table of models (model_table.h), its look-ups with their tie-breaks
// (model_lookup.h), the computed boot block address (memory_ranges.h), what a
// name alone decides (model_traits.h) and, in model_selection.h, the choice of a
// model. Called by the handshake, the readers and the window. Always holds: the
// table never changes; families are 0, 1, 2, 3, 4, 6, and group 5 is a second
// list of family 4. A code or name that nothing matches is an empty answer.
#pragma once

#include <string>
#include <string_view>

#include "catalogue/mcu_record.h"
#include "catalogue/memory_ranges.h"
#include "catalogue/model_lookup.h"
#include "frmMain.h"

namespace vkm {

// Fills the record with the model of this name, its ISP_Start excepted; the name.
// For the selected model (MCU_Info) Block_Size and the SoftICE values follow it.
// Without a match the operator is told (events run meanwhile), the record stays
// and the answer is empty. Group 4 is passed over.
std::string Find_Model(frmMain& frm, std::string_view name, MCU_Record& record);

// The same by ID code, over all groups.
std::string Find_Code_Record(frmMain& frm, std::string_view code, MCU_Record& record);

// Computes ISP_Start of the selected model and shows its program area.
void Show_ISP_Range(frmMain& frm);

// The same at once for a model that was chosen a moment ago, which Timer3 would do it for:
// a load must not work with the ranges of the model before.
void Settle_ISP_Range(frmMain& frm);

}  // namespace vkm
