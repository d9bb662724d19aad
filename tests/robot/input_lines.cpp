#include "robot/input_lines.h"

#include <unistd.h>

#include <array>
#include <cerrno>

namespace vkm::robot {

Input_Lines::Input_Lines(std::function<void(const QByteArray&)> line, std::function<void()> end)
    : line_(std::move(line)), end_(std::move(end)), notifier_(STDIN_FILENO, QSocketNotifier::Read) {
    QObject::connect(&notifier_, &QSocketNotifier::activated, &notifier_, [this] { read(); });
}

void Input_Lines::read() {
    std::array<char, 4096> room{};
    const ssize_t count = ::read(STDIN_FILENO, room.data(), room.size());
    if (count < 0 && (errno == EINTR || errno == EAGAIN)) return;
    if (count <= 0) {
        notifier_.setEnabled(false);
        if (!started_.isEmpty()) line_(started_);
        return end_();
    }
    started_.append(room.data(), count);
    for (auto end = started_.indexOf('\n'); end >= 0; end = started_.indexOf('\n')) {
        line_(started_.left(end));
        started_.remove(0, end + 1);
    }
}

}  // namespace vkm::robot
