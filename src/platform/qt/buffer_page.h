// A page of an image: the text as the program fills it, the operator's copy exactly
// over it, and the scroll bar beside them.
#pragma once

#include <QWidget>

#include "platform/qt/screen_view.h"

namespace vkm {

QWidget* make_buffer_page(ScreenView& view, Control& frame, Control& filled, Control& shown,
                          Control& bar);

}  // namespace vkm
