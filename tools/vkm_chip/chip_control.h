// The commands that steer a simulated chip while it stands on its terminal.
#pragma once

#include <string>
#include <string_view>

#include "simulators/simulated_chip.h"
#include "vkm_chip/line_meter.h"
#include "vkm_chip/paced_line.h"
#include "vkm_chip/pseudo_terminal.h"

namespace vkm::sim {

struct ChipBench {
    SimulatedChip& chip;
    PacedLine& line;
    PseudoTerminal& terminal;
    LineMeter& meter;
    std::string link;  // to be made again when the cable is put in; empty: none
    bool quit = false;
};

// Carries out one command; the line to answer, "ok ..." or "error ...".
std::string carry_out_command(ChipBench& bench, std::string_view command, Instant now);

}  // namespace vkm::sim
