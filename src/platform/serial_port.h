// The one serial port: what the link and the terminal need of it.
//
// Every call is synchronous. Bytes that arrive are held until they are read;
// that some are waiting is told by the event loop between two of its turns,
// never from inside a call to the port. A device that vanishes reads as closed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace vkm {

// Port numbers are those of the lists COM1 to COM16.
inline constexpr int lowest_port_number = 1;
inline constexpr int highest_port_number = 16;

class SerialPort {
  public:
    virtual ~SerialPort() = default;

    // Takes effect at the next open. No events run.
    virtual void set_port_number(int number) = 0;
    virtual int port_number() const = 0;

    // "115200,n,8,1": baud, first letter of the parity (n, e, o), data bits,
    // stop bits. On an open port the change waits until the bytes already
    // written have left the wire (at most their time on the wire plus a
    // margin); no events run meanwhile. False when the device or the text
    // refuses; the settings before stay in force then.
    virtual bool set_settings(std::string_view settings) = 0;
    virtual std::string settings() const = 0;

    // 0 when the port is open afterwards, otherwise the system's positive error
    // number. Opening an open port is an error. No events run.
    virtual int open() = 0;

    // Why the last open or change of settings failed, or why the port closed by
    // itself, as people are told; empty once it has been opened well.
    virtual std::string reason_text() const = 0;

    // Waits like set_settings until written bytes have left the wire. Closing a
    // closed port does nothing.
    virtual void close() = 0;
    virtual bool is_open() const = 0;

    // How many bytes a read takes: 0 all that are waiting, 1 one byte.
    virtual void set_read_length(int length) = 0;

    // The bytes waiting, as the read length tells; possibly none. Never waits.
    virtual std::vector<std::uint8_t> read() = 0;

    virtual std::size_t input_count() const = 0;
    virtual void clear_input() = 0;

    // Bytes written that have not yet left the wire.
    virtual std::size_t output_count() const = 0;

    // Those of them that lie with the system still, and not in the device: clear_output
    // drops them.
    virtual std::size_t held_output() const = 0;
    virtual void clear_output() = 0;

    // Bytes take their time to the other end, so that nothing there can answer a
    // frame before all of it has left. False for a device without a wire (a
    // pseudo-terminal) and while the port is closed.
    virtual bool has_wire() const = 0;

    // Queues bytes for sending, without waiting. On a closed port nothing happens.
    virtual void write(std::span<const std::uint8_t> bytes) = 0;
};

}  // namespace vkm
