// Tells what a simulated chip does, in lines of text.
#pragma once

#include <deque>
#include <string>
#include <utility>
#include <vector>

#include "simulators/simulated_chip.h"

namespace vkm::sim {

class ChipReporter {
  public:
    // Lines about all that has happened since the last call; the chip's log and
    // its objections are taken from it.
    std::vector<std::string> news(SimulatedChip& chip, Instant now);

    // A program has started or power has gone since the last call: the flash is
    // worth keeping.
    bool take_rest() { return std::exchange(rested_, false); }

  private:
    ChipState state_ = ChipState::off;
    std::deque<std::pair<Instant, std::string>> to_come_;  // answers that aren't due yet
    bool rested_ = false;
};

// The chip's state and its counters.
std::string state_text(const SimulatedChip& chip);

// Numbers and values: "1=FD".
std::string options_text(const SimulatedChip& chip);

}  // namespace vkm::sim
