// The counter of good chips, a number in txtWrite_OK_Count. It is stored at
// once, so that a crash loses no count.
#pragma once

#include <string>
#include <string_view>

#include "frmMain.h"

namespace vkm {

// The number of a text plus 1. A whole number of any length is counted exactly;
// a text without a number counts as 0.
std::string one_more(std::string_view count);

void count_good_chip(frmMain& frm);

}  // namespace vkm
