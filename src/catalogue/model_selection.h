// Choosing a model: the tree of families and what a choice changes.
//
// The selected model lives in the tree's selection, in txtDevice and in MCU_Info.
// The window's start and a loaded project take the same path as the operator.
#pragma once

#include <string>

#include "catalogue/tab_strips.h"
#include "frmMain.h"

namespace vkm {

// Fills TreeViewDevice and hides it. Once, before the settings are loaded.
void Build_Device_Tree(frmMain& frm);

// Shows the tree in place of txtDevice, and takes it away again.
void Open_Device_Tree(frmMain& frm);
void Close_Device_Tree(frmMain& frm);

// The node chosen in TreeViewDevice was clicked. A family does nothing; a model
// empties both images, even when it was selected before. While a job runs or a
// project locks the options no model is taken.
void Device_Node_Click(frmMain& frm);

// Makes the model named in txtDevice the selected one; its name, or empty when
// there is no such model (the operator has been told, the record stays).
std::string Apply_Model(frmMain& frm);

// The family has a data memory and tabs of its own: all but family 0.
bool has_data_memory(const MCU_Record& model);

// Enables or disables what belongs to the data memory.
void Data_Memory_Controls(frmMain& frm, bool enabled);

}  // namespace vkm
