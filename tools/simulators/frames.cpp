#include "simulators/frames.h"

#include <algorithm>
#include <utility>

#include "simulators/byte_values.h"

namespace vkm::sim {
namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t length_field = 2;
constexpr std::uint8_t end_mark = 0x16;
constexpr std::uint8_t preamble_byte = 0xFE;

// Start, length, command, check and end mark.
std::size_t shortest(const FrameForm& form) {
    return form.start_length + length_field + 1 + check_length(form.check) + 1;
}

Bytes check_of(FrameCheck check, std::span<const std::uint8_t> bytes) {
    if (check == FrameCheck::sum8) return {sum_of(bytes)};
    const std::uint16_t value = check == FrameCheck::crc16 ? crc_of(bytes) : sum16_of(bytes);
    const auto high = static_cast<std::uint8_t>(value >> 8);
    const auto low = static_cast<std::uint8_t>(value);
    return check == FrameCheck::crc16 ? Bytes{low, high} : Bytes{high, low};
}

void append(Bytes& bytes, std::span<const std::uint8_t> more) {
    bytes.insert(bytes.end(), more.begin(), more.end());
}

}  // namespace

std::size_t check_length(FrameCheck check) {
    return check == FrameCheck::sum8 ? 1 : 2;
}

Bytes build_reply(const FrameForm& form, std::span<const std::uint8_t> payload) {
    Bytes frame(form.start.begin(),
                form.start.begin() + static_cast<std::ptrdiff_t>(form.start_length));
    const std::size_t length = shortest(form) - 1 + payload.size() - form.uncounted;
    frame.push_back(static_cast<std::uint8_t>(length >> 8));
    frame.push_back(static_cast<std::uint8_t>(length));
    append(frame, payload);
    append(frame, check_of(form.check, std::span(frame).subspan(form.uncounted)));
    frame.push_back(end_mark);
    return frame;
}

std::span<const std::uint8_t> FrameReceiver::body() const {
    return std::span(frame_).subspan(place_of_command() + 1, frame_.size() - shortest(form_));
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
    if (place < form_.start_length && value != form_.start[place]) {
        if (place == 0) {
            preamble_ = value == preamble_byte ? preamble_ + 1 : 0;
            return Result::none;
        }
        if (place == 1 && value == form_.start[0]) return Result::none;  // 46 46 B9
        return drop("frame that starts " + hex_text(frame_) + " " + hex_text({{value}}));
    }
    frame_.push_back(value);
    if (frame_.size() < form_.start_length + length_field) return Result::none;
    const std::uint32_t told =
        big_endian(std::span(frame_).subspan(form_.start_length, length_field));
    const std::size_t length = told + form_.uncounted;
    if (length < shortest(form_) || length > form_.longest)
        return drop("frame with a length field of " + std::to_string(told));
    return frame_.size() < length ? Result::none : check_whole_frame();
}

FrameReceiver::Result FrameReceiver::check_whole_frame() {
    if (frame_.back() != end_mark) return drop("frame without its end mark: " + hex_text(frame_));
    const std::size_t size = check_length(form_.check);
    const std::size_t place = frame_.size() - 1 - size;
    const auto checked = std::span(frame_).subspan(form_.uncounted, place - form_.uncounted);
    if (!std::ranges::equal(check_of(form_.check, checked), std::span(frame_).subspan(place, size)))
        return drop("frame with wrong sum: " + hex_text(frame_));
    done_ = true;
    return Result::complete;
}

}  // namespace vkm::sim
