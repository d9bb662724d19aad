// The right half of the window: the buffers and debug panels above, the tools
// below.
#pragma once

#include <QWidget>

#include "platform/qt/lock_mark.h"
#include "platform/qt/screen_view.h"

namespace vkm {

// A tab strip and below it its pages, of which one is shown at a time. Each page
// goes by the Visible of its frame.
QWidget* make_view_strip(ScreenView& view, Screen& screen, OperatorQueue& queue, LockMark* lock);
QWidget* make_tool_strip(ScreenView& view, Screen& screen);

// The pages of the downloads beside that of step 5: into the stand-alone board, over a
// user's own ISP program, and of the debug monitor.
QWidget* make_board_page(ScreenView& view, Screen& screen);
QWidget* make_demo_page(ScreenView& view, Screen& screen);
QWidget* make_softice_page(ScreenView& view, Screen& screen);

// The pages of a stopped target: its registers and RAM, and its XRAM.
QWidget* make_register_page(ScreenView& view, Screen& screen);
QWidget* make_memory_page(ScreenView& view, Screen& screen);

// The page of the serial assistant: the panel fraDebug, a splitter, and beside
// it what is sent.
QWidget* make_assistant_page(ScreenView& view, Screen& screen, OperatorQueue& queue);

}  // namespace vkm
