// The far end of a serial line, on a pseudo-terminal in this process.
#pragma once

#include <QSocketNotifier>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace vkm::test {

class PseudoTerminal {
  public:
    // The device appears under this path, as a link.
    explicit PseudoTerminal(std::string path);
    ~PseudoTerminal();
    PseudoTerminal(const PseudoTerminal&) = delete;
    PseudoTerminal& operator=(const PseudoTerminal&) = delete;

    const std::string& path() const { return path_; }

    void send(const std::vector<std::uint8_t>& bytes);
    // Everything that has come out here so far.
    const std::vector<std::uint8_t>& heard();

    // The rate and the other settings as the kernel has them.
    struct Line {
        double baud = 0;
        int data_bits = 0;
        char parity = 'n';
        int stop_bits = 0;
    };
    Line line() const;

    void pull_plug();

  private:
    void pump();

    std::string path_;
    int far_end_ = -1;
    int near_end_ = -1;  // kept open, so that the far end hears nothing of a port that closes
    std::vector<std::uint8_t> to_send_;
    std::vector<std::uint8_t> heard_;
    std::unique_ptr<QSocketNotifier> writable_;
};

}  // namespace vkm::test
