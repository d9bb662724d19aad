#include "support/virtual_port.h"

#include "platform/port_settings.h"

namespace vkm::test {

bool VirtualPort::set_settings(std::string_view settings) {
    const auto wanted = parse_port_settings(settings);
    const bool refused = !wanted || (open_ && refused_baud.contains(wanted->baud));
    if (refused) {
        reason_ = "COM" + std::to_string(number_) + ": no such settings";
        return false;
    }
    if (open_) {
        if (settings != settings_) {
            wait_for_output();
            listen(std::string(settings));
        }
    }
    settings_ = settings;
    return true;
}

int VirtualPort::open() {
    ++opens;
    const auto nth = nth_open_error.find(opens);
    if (nth != nth_open_error.end()) return refuse(nth->second);
    if (open_) return error_busy;
    if (!present.contains(number_)) return refuse(error_missing);
    const auto error = open_error.find(number_);
    if (error != open_error.end()) return refuse(error->second);
    if (refused_baud.contains(parse_port_settings(settings_)->baud)) return refuse(error_refused);
    open_ = true;
    reason_.clear();
    open_number_ = number_;
    ++openings;
    opened_numbers.push_back(number_);
    listen(settings_);
    return 0;
}

int VirtualPort::refuse(int error) {
    reason_ = "COM" + std::to_string(number_) + ": error " + std::to_string(error);
    return error;
}

void VirtualPort::close() {
    if (!open_) return;
    wait_for_output();
    line_.host_closes(loop_.now());
    open_ = false;
    ++closings;
}

void VirtualPort::unplug() {
    present.erase(open_ ? open_number_ : number_);
    if (!open_) return;
    line_.cut(loop_.now());
    open_ = false;
    reason_ = "COM" + std::to_string(open_number_) + ": unplugged";
}

std::vector<std::uint8_t> VirtualPort::read() {
    std::vector<std::uint8_t> bytes;
    if (!open_) return bytes;
    const std::size_t count = read_length_ == 1 && !line_.input.empty() ? 1 : line_.input.size();
    const auto end = line_.input.begin() + static_cast<std::ptrdiff_t>(count);
    bytes.assign(line_.input.begin(), end);
    line_.input.erase(line_.input.begin(), end);
    return bytes;
}

void VirtualPort::write(std::span<const std::uint8_t> bytes) {
    if (!open_ || bytes.empty()) return;
    written.push_back({loop_.now(), {bytes.begin(), bytes.end()}, settings_, line_.unsent()});
    line_.host_writes(loop_.now(), bytes);
}

void VirtualPort::wait_for_output() {
    if (waits_for_output) loop_.let_line_run(line_.idle_at());
}

void VirtualPort::listen(const std::string& settings) {
    settings_in_force.push_back(settings);
    line_.host_listens(loop_.now(), parse_port_settings(settings)->baud);
}

}  // namespace vkm::test
