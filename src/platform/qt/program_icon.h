#pragma once

#include <QIcon>

namespace vkm {

// A chip and an arrow that goes into it.
QIcon program_icon();

}  // namespace vkm
