// The short frames of the handshake and of the baud exchange.
#pragma once

#include <cstdint>
#include <string_view>

#include "link/baud.h"
#include "link/frames.h"

namespace vkm {

// Asks for firmware version and option bytes.
Frame build_status_read();

// Tells which pin feeds the external watchdog.
inline constexpr std::uint8_t no_WDT_pin = 0xFF;
Frame build_WDT_frame(std::uint8_t pin);

// A port pin as it is told to the chip: "P3.5" gives 35 hexadecimal. A text that
// is not four characters long gives no_WDT_pin.
std::uint8_t WDT_pin(std::string_view text);

// Asks the chip to try a baud and answer at it.
Frame build_test_frame(ReloadPair pair, std::uint8_t delay_code, std::uint8_t flash_wait_code);

// Makes the baud final.
Frame build_set_frame(ReloadPair pair, std::uint8_t delay_code);

}  // namespace vkm
