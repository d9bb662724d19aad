// How a download board programs the chip in its socket: the host's side of the boot
// firmware, in virtual time, from nothing but what stands in its storage.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "simulators/simulated_chip.h"
#include "simulators/wire.h"

namespace vkm::sim {

struct BoardProgramming {
    bool done = false;
    std::string problem;  // why it isn't
    int blocks = 0;       // chunks of code that the chip took
    int retries = 0;      // blocks that were begun again
    bool options_written = false;
    std::uint32_t chips_left = 0;  // afterwards
    Instant end;
};

// Gives the chip power, programs it, and takes the power away. A chip that was
// programmed is counted in the storage, which has 64 KB.
BoardProgramming program_chip(std::span<std::uint8_t> storage, SimulatedChip& chip, Instant start);

}  // namespace vkm::sim
