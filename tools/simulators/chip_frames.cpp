#include "simulators/chip_frames.h"

#include <utility>

#include "simulators/byte_values.h"

namespace vkm::sim {
namespace {

constexpr std::uint8_t frame_start[] = {0x46, 0xB9, 0x6A};
constexpr std::uint8_t reply_start[] = {0x46, 0xB9, 0x68};
constexpr std::uint8_t end_mark = 0x16;
constexpr std::uint8_t preamble_byte = 0xFE;

// Start, length, command, sum and end mark; and what the firmware's buffer holds.
constexpr std::size_t shortest_frame = 8;
constexpr std::size_t longest_frame = 14 + 512;

std::size_t length_told(std::span<const std::uint8_t> frame) {
    return static_cast<std::size_t>(frame[3] * 256 + frame[4]) + 2;
}

}  // namespace

std::vector<std::uint8_t> build_reply(std::span<const std::uint8_t> payload) {
    std::vector<std::uint8_t> frame(std::begin(reply_start), std::end(reply_start));
    // The length counts from the 68 through the end mark.
    const std::size_t length = payload.size() + 5;
    frame.push_back(static_cast<std::uint8_t>(length >> 8));
    frame.push_back(static_cast<std::uint8_t>(length));
    frame.insert(frame.end(), payload.begin(), payload.end());
    frame.push_back(sum_of(std::span(frame).subspan(2)));
    frame.push_back(end_mark);
    return frame;
}

std::span<const std::uint8_t> FrameReceiver::body() const {
    return std::span(frame_).subspan(6, frame_.size() - shortest_frame);
}

void FrameReceiver::reset() {
    frame_.clear();
    preamble_ = 0;
    done_ = false;
}

FrameReceiver::Result FrameReceiver::drop(std::string why) {
    objection_ = std::move(why);
    reset();
    return Result::bad;
}

FrameReceiver::Result FrameReceiver::take(std::uint8_t value) {
    if (done_) reset();
    const std::size_t place = frame_.size();
    if (place < std::size(frame_start) && value != frame_start[place]) {
        if (place == 0) {
            preamble_ = value == preamble_byte ? preamble_ + 1 : 0;
            return Result::none;
        }
        if (place == 1 && value == frame_start[0]) return Result::none;  // 46 46 B9
        return drop("frame that starts " + hex_text(frame_) + " " + hex_text({{value}}));
    }
    frame_.push_back(value);
    if (frame_.size() < 5) return Result::none;
    const std::size_t length = length_told(frame_);
    if (length < shortest_frame || length > longest_frame)
        return drop("frame with a length field of " + std::to_string(length - 2));
    return frame_.size() < length ? Result::none : check_whole_frame();
}

FrameReceiver::Result FrameReceiver::check_whole_frame() {
    if (frame_.back() != end_mark) return drop("frame without its end mark: " + hex_text(frame_));
    const auto summed = std::span(frame_).subspan(2, frame_.size() - 4);
    if (sum_of(summed) != frame_[frame_.size() - 2])
        return drop("frame with wrong sum: " + hex_text(frame_));
    done_ = true;
    return Result::complete;
}

}  // namespace vkm::sim
