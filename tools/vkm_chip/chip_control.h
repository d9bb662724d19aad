// The commands that steer a simulated chip while it stands on its terminal.
#pragma once

#include <string>
#include <string_view>

#include "simulators/simulated_chip.h"
#include "vkm_chip/line_meter.h"

namespace vkm::sim {

struct ChipBench {
    SimulatedChip& chip;
    LineMeter& meter;
    Instant now{};
};

// Carries out one command of the chip's own; the line to answer, "ok ..." or "error ...".
std::string carry_out_command(ChipBench& bench, std::string_view command, Instant now);

}  // namespace vkm::sim
