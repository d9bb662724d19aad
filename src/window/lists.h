// What the lists of the window offer.
#pragma once

#include "screen/screen.h"

namespace vkm {

// Fills every list whose entries are fixed, and chooses the entry that it starts
// with where no setting does.
void Fill_Lists(Screen& screen);

// Chooses in every set of options the one that it starts with.
void Choose_First_Options(Screen& screen);

}  // namespace vkm
