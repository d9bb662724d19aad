// The serial port on QSerialPort.
//
// Bytes go to the system at once; what the system can't tell, when they have
// left the wire, is reckoned by a WireClock. A device that vanishes reads as
// closed from that moment on. No call lets events run.
#pragma once

#include <QSerialPort>
#include <functional>
#include <string>

#include "platform/port_settings.h"
#include "platform/qt/port_reason.h"
#include "platform/qt/port_registry.h"
#include "platform/serial_port.h"
#include "platform/wire_clock.h"

namespace vkm {

class QtSerialPort final : public SerialPort {
  public:
    // `ports` must outlive the port.
    explicit QtSerialPort(const PortRegistry& ports);
    ~QtSerialPort() override;

    // ---- the seam ----
    void set_port_number(int number) override { number_ = number; }
    int port_number() const override { return number_; }
    bool set_settings(std::string_view settings) override;
    std::string settings() const override { return settings_; }
    int open() override;
    std::string reason_text() const override { return reason_.text; }
    void close() override;
    bool is_open() const override;
    void set_read_length(int length) override { read_length_ = length; }
    std::vector<std::uint8_t> read() override;
    std::size_t input_count() const override;
    void clear_input() override;
    std::size_t output_count() const override;
    std::size_t held_output() const override;
    void clear_output() override;
    bool has_wire() const override { return is_open() && shifts_bits_; }
    void write(std::span<const std::uint8_t> bytes) override;

    // ---- for the edge ----

    // Called when bytes have arrived or the device has gone. It must not run
    // operations: it is called from inside the toolkit.
    std::function<void()> woken;

    // When output_count() will have changed: an instant for the event loop to
    // wake at, `never` while nothing is unsent.
    Instant next_departure(Instant now) const;

    // The number of the open port, 0 while it is closed.
    int open_number() const { return is_open() ? open_number_ : 0; }

    // Why the last open failed, or why the port closed by itself; without a text
    // since the port has been opened well.
    const PortReason& reason() const { return reason_; }

  private:
    std::string name() const;
    int refuse(PortReason reason);
    bool apply(const PortSettings& settings);
    bool runs_at(std::int32_t baud) const;
    std::size_t held_by_system() const;
    void wait_for_output();
    void take_error(QSerialPort::SerialPortError error);

    const PortRegistry& ports_;
    QSerialPort port_;
    bool lost_ = false;  // the device went away, and port_ isn't closed yet
    bool shifts_bits_ = true;
    int number_ = 1;
    int open_number_ = 0;
    int read_length_ = 0;
    std::string settings_ = "9600,n,8,1";
    WireClock clock_;
    PortReason reason_;
};

}  // namespace vkm
