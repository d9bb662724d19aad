// What the drawn controls have beyond their record: the letter that works them
// from the keyboard, and a hint where the caption is short.
#pragma once

#include <QString>

#include "screen/control.h"

namespace vkm {

struct ControlHint {
    std::string_view control;
    int index = -1;         // -1: every element of the array
    char mnemonic = 0;      // a letter of the caption, 0 for none
    const char* hint = "";  // both languages
};

// Null for a control that has none.
const ControlHint* hint_of(const Control& control);

// The caption as a button takes it, its letter marked.
QString marked_caption(const Control& control);

}  // namespace vkm
