// A pseudo-terminal whose other side looks to a host like a serial port, with a
// link to it of a name that stays.
#pragma once

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

    double host_rate() const;  // baud

    // What the host has written; never waits.
    std::vector<std::uint8_t> read();

    // Bytes that find no room, because the host reads nothing, are lost as in a
    // receiver that overruns.
    void write(std::span<const std::uint8_t> bytes);

  private:
    std::string make();
    std::string make_link(const std::string& link);

    int master_ = -1;
    int slave_ = -1;  // kept open, so that a host that closes its port leaves it alive
    std::string device_;
    std::string link_;
};

}  // namespace vkm::sim
