#include "pseudo_terminal/host_rate.h"

// The kernel's own structures: the library's know the usual rates only, and not
// 11520, 12800 or 14400. They can't stand in one file with <termios.h>.
#include <asm/termbits.h>
#include <sys/ioctl.h>

namespace vkm::sim {

double rate_of_terminal(int descriptor) {
    termios2 settings{};
    if (ioctl(descriptor, TCGETS2, &settings) != 0) return 0;
    return settings.c_ospeed;
}

}  // namespace vkm::sim
