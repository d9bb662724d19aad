// The commands that steer a simulated board while it stands on its terminal, and the
// lines that tell what it does.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "pseudo_terminal/objections.h"
#include "simulators/simulated_board.h"
#include "simulators/simulated_chip.h"

namespace vkm::sim {

struct BoardBench {
    SimulatedBoard& board;
    SimulatedChip& chip;  // in its socket
    Instant now{};
    Instant socket_free{};  // the chip has its own time, which runs ahead
    Objections objections{};
    bool powered = false;  // as was told last

    // The line to answer, "ok ..." or "error ...".
    std::string carry_out(std::string_view command, Instant at);
    // Lines about all that has happened since the last call; the board's log and
    // objections are taken from it.
    std::vector<std::string> news();
};

}  // namespace vkm::sim
