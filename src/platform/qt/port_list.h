// The lists COM1 to COM16, with the device of each number drawn behind it while
// the list is open. The entries themselves stay "COM3".
#pragma once

#include <QComboBox>

#include "platform/qt/port_registry.h"

namespace vkm {

// `ports` must outlive the list.
void show_devices_behind(QComboBox& list, const PortRegistry& ports);

}  // namespace vkm
