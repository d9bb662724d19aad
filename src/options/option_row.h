// A row of the option schema: what one control of the option panel shows, and
// which bit of the chip's option bytes a choice stands for.
#pragma once

#include <string>

namespace vkm {

// What a row sets and reads of its control.
enum class Property_Kind { Caption, Value, Text };

struct Option_Row {
    std::string Option_Key;      // stored in project files; "Clew" rows are decoration
    std::string Option_Control;  // name of the panel's control
    int Option_Index = -1;       // its place in its array, -1 for a control that is none
    Property_Kind Option_Property = Property_Kind::Caption;
    std::string Option_Default;  // the property when the panel is laid out; empty: left alone
    std::string Option_State;    // empty at rest; "True" or "False" from the panel before
                                 // composing; "1" or "0" from the chip after a read-back
    bool Option_Visible = true;
    bool Option_Enable_0 = true;  // enabled while the panel is free
    bool Option_Enable_1 = true;  // while a job runs
    bool Option_Enable_2 = true;  // while a project locks the options
    std::string Option_Text;      // shown after a read-back when the chip agrees with the row
    std::string Option_Code;      // "BBbv": byte number, bit, value of the bit; empty: no bit
};

}  // namespace vkm
