// The typefaces of the window beside the system's own.
#pragma once

#include <QFont>

namespace vkm {

// For columns of text: Chinese characters take exactly two columns where the
// system has a typeface that does so.
QFont monospaced_font();

}  // namespace vkm
