// Which device has which COM number, where the system itself has no such
// numbers. A number is given to a device when it is first seen and stays with
// it, so that the COM3 of a bench is the same adapter tomorrow.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "platform/serial_port.h"

namespace vkm {

inline constexpr int port_number_count = highest_port_number - lowest_port_number + 1;

// Device paths by number, COM1 first; empty where no device has the number.
using PortNumbers = std::array<std::string, port_number_count>;

// Gives numbers to the devices that have none yet, in the order of the list: the
// lowest free one or, when all are taken, the lowest whose device isn't there.
// True when that changed the numbers. A device that finds no number stays out.
bool give_port_numbers(PortNumbers& numbers, const std::vector<std::string>& present);

}  // namespace vkm
