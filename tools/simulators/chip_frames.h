// Frames as the firmware takes and makes them: 46 B9 6A and 46 B9 68, a length
// of two bytes, a body, the sum, 16.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace vkm::sim {

// Picks frames out of what is heard, a byte at a time.
class FrameReceiver {
  public:
    enum class Result {
        none,      // go on
        complete,  // frame() is good: start, length, sum and end mark
        bad,       // thrown away; objection() tells why
    };

    Result take(std::uint8_t value);
    void reset();

    bool inside() const { return !frame_.empty() && !done_; }
    std::span<const std::uint8_t> frame() const { return frame_; }
    std::uint8_t command() const { return frame_[5]; }
    // Between the command and the sum.
    std::span<const std::uint8_t> body() const;
    // Bytes FE that came directly before the frame: a trigger has four.
    int preamble() const { return preamble_; }
    const std::string& objection() const { return objection_; }

  private:
    Result drop(std::string why);
    Result check_whole_frame();

    std::vector<std::uint8_t> frame_;  // from its 46
    int preamble_ = 0;
    bool done_ = false;  // frame_ was told complete; the next byte begins another
    std::string objection_;
};

// An answer as it goes over the wire; the payload begins with the reply code.
std::vector<std::uint8_t> build_reply(std::span<const std::uint8_t> payload);

}  // namespace vkm::sim
