// The devices behind COM1 to COM16.
//
// Where the system numbers its ports itself these are its own. Elsewhere the
// numbers are kept in the settings, section "Ports", keys "COM1" to "COM16",
// each with the most stable path that its device has. The list follows plugs
// within a second.
#pragma once

#include <QFileSystemWatcher>
#include <QTimer>
#include <array>
#include <string>

#include "platform/port_numbers.h"
#include "platform/settings_store.h"

namespace vkm {

class PortRegistry {
  public:
    // `settings` must outlive the registry.
    explicit PortRegistry(SettingsStore& settings);

    // Takes the device for the number in this run, whatever the settings say.
    void use(int number, std::string device);

    // The path or name to open, empty when the number has no device. The device
    // may be unplugged.
    std::string device(int number) const;

    // What is known of it, for people: "USB Serial Port (ttyUSB0)", or that it is
    // unplugged; empty when the number has no device.
    std::string note(int number) const;

    // Grows with every change of the above.
    int version() const { return version_; }

  private:
    struct Port {
        std::string device;
        std::string note;
        bool fixed = false;  // by use()
        bool operator==(const Port&) const = default;
    };

    void look();
    void number_devices(const std::vector<std::string>& present);
    void look_again();
    Port& port(int number) { return ports_[static_cast<std::size_t>(number - 1)]; }

    SettingsStore& settings_;
    std::array<Port, port_number_count> ports_;
    int version_ = 0;
    QFileSystemWatcher watcher_;
    QTimer again_;
    int patience_ = 0;  // looks that a plugged adapter still has to get its stable name
};

}  // namespace vkm
