// The widget for a control of each kind.
#pragma once

#include <QWidget>

#include "screen/control.h"

namespace vkm {

// A new widget, named after the control ("txtDevice", "comDownload(0)"), that
// shows what an empty record of the kind stands for.
QWidget* make_widget(const Control& control);

// Gives any widget the control's name and hint.
void name_widget(const Control& control, QWidget& widget);

// The place of a tree's node in its list of entries, as data of the item.
inline constexpr int entry_role = Qt::UserRole;

}  // namespace vkm
