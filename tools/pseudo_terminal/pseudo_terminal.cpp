#include "pseudo_terminal/pseudo_terminal.h"

#include <fcntl.h>
#include <stdlib.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "pseudo_terminal/host_rate.h"

namespace vkm::sim {
namespace {

std::string reason(const std::string& what) {
    return what + ": " + std::strerror(errno);
}

bool set_raw(int terminal) {
    termios settings{};
    if (tcgetattr(terminal, &settings) != 0) return false;
    cfmakeraw(&settings);
    return tcsetattr(terminal, TCSANOW, &settings) == 0;
}

}  // namespace

std::string PseudoTerminal::plug(const std::string& link) {
    unplug();
    std::string error = make();
    if (error.empty() && !link.empty()) error = make_link(link);
    if (!error.empty()) unplug();
    return error;
}

std::string PseudoTerminal::make() {
    master_ = posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (master_ < 0) return reason("no pseudo-terminal");
    if (grantpt(master_) != 0 || unlockpt(master_) != 0) return reason("pseudo-terminal");
    std::array<char, 128> name{};
    if (ptsname_r(master_, name.data(), name.size()) != 0) return reason("pseudo-terminal");
    device_ = name.data();
    slave_ = open(name.data(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (slave_ < 0) return reason(device_);
    if (!set_raw(slave_) || !set_raw(master_)) return reason(device_);
    return {};
}

std::string PseudoTerminal::make_link(const std::string& link) {
    namespace fs = std::filesystem;
    std::error_code error;
    const auto there = fs::symlink_status(link, error);
    if (fs::exists(there) && !fs::is_symlink(there)) return link + ": is there and no link";
    // Made beside it and then moved over it, so that the name is never missing.
    const std::string fresh = link + "." + std::to_string(getpid());
    fs::remove(fresh, error);
    fs::create_symlink(device_, fresh, error);
    if (error) return link + ": " + error.message();
    fs::rename(fresh, link, error);
    if (error) {
        const std::string message = link + ": " + error.message();
        fs::remove(fresh, error);
        return message;
    }
    link_ = link;
    return {};
}

void PseudoTerminal::unplug() {
    namespace fs = std::filesystem;
    std::error_code error;
    // Another chip may have taken the name over.
    if (!link_.empty() && fs::read_symlink(link_, error) == fs::path(device_) && !error)
        fs::remove(link_, error);
    if (slave_ >= 0) close(slave_);
    if (master_ >= 0) close(master_);
    slave_ = master_ = -1;
    device_.clear();
    link_.clear();
}

double PseudoTerminal::host_rate() {
    const double rate = rate_of_terminal(master_);
    if (rate > 0) host_rate_ = rate;
    return host_rate_;
}

std::vector<std::uint8_t> PseudoTerminal::read() {
    std::vector<std::uint8_t> bytes;
    std::array<std::uint8_t, 4096> chunk;
    for (;;) {
        const ssize_t count = ::read(master_, chunk.data(), chunk.size());
        if (count <= 0) return bytes;
        bytes.insert(bytes.end(), chunk.begin(), chunk.begin() + count);
    }
}

std::size_t PseudoTerminal::write(std::span<const std::uint8_t> bytes) {
    std::size_t written = 0;
    while (written < bytes.size()) {
        const ssize_t count = ::write(master_, bytes.data() + written, bytes.size() - written);
        if (count <= 0) break;
        written += static_cast<std::size_t>(count);
    }
    return written;
}

}  // namespace vkm::sim
