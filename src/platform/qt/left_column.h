// The steps of a download, one below the other in the order in which the eye and
// the hand go, and the log.
#pragma once

#include "platform/qt/screen_view.h"

namespace vkm {

QWidget* make_left_column(ScreenView& view, Screen& screen);

}  // namespace vkm
