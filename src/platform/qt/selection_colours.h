// What is selected looks the same without the keyboard as with it.
#pragma once

#include <QWidget>

namespace vkm {

// To be called again when the widget's palette has changed.
void show_selection_always(QWidget& widget);

}  // namespace vkm
