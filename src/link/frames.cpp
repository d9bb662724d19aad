#include "link/frames.h"

#include <algorithm>
#include <numeric>

namespace vkm {
namespace {

constexpr std::uint8_t end_mark = 0x16;
constexpr std::size_t data_frame_overhead = 14;  // both classes
constexpr std::int32_t most_data = 0xFFFF - static_cast<std::int32_t>(data_frame_overhead);

constexpr std::uint16_t crc_polynomial = 0xA001;  // reflected
constexpr std::uint16_t crc_start = 0xFFFF;

constexpr std::uint16_t crc_shifted(std::uint16_t crc) {
    for (int bit = 0; bit < 8; ++bit) {
        const bool carry = (crc & 1) != 0;
        crc = static_cast<std::uint16_t>(crc >> 1);
        if (carry) crc = static_cast<std::uint16_t>(crc ^ crc_polynomial);
    }
    return crc;
}

constexpr std::array<std::uint16_t, 256> make_crc_table() {
    std::array<std::uint16_t, 256> table{};
    for (std::size_t i = 0; i < table.size(); ++i)
        table[i] = crc_shifted(static_cast<std::uint16_t>(i));
    return table;
}

constexpr std::array<std::uint16_t, 256> crc_table = make_crc_table();

constexpr std::uint8_t low_byte(std::uint32_t value) {
    return static_cast<std::uint8_t>(value & 0xFF);
}

constexpr std::uint8_t high_byte(std::uint32_t value) {
    return static_cast<std::uint8_t>((value >> 8) & 0xFF);
}

void append_16(Frame& frame, std::size_t value) {
    frame.push_back(high_byte(static_cast<std::uint32_t>(value)));
    frame.push_back(low_byte(static_cast<std::uint32_t>(value)));
}

void append_32(Frame& frame, std::uint32_t value) {
    append_16(frame, value >> 16);
    append_16(frame, value & 0xFFFF);
}

// Where a frame's length field stands and what it leaves out of the count.
void set_length(Frame& frame, std::size_t at, std::size_t value) {
    frame[at] = high_byte(static_cast<std::uint32_t>(value));
    frame[at + 1] = low_byte(static_cast<std::uint32_t>(value));
}

// 46 B9 6A and room for the length.
Frame opened(std::uint8_t command) {
    return {0x46, 0xB9, 0x6A, 0x00, 0x00, command};
}

// The length of a 46 B9 frame leaves out the 46 B9 themselves. What is checked
// starts behind them, too.
constexpr std::size_t sync_size = 2;
constexpr std::size_t length_at = 3;

std::span<const std::uint8_t> checked_part(const Frame& frame) {
    return std::span(frame).subspan(sync_size);
}

void close_with_sum(Frame& frame) {
    set_length(frame, length_at, frame.size() + 2 - sync_size);
    frame.push_back(sum8(checked_part(frame)));
    frame.push_back(end_mark);
}

void close_with_crc(Frame& frame) {
    set_length(frame, length_at, frame.size() + 3 - sync_size);
    const auto crc = crc16(checked_part(frame));
    frame.insert(frame.end(), crc.begin(), crc.end());
    frame.push_back(end_mark);
}

void close_with_sum16(Frame& frame) {
    append_16(frame, sum16(frame));
    frame.push_back(end_mark);
}

// Address, count and the bytes of the image; the sum of the bytes alone.
std::uint16_t append_data(Frame& frame, std::int32_t address, std::int32_t count,
                          std::span<const std::uint8_t> image) {
    const std::int32_t n = std::clamp(count, 0, most_data);
    append_32(frame, static_cast<std::uint32_t>(address));
    append_16(frame, static_cast<std::size_t>(n));
    const std::size_t begin = frame.size();
    for (std::int64_t at = address; at < std::int64_t{address} + n; ++at) {
        const bool inside = at >= 0 && at < static_cast<std::int64_t>(image.size());
        frame.push_back(inside ? image[static_cast<std::size_t>(at)] : std::uint8_t{0});
    }
    return sum16(std::span(frame).subspan(begin));
}

struct Trigger {
    std::uint8_t command;
    std::uint8_t sum;
};

// The firmware looks for these twelve bytes whole, so the sum is part of the
// pattern and no other command is one.
constexpr std::array<Trigger, 5> triggers = {
    {{0x80, 0xF0}, {0x81, 0xF1}, {0x82, 0xF2}, {0x8A, 0xFA}, {0x95, 0x05}}};

}  // namespace

std::uint8_t sum8(std::span<const std::uint8_t> bytes) {
    return low_byte(sum16(bytes));
}

std::uint16_t sum16(std::span<const std::uint8_t> bytes) {
    return static_cast<std::uint16_t>(
        std::accumulate(bytes.begin(), bytes.end(), std::uint32_t{0}) & 0xFFFF);
}

std::uint8_t GetCRCLo(std::uint8_t index) {
    return low_byte(crc_table[index]);
}

std::uint8_t GetCRCHi(std::uint8_t index) {
    return high_byte(crc_table[index]);
}

std::array<std::uint8_t, 2> crc16(std::span<const std::uint8_t> bytes) {
    std::uint8_t low = low_byte(crc_start);
    std::uint8_t high = high_byte(crc_start);
    for (const std::uint8_t byte : bytes) {
        const auto index = static_cast<std::uint8_t>(byte ^ low);
        low = static_cast<std::uint8_t>(GetCRCLo(index) ^ high);
        high = GetCRCHi(index);
    }
    return {low, high};
}

std::array<std::uint8_t, 2> CRC16_bit(std::span<const std::uint8_t> bytes) {
    std::uint16_t crc = crc_start;
    for (const std::uint8_t byte : bytes) crc = crc_shifted(static_cast<std::uint16_t>(crc ^ byte));
    return {high_byte(crc), low_byte(crc)};
}

DataFrame build_data_frame(std::int32_t address, std::int32_t count, std::uint8_t command,
                           std::span<const std::uint8_t> image) {
    DataFrame frame{opened(command), 0};
    frame.data_sum = low_byte(append_data(frame.bytes, address, count, image));
    close_with_sum(frame.bytes);
    return frame;
}

DataFrame build_demo_frame(std::int32_t address, std::int32_t count, std::uint8_t command,
                           std::span<const std::uint8_t> image) {
    DataFrame frame{{0x5A, 0xA5, 0x00, 0x00, command}, 0};
    frame.data_sum = append_data(frame.bytes, address, count, image);
    set_length(frame.bytes, 2, frame.bytes.size() + 3);
    close_with_sum16(frame.bytes);
    return frame;
}

Frame build_short_command(std::uint8_t command, std::span<const std::uint8_t> body) {
    Frame frame = opened(command);
    frame.insert(frame.end(), body.begin(), body.end());
    close_with_sum(frame);
    return frame;
}

Frame build_board_command(std::uint8_t command, std::uint8_t family, std::uint8_t parameter,
                          bool use_crc) {
    Frame frame = opened(command);
    for (const std::uint8_t field : {family, parameter, std::uint8_t{0x36}, std::uint8_t{0x01}})
        frame.push_back(field);
    if (use_crc)
        close_with_crc(frame);
    else
        close_with_sum(frame);
    return frame;
}

Frame build_demo_command(std::uint8_t command) {
    Frame frame = {0x5A, 0xA5, 0x00, 0x08, command};
    close_with_sum16(frame);
    return frame;
}

std::optional<Frame> build_trigger(std::uint8_t command) {
    const auto found = std::find_if(triggers.begin(), triggers.end(),
                                    [&](const Trigger& row) { return row.command == command; });
    if (found == triggers.end()) return std::nullopt;
    return Frame{0xFE, 0xFE, 0xFE, 0xFE,    0x46,       0xB9,
                 0x6A, 0x00, 0x06, command, found->sum, end_mark};
}

}  // namespace vkm
