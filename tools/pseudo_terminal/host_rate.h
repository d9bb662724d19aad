// The rate that is set on a terminal, whatever number it is.
#pragma once

namespace vkm::sim {

// Baud, as the host has set it on its side; 0 when the descriptor is no terminal.
double rate_of_terminal(int descriptor);

}  // namespace vkm::sim
