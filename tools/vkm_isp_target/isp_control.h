// The commands that steer a simulated ISP program while it stands on its terminal, and
// the lines that tell what it does.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "pseudo_terminal/objections.h"
#include "simulators/simulated_isp_program.h"

namespace vkm::sim {

struct IspBench {
    SimulatedIspProgram& target;
    Instant now{};
    Objections objections{};
    bool awake = false;  // as was told last

    // The line to answer, "ok ..." or "error ...".
    std::string carry_out(std::string_view command, Instant at);
    // Lines about all that has happened since the last call; the target's log and
    // objections are taken from it.
    std::vector<std::string> news();
};

}  // namespace vkm::sim
