// The serial port of the tests, at one end of a VirtualLine. It does what the
// seam asks of a real one, waits in close() and set_settings() included.
#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "platform/serial_port.h"
#include "support/virtual_loop.h"

namespace vkm::test {

// The error numbers of open().
inline constexpr int error_missing = 2;   // there is no such port
inline constexpr int error_denied = 13;   // it is there, and not for this user
inline constexpr int error_busy = 16;     // another program has it, or it is open already
inline constexpr int error_refused = 22;  // the device doesn't take these settings

// One call of write().
struct Written {
    Instant at;
    std::vector<std::uint8_t> bytes;
    std::string settings;    // in force then
    std::size_t unsent = 0;  // bytes that were still in the output before it
};

class VirtualPort final : public SerialPort {
  public:
    VirtualPort(VirtualLoop& loop, VirtualLine& line) : loop_(loop), line_(line) {}

    // ---- the seam -----------------------------------------------------------
    void set_port_number(int number) override { number_ = number; }
    int port_number() const override { return number_; }
    bool set_settings(std::string_view settings) override;
    std::string settings() const override { return settings_; }
    int open() override;
    std::string reason_text() const override { return reason_; }
    void close() override;
    bool is_open() const override { return open_; }
    void set_read_length(int length) override { read_length_ = length; }
    std::vector<std::uint8_t> read() override;
    std::size_t input_count() const override { return open_ ? line_.input.size() : 0; }
    void clear_input() override { line_.input.clear(); }
    std::size_t output_count() const override { return open_ ? line_.unsent() : 0; }
    std::size_t held_output() const override { return output_count(); }
    void clear_output() override { line_.drop_unsent(loop_.now()); }
    bool has_wire() const override { return open_ && wired; }
    void write(std::span<const std::uint8_t> bytes) override;

    // ---- the test's side ------------------------------------------------------

    std::set<int> present = {1};        // numbers of the ports that there are
    std::map<int, int> open_error;      // by port number: what opening it gives
    std::set<int> refused_baud;         // rates that the device can't do
    std::map<int, int> nth_open_error;  // the Nth open() from now on, 1 the first, fails with it

    // Its reasons: "COM1: error 2", "COM1: no such settings", "COM1: unplugged".

    // The device goes: the port reads as closed, and its number is gone.
    void unplug();
    void plug(int number) { present.insert(number); }

    int opens = 0;                    // calls of open()
    int openings = 0;                 // those that opened it
    std::vector<int> opened_numbers;  // at each opening
    int closings = 0;
    std::vector<Written> written;                // every write to the open port
    std::vector<std::string> settings_in_force;  // each time that a rate came to the wire

    // False makes it a port that calls itself a device without a wire.
    bool wired = true;

    // False makes it a bad port that doesn't wait for the output when it closes
    // or changes its rate; the line then tells.
    bool waits_for_output = true;

  private:
    int refuse(int error);
    void wait_for_output();
    void listen(const std::string& settings);

    VirtualLoop& loop_;
    VirtualLine& line_;
    int number_ = 1;
    std::string settings_ = "9600,n,8,1";
    bool open_ = false;
    std::string reason_;
    int open_number_ = 0;
    int read_length_ = 0;
};

}  // namespace vkm::test
