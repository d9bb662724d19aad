// What a serial line can do beyond what QSerialPort asks of it.
#pragma once

#include <cstddef>
#include <optional>

namespace vkm {

// The device shifts bits out, so that parity, data and stop bits mean something
// to it. A pseudo-terminal doesn't, and takes no other than its own.
bool shifts_bits(const char* path);

// The rate that an open device really runs at; nothing where the system won't tell.
std::optional<double> actual_baud(int device);

// Asks an adapter to hand in bytes at once, where it would gather them for 16 ms.
// Devices that have no such delay refuse, which does no harm.
void hand_in_at_once(int device);

// Bytes that lie in the system's output buffer.
std::size_t output_in_system(int device);

// Whether the device still answers: not once its plug is out, or the other end
// of a pseudo-terminal is gone.
enum class Alive { yes, no, unknown };
Alive is_alive(int device);

}  // namespace vkm
