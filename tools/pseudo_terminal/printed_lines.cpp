#include "pseudo_terminal/printed_lines.h"

#include <limits.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace vkm::sim {
namespace {

constexpr std::size_t most_waiting = 64 * 1024;

// Room for so many bytes as a write takes without waiting.
bool has_room(int descriptor, std::chrono::milliseconds patience) {
    pollfd out{descriptor, POLLOUT, 0};
    return poll(&out, 1, static_cast<int>(patience.count())) == 1;
}

}  // namespace

void PrintedLines::answer(std::string_view line) {
    waiting_ += line;
    waiting_ += '\n';
    print();
}

void PrintedLines::news(std::string_view line) {
    if (!too_many()) answer(line);
}

bool PrintedLines::too_many() const {
    return waiting_.size() >= most_waiting;
}

// Room is promised for PIPE_BUF bytes and no more: a longer write would wait.
void PrintedLines::print() {
    std::size_t printed = 0;
    while (printed < waiting_.size() && has_room(descriptor_, std::chrono::milliseconds{0})) {
        const std::size_t count = std::min<std::size_t>(waiting_.size() - printed, PIPE_BUF);
        const ssize_t written = write(descriptor_, waiting_.data() + printed, count);
        if (written < 0 && errno == EAGAIN) break;
        // Nobody will ever read it.
        if (written <= 0)
            printed = waiting_.size();
        else
            printed += static_cast<std::size_t>(written);
    }
    waiting_.erase(0, printed);
}

void PrintedLines::finish(std::chrono::milliseconds at_most) {
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + at_most;
    for (print(); wait(); print()) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now());
        if (left.count() <= 0 || !has_room(descriptor_, left)) return;
    }
}

}  // namespace vkm::sim
