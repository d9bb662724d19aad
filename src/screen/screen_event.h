// What the operator did to a control. The edge has brought the control's record
// up to date before the event is handed in.
#pragma once

#include <string>

#include "screen/control.h"

namespace vkm {

enum class EventKind {
    Click,     // button, check box, option, entry of a list, tab, node of a tree; a frame's ground
    Change,    // typed text, scroll bar
    KeyDown,   // Key: 13 Return, 27 Escape, 33 and 34 Page Up and Down, 38 and 40 Up and Down
    KeyPress,  // Text holds the character
    MouseUp,
    Resize,  // a text view has room for another number of rows
    Drop,    // Text holds the path of a file dropped on the window
};

struct ScreenEvent {
    Control* Source = nullptr;  // null for the window itself
    EventKind Kind = EventKind::Click;
    int Key = 0;
    std::string Text;
};

}  // namespace vkm
