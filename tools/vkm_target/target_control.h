// The commands that steer a simulated target while it stands on its terminal, and
// the lines that tell what it does.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "simulators/stopped_target.h"
#include "simulators/talking_target.h"

namespace vkm::sim {

// Each carry_out returns the line to answer, "ok ..." or "error ...".
struct TalkingBench {
    TalkingTarget& target;
    std::function<std::size_t()> unread;  // bytes that the terminal has not taken
    Instant now{};

    std::string carry_out(std::string_view command, Instant at);
};

struct StoppedBench {
    StoppedTarget& target;
    std::function<std::size_t()> unread;
    Instant now{};
    std::string commands{};  // heard and not yet asked for
    bool stopped = false;    // as was told last

    std::string carry_out(std::string_view command, Instant at);
    // Lines about all that has happened since the last call; the target's logs and
    // objections are taken from it.
    std::vector<std::string> news();
};

}  // namespace vkm::sim
