// How well the host uses the line, as seen from the chip's end of it: what the
// benchmark asks for.
#pragma once

#include <chrono>
#include <cstddef>
#include <string>
#include <vector>

#include "simulators/wire.h"

namespace vkm::sim {

class LineMeter {
  public:
    void host_wrote(Instant now, std::size_t bytes, double baud);
    void host_was_given(Instant now, std::size_t bytes, double baud);

    // Of everything from the first programmed block to the answer to the last:
    // the time that it took, the time that its bytes take on the wire, and how
    // long the host needed from an answer's last byte to its next frame.
    std::string report() const;

  private:
    bool begun_ = false;
    bool in_bulk_ = false;   // the host's last frame was a block
    bool answered_ = false;  // the last block was
    Instant begin_{};
    Instant end_{};       // of the last block's answer
    double wire_us_ = 0;  // of all bytes so far
    double bulk_us_ = 0;  // of those up to end_
    std::vector<std::chrono::microseconds> turnarounds_;
};

}  // namespace vkm::sim
