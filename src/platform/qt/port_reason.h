// Why the system refuses a port: asked of the system, told to people together
// with what to do about it.
#pragma once

#include <QSerialPort>
#include <string>

namespace vkm {

struct PortReason {
    int error = 0;     // the system's positive error number; 0: nothing is wrong
    std::string text;  // in both languages; empty when nothing is wrong
};

struct FailedOpen {
    std::string name;      // as in the lists: "COM3"
    std::string device;    // path, possibly empty
    std::string settings;  // what it was asked for
    QSerialPort::SerialPortError error = QSerialPort::NoError;
};

// Takes some milliseconds: it looks who holds the device.
PortReason reason_of(const FailedOpen& failed);

// The device doesn't take these settings.
PortReason reason_of_refused_settings(const std::string& name, const std::string& settings);

// The device went away while the port was open.
PortReason reason_of_lost_device(const std::string& name);

}  // namespace vkm
