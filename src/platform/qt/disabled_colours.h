// What can't be operated now can still be read, and still looks as if it can't.
#pragma once

#include <QPalette>

namespace vkm {

// The palette with its texts of disabled widgets so strong on the ground behind them:
// 1 is as strong as free text, 0 can't be seen.
QPalette with_disabled_texts(QPalette colours, double strength);

}  // namespace vkm
