// What the tool remembers between two runs, in the section "Settings" of the
// per-user store. All values are texts; whatever stands there, also after an
// edit by hand, ends in a usable screen.
#pragma once

#include <string>
#include <string_view>

#include "frmMain.h"

namespace vkm {

std::string Get_Setting(const frmMain& frm, std::string_view key, std::string_view otherwise);
void Save_Setting(frmMain& frm, std::string_view key, std::string_view value);

// Fills the controls, and ends with the click on the tree's node, so that the
// chosen model takes effect. After tree and lists are built.
void Load_Settings(frmMain& frm);

// Writes every setting but the window's own, to disk at once. Runs on Timer3's
// tick, so that a crash loses at most half a second of changes.
void Save_Settings(frmMain& frm);

// The window's place and size (twips) and the width of the panel fraDebug.
void Load_Window(frmMain& frm);
void Save_Window(frmMain& frm);

// A width of fraDebug (twips) that fits: at least 300, at most the window's less 100.
std::int32_t fitting_panel_width(const WindowRecord& window, std::int32_t width);
void Save_Panel_Width(frmMain& frm);

// Starts Timer3 unless it runs already: a steady stream of changes must not
// keep putting the save off.
void Settings_Changed(frmMain& frm);

}  // namespace vkm
