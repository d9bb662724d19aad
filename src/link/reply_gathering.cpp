#include "link/reply_gathering.h"

#include <algorithm>

#include "link/frames.h"

namespace vkm {
namespace {

constexpr std::uint8_t sync_first = 0x46;
constexpr std::uint8_t sync_second = 0xB9;
constexpr std::uint8_t reply_start = 0x68;
constexpr std::uint8_t demo_first = 0x5A;
constexpr std::uint8_t demo_second = 0xA5;
constexpr std::uint8_t end_mark = 0x16;

// Bytes up to and with the length field.
constexpr int length_known = 3;
constexpr int demo_length_known = 4;

// Below this a length points into its own field: such a frame has no end mark.
constexpr int shortest_frame = 4;

void append(LinkState& link, std::span<const std::uint8_t> bytes) {
    const auto room = static_cast<std::size_t>(rx_frame_size - link.rx_count);
    const std::size_t n = std::min(bytes.size(), room);
    std::copy_n(bytes.begin(), n, link.rx_frame.begin() + link.rx_count);
    link.rx_count += static_cast<int>(n);
}

std::uint8_t at(const LinkState& link, int index) {
    return link.rx_frame[static_cast<std::size_t>(index)];
}

std::span<const std::uint8_t> first(const LinkState& link, int count) {
    return std::span(link.rx_frame).first(static_cast<std::size_t>(count));
}

void forget(LinkState& link) {
    forget_demo_reply(link);
    link.seen_46 = false;
    link.seen_B9 = false;
}

Gathered forget_bad_mark(LinkState& link) {
    link.rx_frame[0] = 0;
    forget(link);
    return Gathered::bad_mark;
}

enum class Length { unknown, incomplete, complete, impossible };

// Only a length field that has arrived counts: rx_expected of the frame before
// must not end this one.
Length judge_length(LinkState& link, int known_from) {
    if (link.rx_count < known_from) return Length::unknown;
    link.rx_expected = at(link, known_from - 2) * 256 + at(link, known_from - 1);
    // No frame has such a length: it came out of noise, which would otherwise keep
    // the link deaf (a line that breaks at power-up reads as zeros).
    if (link.rx_expected < shortest_frame || link.rx_expected > rx_frame_size)
        return Length::impossible;
    if (link.rx_count < link.rx_expected) return Length::incomplete;
    return Length::complete;
}

bool ends_with_mark(const LinkState& link) {
    return at(link, link.rx_expected - 1) == end_mark;
}

// Takes bytes off the front until 46 B9 has been seen; false when they run out.
// A second 46 in place of the B9 starts the hunt anew, it is not its first byte.
bool hunt(LinkState& link, std::span<const std::uint8_t>& bytes) {
    const auto take = [&] {
        const std::uint8_t byte = bytes.front();
        bytes = bytes.subspan(1);
        return byte;
    };
    while (!link.seen_B9 || !link.seen_46) {
        if (bytes.empty()) return false;
        const std::uint8_t byte = take();
        if (!link.seen_46) {
            link.seen_46 = byte == sync_first;
            if (link.seen_46) link.seen_B9 = false;
        } else {
            link.seen_B9 = byte == sync_second;
            link.seen_46 = link.seen_B9;
        }
    }
    return true;
}

Gathered check_sum(LinkState& link) {
    const int L = link.rx_expected;
    if (sum8(first(link, L - 2)) != at(link, L - 2)) {
        link.reply_gap_or_bad = true;
        forget(link);
        return Gathered::bad_check;
    }
    link.frame_ok = true;
    link.seen_46 = false;
    link.seen_B9 = false;
    return Gathered::frame;
}

// A board frame with a wrong CRC stays in the buffer: its waits end on the flag.
Gathered check_crc(LinkState& link) {
    const int L = link.rx_expected;
    const auto crc = crc16(first(link, L - 3));
    const bool good = crc[0] == at(link, L - 3) && crc[1] == at(link, L - 2);
    (good ? link.frame_ok : link.reply_gap_or_bad) = true;
    return good ? Gathered::frame : Gathered::bad_check;
}

Gathered check_demo_sum(LinkState& link) {
    const int L = link.rx_expected;
    const std::uint16_t sum = sum16(first(link, L - 3));
    if (at(link, L - 3) * 256 + at(link, L - 2) != sum) {
        forget(link);
        return Gathered::bad_check;
    }
    link.demo_frame_ok = true;
    return Gathered::frame;
}

// The opening 5A A5, a byte at a time; the rest of the batch belongs to the frame.
void take_demo_bytes(LinkState& link, std::span<const std::uint8_t>& bytes) {
    if (link.rx_count >= 2) {
        append(link, bytes);
        bytes = {};
        return;
    }
    const std::uint8_t wanted = link.rx_count == 0 ? demo_first : demo_second;
    if (bytes.front() == wanted) {
        append(link, bytes.first(1));
    } else {
        link.rx_frame[0] = 0;
        link.rx_count = 0;
    }
    bytes = bytes.subspan(1);
}

}  // namespace

void forget_reply(LinkState& link) {
    link.rx_count = 0;
    link.frame_ok = false;
}

void forget_demo_reply(LinkState& link) {
    forget_reply(link);
    link.demo_frame_ok = false;
}

Gathered gather_reply(LinkState& link, std::span<const std::uint8_t> bytes) {
    if (link.hunt_header && link.rx_count == 0 && !hunt(link, bytes)) return Gathered::incomplete;
    if (!link.receive_enabled) return Gathered::incomplete;
    if (link.rx_count == 0) {
        const auto start = std::find(bytes.begin(), bytes.end(), reply_start);
        bytes = bytes.subspan(static_cast<std::size_t>(start - bytes.begin()));
    }
    append(link, bytes);
    switch (judge_length(link, length_known)) {
        case Length::unknown:
        case Length::incomplete:
            return Gathered::incomplete;
        case Length::impossible:
            return forget_bad_mark(link);
        case Length::complete:
            break;
    }
    if (!ends_with_mark(link)) return forget_bad_mark(link);
    return link.use_crc ? check_crc(link) : check_sum(link);
}

Gathered gather_demo_reply(LinkState& link, std::span<const std::uint8_t> bytes) {
    while (!bytes.empty()) {
        take_demo_bytes(link, bytes);
        switch (judge_length(link, demo_length_known)) {
            case Length::unknown:
            case Length::incomplete:
                continue;
            case Length::impossible:
                return forget_bad_mark(link);
            case Length::complete:
                break;
        }
        return ends_with_mark(link) ? check_demo_sum(link) : forget_bad_mark(link);
    }
    return Gathered::incomplete;
}

}  // namespace vkm
