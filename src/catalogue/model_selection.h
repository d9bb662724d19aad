// Choosing a model: the tree of families and what a choice changes.
#pragma once

#include <string>

#include "frmMain.h"

namespace vkm {

void Build_Device_Tree(frmMain& frm);
void Open_Device_Tree(frmMain& frm);
void Close_Device_Tree(frmMain& frm);

// The node chosen in TreeViewDevice was clicked. A model empties both images.
void Device_Node_Click(frmMain& frm);

// Makes the model named in txtDevice the selected one; its name, or empty when
// there is no such model (the operator has been told, the record stays).
std::string Apply_Model(frmMain& frm);

void Data_Memory_Controls(frmMain& frm, bool enabled);

// The tab strips: a tab whose caption is "_no_" is absent and switches nothing.
void TabStrip1_Click(frmMain& frm);
void TabStrip2_Click(frmMain& frm);

}  // namespace vkm
