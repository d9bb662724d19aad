// The two tab strips: which page belongs to which tab, and which tabs the
// selected family has. A tab whose caption is "_no_" is absent for the family and
// switches nothing.
#pragma once

#include <cstddef>
#include <span>
#include <string_view>

#include "frmMain.h"

namespace vkm {

inline constexpr std::string_view absent_caption = "_no_";

// Fills both strips and shows their first pages. Once, at start.
void Fill_Tab_Strips(frmMain& frm);

// Marks the tabs that family 0 lacks, or gives all tabs their real captions.
void Mark_Absent_Tabs(frmMain& frm);
void Restore_Tab_Captions(frmMain& frm);

// The chosen tab's page is shown and the others hidden. From an absent tab the
// strip returns to the tab whose page is shown; when that one is absent too, to
// the first that isn't.
void TabStrip1_Click(frmMain& frm);  // the tools
void TabStrip2_Click(frmMain& frm);  // the buffers and the debug panels

}  // namespace vkm
