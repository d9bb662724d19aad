// The items of a project out of the screen and back into it.
#pragma once

#include <string>
#include <string_view>

#include "frmMain.h"
#include "project/project_format.h"

namespace vkm {

// A general item's value as a project stores it; empty for a key that is none.
std::string Project_Value(frmMain& frm, std::string_view key);

// An option's value, after the panel was read (Refresh_Option_State); empty for a
// key that the model's family lacks.
std::string Project_Option_Value(frmMain& frm, std::string_view key);

// All rows between the version and the sum. Reads the panel.
Project_Rows project_items(frmMain& frm);

// Sets what the rows say: the general items, the model excepted, and the options of
// the model's family. Rows without a value, unknown keys and values outside a list
// are passed over.
void Set_Project_Items(frmMain& frm, const Project_Rows& rows);

}  // namespace vkm
