// The frames that write option bytes, as values.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>

#include "link/baud.h"
#include "link/frames.h"
#include "options/options_state.h"

namespace vkm {

// Family 0: the one option byte, 9 bytes.
Frame build_family_0_options(std::uint8_t option);

// Family 2: byte 1, the reload pair at which the chip finds its rate again after a
// change of its clock mode, and byte 8; 12 bytes.
Frame build_family_2_options(const Option_Words& options, ReloadPair pair);

// Families 3, 4 and 6: the bytes of these numbers, then the chip's clock in Hz as
// four bytes. A chip that runs on its crystal needs no clock: nothing gives FF FF
// FF FF. 17 and 18 bytes.
Frame build_options_with_clock(const Option_Words& options, std::span<const int> numbers,
                               std::optional<std::int32_t> clock);

}  // namespace vkm
