// From a widget back to a record: what the operator sees of a control.
#pragma once

#include <QWidget>

#include "screen/control.h"

namespace vkm {

// `record` says which control it is and lends what no widget shows: the keys and
// parents of entries, the steps of bars.
Control as_drawn(const QWidget& widget, const Control& record);

}  // namespace vkm
