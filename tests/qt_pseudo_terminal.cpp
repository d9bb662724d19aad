#include "qt_pseudo_terminal.h"

#include <asm/termbits.h>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdlib>
#include <stdexcept>

namespace vkm::test {
namespace {

void make_raw(int file) {
    termios2 settings{};
    ::ioctl(file, TCGETS2, &settings);
    settings.c_iflag = 0;
    settings.c_oflag = 0;
    settings.c_lflag = 0;
    ::ioctl(file, TCSETS2, &settings);
}

}  // namespace

PseudoTerminal::PseudoTerminal(std::string path) : path_(std::move(path)) {
    far_end_ = ::posix_openpt(O_RDWR | O_NOCTTY);
    if (::grantpt(far_end_) != 0 || ::unlockpt(far_end_) != 0)
        throw std::runtime_error("no pseudo-terminal");
    const char* name = ::ptsname(far_end_);
    near_end_ = ::open(name, O_RDWR | O_NOCTTY);
    make_raw(near_end_);
    ::fcntl(far_end_, F_SETFL, O_NONBLOCK);
    ::unlink(path_.c_str());
    if (::symlink(name, path_.c_str()) != 0) throw std::runtime_error("no link");
    writable_ = std::make_unique<QSocketNotifier>(far_end_, QSocketNotifier::Write);
    writable_->setEnabled(false);
    QObject::connect(writable_.get(), &QSocketNotifier::activated, writable_.get(),
                     [this] { pump(); });
}

PseudoTerminal::~PseudoTerminal() {
    pull_plug();
}

void PseudoTerminal::send(const std::vector<std::uint8_t>& bytes) {
    to_send_.insert(to_send_.end(), bytes.begin(), bytes.end());
    pump();
}

// As much as the terminal takes; the rest when it has room again.
void PseudoTerminal::pump() {
    const auto count = ::write(far_end_, to_send_.data(), to_send_.size());
    if (count > 0) to_send_.erase(to_send_.begin(), to_send_.begin() + count);
    writable_->setEnabled(!to_send_.empty());
}

const std::vector<std::uint8_t>& PseudoTerminal::heard() {
    std::uint8_t room[4096];
    while (far_end_ >= 0) {
        const auto count = ::read(far_end_, room, sizeof room);
        if (count <= 0) break;
        heard_.insert(heard_.end(), room, room + count);
    }
    return heard_;
}

PseudoTerminal::Line PseudoTerminal::line() const {
    termios2 settings{};
    ::ioctl(near_end_, TCGETS2, &settings);
    const auto flags = settings.c_cflag;
    const auto size = flags & CSIZE;
    Line line;
    line.baud = settings.c_ospeed;
    line.data_bits = size == CS8 ? 8 : size == CS7 ? 7 : size == CS6 ? 6 : 5;
    line.parity = (flags & PARENB) == 0 ? 'n' : (flags & PARODD) != 0 ? 'o' : 'e';
    line.stop_bits = (flags & CSTOPB) != 0 ? 2 : 1;
    return line;
}

void PseudoTerminal::pull_plug() {
    if (far_end_ < 0) return;
    writable_.reset();
    ::close(near_end_);
    ::close(far_end_);
    far_end_ = near_end_ = -1;
    ::unlink(path_.c_str());
}

}  // namespace vkm::test
