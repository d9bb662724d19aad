// Commands of the host to a debug agent: FE AA, the code, AA + code.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace vkm::sim {

enum class DebugCode : std::uint8_t {
    acknowledge = 0x50,  // the frame was good
    again = 0x52,        // send it again
    go_on = 0x54,        // let the program run
};

std::string_view name_of(DebugCode code);

// Picks commands out of what is heard, a byte at a time.
class DebugCommandReceiver {
  public:
    enum class Result {
        none,      // go on
        complete,  // code() was commanded
        bad,       // what() is no command, nor the beginning of one
    };

    Result take(std::uint8_t value);
    void reset() { heard_.clear(); }

    DebugCode code() const { return static_cast<DebugCode>(what_[2]); }
    std::span<const std::uint8_t> what() const { return what_; }

  private:
    std::vector<std::uint8_t> heard_;  // the beginning of a command
    std::vector<std::uint8_t> what_;   // the last that was complete or bad
};

}  // namespace vkm::sim
