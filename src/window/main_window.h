// The one window as the logic knows it: start-up, closing, shrinking.
//
// Owns the order of start and end. Called by the edge, which draws the window
// and hands in what the operator does. Start-up restores settings and builds
// tables, and nothing else; closing during a session needs two passes, so that
// running waits get time to end.
#pragma once

#include "frmMain.h"

namespace vkm {

// Start-up, before the window is shown.
void Load(frmMain& frm);

// The operator, or TimerUnload, wants to close. True when the window may close
// now; false when the closing was put off to the second pass.
bool QueryUnload(frmMain& frm);

// The last act, after the window has been allowed to close.
void Unload(frmMain& frm);

// The operator moved or resized the window.
void Window_Moved(frmMain& frm);

// Saves the settings once after a change, and shows the ranges of the model.
void Timer3_Tick(frmMain& frm);
// After a block failed while the window is to close: closes it.
void Timer4_Tick(frmMain& frm);
// Half a second after the first pass of closing: the second.
void TimerUnload_Tick(frmMain& frm);

// Toggles between the whole window and the step column alone.
void comMastWindow(frmMain& frm);

// The splitter was taken hold of: a bar shows that it is being moved.
void ImgSplitter_Pressed(frmMain& frm);
// It was released with fraDebug this wide (twips).
void ImgSplitter_Released(frmMain& frm, std::int32_t width);

}  // namespace vkm
