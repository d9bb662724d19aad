#include "support/faulty_port.h"

namespace vkm::test {
namespace {

constexpr std::size_t pulse_size = 2;

}  // namespace

void FaultyPort::reset() {
    frame_faults_.clear();
    byte_faults_.clear();
    frames = bytes = struck = 0;
    cut_off_until_ = Instant{};
}

void FaultyPort::write(std::span<const std::uint8_t> frame) {
    if (frame.size() <= pulse_size || !is_open()) return below_.write(frame);
    const auto fault = frame_faults_.find(++frames);
    if (fault == frame_faults_.end()) return below_.write(frame);
    ++struck;
    std::vector<std::uint8_t> changed(frame.begin(), frame.end());
    switch (fault->second) {
        case PortFault::lose:
            break;
        case PortFault::damage:
            changed[changed.size() / 2] ^= 0x10;
            below_.write(changed);
            break;
        case PortFault::twice:
            below_.write(frame);
            below_.write(frame);
            break;
        case PortFault::late:
            loop_.after(delay, [this, changed] { below_.write(changed); });
            break;
        case PortFault::cut_off:
            below_.write(frame.first(frame.size() / 2));
            break;
    }
}

void FaultyPort::take_in() {
    if (below_.input_count() == 0) return;
    below_.set_read_length(0);
    for (const std::uint8_t byte : below_.read()) {
        const auto fault = byte_faults_.find(++bytes);
        if (loop_.now() <= cut_off_until_) continue;
        if (fault == byte_faults_.end()) {
            input_.push_back(byte);
            continue;
        }
        ++struck;
        switch (fault->second) {
            case PortFault::lose:
                break;
            case PortFault::damage:
                input_.push_back(byte ^ 0x01);
                break;
            case PortFault::twice:
                input_.insert(input_.end(), 2, byte);
                break;
            case PortFault::late:
                loop_.after(delay, [this, byte] {
                    if (is_open()) input_.push_back(byte);
                });
                break;
            case PortFault::cut_off:
                cut_off_until_ = loop_.now() + delay;
                break;
        }
    }
}

void FaultyPort::close() {
    below_.close();
    input_.clear();
}

std::vector<std::uint8_t> FaultyPort::read() {
    take_in();
    if (!is_open()) input_.clear();
    const std::size_t count = read_length_ == 1 && !input_.empty() ? 1 : input_.size();
    const auto end = input_.begin() + static_cast<std::ptrdiff_t>(count);
    std::vector<std::uint8_t> taken(input_.begin(), end);
    input_.erase(input_.begin(), end);
    return taken;
}

std::size_t FaultyPort::input_count() const {
    // What came in meets its fault before it is counted.
    const_cast<FaultyPort*>(this)->take_in();
    return is_open() ? input_.size() : 0;
}

void FaultyPort::clear_input() {
    take_in();
    input_.clear();
}

}  // namespace vkm::test
