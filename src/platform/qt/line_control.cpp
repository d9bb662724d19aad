#include "platform/qt/line_control.h"

// The kernel's own terminal settings know free rates; they can't stand beside
// those of the C library in one file.
#ifdef __linux__
#include <asm/termbits.h>
#include <linux/serial.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#endif

namespace vkm {

#ifdef __linux__

bool shifts_bits(const char* path) {
    // Numbers that the kernel keeps for the near ends of pseudo-terminals.
    constexpr unsigned first_pseudo_terminal = 136;
    constexpr unsigned last_pseudo_terminal = 143;
    struct stat device {};
    if (::stat(path, &device) != 0) return true;
    const unsigned kind = major(device.st_rdev);
    return kind < first_pseudo_terminal || kind > last_pseudo_terminal;
}

std::optional<double> actual_baud(int device) {
    termios2 settings{};
    if (::ioctl(device, TCGETS2, &settings) != 0) return {};
    return settings.c_ospeed;
}

void hand_in_at_once(int device) {
    serial_struct settings{};
    if (::ioctl(device, TIOCGSERIAL, &settings) != 0) return;
    if ((settings.flags & ASYNC_LOW_LATENCY) != 0) return;
    settings.flags |= ASYNC_LOW_LATENCY;
    ::ioctl(device, TIOCSSERIAL, &settings);
}

std::size_t output_in_system(int device) {
    int count = 0;
    return ::ioctl(device, TIOCOUTQ, &count) == 0 && count > 0 ? static_cast<std::size_t>(count)
                                                               : 0;
}

Alive is_alive(int device) {
    pollfd request{device, POLLIN, 0};
    if (::poll(&request, 1, 0) < 0) return Alive::unknown;
    return (request.revents & (POLLERR | POLLHUP | POLLNVAL)) == 0 ? Alive::yes : Alive::no;
}

#else

bool shifts_bits(const char*) {
    return true;
}

std::optional<double> actual_baud(int) {
    return {};
}

void hand_in_at_once(int) {}

std::size_t output_in_system(int) {
    return 0;
}

Alive is_alive(int) {
    return Alive::unknown;
}

#endif

}  // namespace vkm
