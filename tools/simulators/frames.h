// Frames as targets take and make them: a start of two or three bytes, a length
// of two bytes, a body, a sum or CRC, 16. Fields are big-endian.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace vkm::sim {

enum class FrameCheck {
    sum8,
    crc16,  // CRC-16/MODBUS, its low byte first
    sum16,
};

struct FrameForm {
    std::array<std::uint8_t, 3> start{};
    std::size_t start_length = 3;
    std::size_t uncounted = 2;  // so many bytes at the start are neither in the length nor checked
    FrameCheck check = FrameCheck::sum8;
    std::size_t longest = 14 + 512;  // whole frame
};

// The boot firmware of a chip, the download board, and a user's own ISP program.
inline constexpr FrameForm chip_request{{0x46, 0xB9, 0x6A}};
inline constexpr FrameForm chip_reply{{0x46, 0xB9, 0x68}};
inline constexpr FrameForm board_request{{0x46, 0xB9, 0x6A}, 3, 2, FrameCheck::crc16, 15 + 512};
inline constexpr FrameForm board_reply{{0x46, 0xB9, 0x68}, 3, 2, FrameCheck::crc16};
inline constexpr FrameForm isp_frame{{0x5A, 0xA5}, 2, 0, FrameCheck::sum16, 14 + 1024};

// Of the sum or CRC.
std::size_t check_length(FrameCheck check);

// Picks frames out of what is heard, a byte at a time.
class FrameReceiver {
  public:
    enum class Result {
        none,      // go on
        complete,  // frame() is good: start, length, sum and end mark
        bad,       // thrown away; objection() tells why
    };

    explicit FrameReceiver(const FrameForm& form) : form_(form) {}

    Result take(std::uint8_t value);
    void reset();

    bool inside() const { return !frame_.empty() && !done_; }
    std::span<const std::uint8_t> frame() const { return frame_; }
    std::uint8_t command() const { return frame_[place_of_command()]; }
    // Between the command and the sum.
    std::span<const std::uint8_t> body() const;
    // Bytes FE that came directly before the frame: a trigger has four.
    int preamble() const { return preamble_; }
    const std::string& objection() const { return objection_; }

  private:
    std::size_t place_of_command() const { return form_.start_length + 2; }
    Result drop(std::string why);
    Result check_whole_frame();

    FrameForm form_;
    std::vector<std::uint8_t> frame_;  // from its first byte
    int preamble_ = 0;
    bool done_ = false;  // frame_ was told complete; the next byte begins another
    std::string objection_;
};

// A frame as it goes over the wire; the payload begins with the reply code.
std::vector<std::uint8_t> build_reply(const FrameForm& form, std::span<const std::uint8_t> payload);

}  // namespace vkm::sim
