// The three exchanges that prepare the link for full speed. None of them
// reports to the operator.
#pragma once

#include <cstdint>
#include <string_view>

#include "frmMain.h"

namespace vkm {

// Tells the firmware which pin feeds an external watchdog, when the operator
// has chosen one. On failure the port is closed.
bool send_extern_WDT_address(frmMain& frm);

// The chip answered at the new baud. The link is back at the base baud in any case.
bool test_new_baud(frmMain& frm, std::string_view new_baud, std::uint8_t newBaud_H,
                   std::uint8_t newBaud_L);

// The same, for good: the port stays at the new baud in any case.
bool set_new_baud(frmMain& frm, std::string_view new_baud, std::uint8_t newBaud_H,
                  std::uint8_t newBaud_L);

}  // namespace vkm
