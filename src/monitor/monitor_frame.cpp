#include "monitor/monitor_frame.h"

#include <cstddef>
#include <numeric>

namespace vkm {
namespace {

constexpr std::uint8_t first_of_mark = 0xA5;
constexpr std::uint8_t second_of_mark = 0x5A;
constexpr std::uint8_t start_of_frame = 0xAA;
constexpr int length_known_at = 3;  // bytes

static_assert(longest_monitor_frame <= rx_frame_size);

void clear_mark(MonitorState& monitor) {
    monitor.seen_A5 = false;
    monitor.seen_5A = false;
}

// A byte that doesn't go on with the mark ends it, and is not looked at again.
void hunt(MonitorState& monitor, std::uint8_t byte) {
    if (monitor.seen_A5)
        monitor.seen_A5 = monitor.seen_5A = byte == second_of_mark;
    else
        monitor.seen_A5 = byte == first_of_mark;
}

// Only a frame's start may stand behind the mark, and a frame that grows too long
// is none.
void store(LinkState& link, MonitorState& monitor, std::uint8_t byte) {
    const bool starts = link.rx_count == 0 && byte == start_of_frame;
    const bool goes_on = link.rx_count > 0 && link.rx_count < longest_monitor_frame;
    if (!starts && !goes_on) return forget_dump(link, monitor);
    link.rx_frame[static_cast<std::size_t>(link.rx_count++)] = byte;
}

bool at_its_end(const LinkState& link) {
    if (link.rx_count < length_known_at) return false;
    const int length = link.rx_frame[1] * 256 + link.rx_frame[2];
    return length > 0 && link.rx_count >= length;
}

// A length below 3 is reached as soon as it is known, and its sum is never right.
bool sum_is_right(const LinkState& link) {
    const auto length = static_cast<std::size_t>(link.rx_frame[1] * 256 + link.rx_frame[2]);
    const std::span frame = std::span(link.rx_frame).first(length);
    const int sum = std::accumulate(frame.begin(), frame.end() - 1, 0);
    return frame.back() == static_cast<std::uint8_t>(sum);
}

}  // namespace

Gathered_Dump gather_dump(LinkState& link, MonitorState& monitor,
                          std::span<const std::uint8_t>& bytes) {
    while (!bytes.empty()) {
        const std::uint8_t byte = bytes.front();
        bytes = bytes.subspan(1);
        if (!monitor.seen_5A) {
            hunt(monitor, byte);
            continue;
        }
        store(link, monitor, byte);
        if (!at_its_end(link)) continue;
        if (sum_is_right(link)) return Gathered_Dump::whole;
        link.rx_count = 0;
        bytes = {};
        return Gathered_Dump::wrong_sum;
    }
    return monitor.seen_5A ? Gathered_Dump::incomplete : Gathered_Dump::hunting;
}

void forget_dump(LinkState& link, MonitorState& monitor) {
    clear_mark(monitor);
    link.rx_count = 0;
    link.rx_frame[0] = 0;
    link.rx_frame[1] = 0;
}

}  // namespace vkm
