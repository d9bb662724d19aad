// A pseudo-terminal whose other side looks to a host like a serial port, with a
// link to it of a name that stays.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace vkm::sim {

class PseudoTerminal {
  public:
    PseudoTerminal() = default;
    PseudoTerminal(const PseudoTerminal&) = delete;
    PseudoTerminal& operator=(const PseudoTerminal&) = delete;
    ~PseudoTerminal() { unplug(); }

    // Makes the terminal and, if a path is given, a symbolic link to it there; a
    // link that stands there already gives way, anything else does not. Empty, or
    // what went wrong.
    std::string plug(const std::string& link);

    // The host sees its port vanish.
    void unplug();

    bool plugged() const { return master_ >= 0; }
    int descriptor() const { return master_; }
    const std::string& device() const { return device_; }

    // Baud, as the host has set it. A terminal that is just being set can't tell;
    // then it is what it was before.
    double host_rate();

    // What the host has written; never waits.
    std::vector<std::uint8_t> read();

    // So many of the bytes have found room; the host has to read before the others do.
    std::size_t write(std::span<const std::uint8_t> bytes);

  private:
    std::string make();
    std::string make_link(const std::string& link);

    int master_ = -1;
    int slave_ = -1;  // kept open, so that a host that closes its port leaves it alive
    double host_rate_ = 0;
    std::string device_;
    std::string link_;
};

}  // namespace vkm::sim
