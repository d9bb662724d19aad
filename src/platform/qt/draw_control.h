// From a control's record to its widget.
#pragma once

#include <QWidget>

#include "screen/control.h"

namespace vkm {

// Draws what differs between the record and the state drawn before. Nothing that
// the operator could have done is signalled by it.
void draw_control(const Control& now, const Control& before, QWidget& widget);

}  // namespace vkm
