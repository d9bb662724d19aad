// Layers for the port's side of the seam: one that only passes on, and one that
// makes mistakes. A test's own layer inherits the first and overrides a call or
// two.
#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <vector>

#include "platform/serial_port.h"
#include "support/virtual_loop.h"

namespace vkm::test {

class ForwardingPort : public SerialPort {
  public:
    explicit ForwardingPort(SerialPort& below) : below_(below) {}

    void set_port_number(int number) override { below_.set_port_number(number); }
    int port_number() const override { return below_.port_number(); }
    bool set_settings(std::string_view settings) override { return below_.set_settings(settings); }
    std::string settings() const override { return below_.settings(); }
    int open() override { return below_.open(); }
    std::string reason_text() const override { return below_.reason_text(); }
    void close() override { below_.close(); }
    bool is_open() const override { return below_.is_open(); }
    void set_read_length(int length) override { below_.set_read_length(length); }
    std::vector<std::uint8_t> read() override { return below_.read(); }
    std::size_t input_count() const override { return below_.input_count(); }
    void clear_input() override { below_.clear_input(); }
    std::size_t output_count() const override { return below_.output_count(); }
    std::size_t held_output() const override { return below_.held_output(); }
    void clear_output() override { below_.clear_output(); }
    bool has_wire() const override { return below_.has_wire(); }
    void write(std::span<const std::uint8_t> bytes) override { below_.write(bytes); }

  protected:
    SerialPort& below_;
};

enum class PortFault {
    lose,    // it never comes
    damage,  // a bit of it is turned over: of a frame its middle byte, of a byte bit 0
    twice,   // it comes twice
    late,    // it comes `delay` later
    cut_off  // of a frame the second half is lost; of a byte it and all that follow at once
};

// Faults at the Nth frame written or the Nth byte received, both counted from 1
// when the layer is made or reset(). The two-byte pulses that seek a chip are no
// frames, so N doesn't hang on how long a chip was waited for.
class FaultyPort final : public ForwardingPort {
  public:
    FaultyPort(SerialPort& below, VirtualLoop& loop) : ForwardingPort(below), loop_(loop) {}

    // ---- the test's side ------------------------------------------------------
    void fault_frame(int nth, PortFault fault) { frame_faults_[nth] = fault; }
    void fault_byte(int nth, PortFault fault) { byte_faults_[nth] = fault; }
    Microseconds delay = std::chrono::milliseconds(20);
    void reset();

    int frames = 0;  // written so far
    int bytes = 0;   // received so far
    int struck = 0;  // faults that came to pass; a sweep is over when a run ends with 0

    // ---- the seam -----------------------------------------------------------
    void close() override;
    std::vector<std::uint8_t> read() override;
    std::size_t input_count() const override;
    void clear_input() override;
    void set_read_length(int length) override { read_length_ = length; }
    void write(std::span<const std::uint8_t> bytes) override;

  private:
    void take_in();

    VirtualLoop& loop_;
    std::map<int, PortFault> frame_faults_;
    std::map<int, PortFault> byte_faults_;
    std::deque<std::uint8_t> input_;
    Instant cut_off_until_{};  // bytes that came in up to then are lost
    int read_length_ = 0;
};

}  // namespace vkm::test
