#include "platform/qt/port_registry.h"

#include <QDir>
#include <QFileInfo>
#include <QSerialPortInfo>
#include <algorithm>
#include <chrono>

namespace vkm {
namespace {

using namespace std::chrono_literals;

// A plug makes a device node first and its stable name a moment later; an
// adapter is waited for at most three times as long before it is taken as it is.
constexpr auto settling = 300ms;
constexpr int patience_after_a_plug = 2;

// Where nothing tells of plugs the list is looked through this often.
[[maybe_unused]] constexpr auto look_interval = 900ms;

// Windows numbers its ports itself: "COM7".
#ifdef Q_OS_WIN
constexpr bool system_numbers_ports = true;
#else
constexpr bool system_numbers_ports = false;
#endif

constexpr const char* section = "Ports";
constexpr const char* stable_names = "/dev/serial/by-id";

std::string key_of(int number) {
    return "COM" + std::to_string(number);
}

bool is_valid(int number) {
    return number >= lowest_port_number && number <= highest_port_number;
}

struct Found {
    std::string path;  // the most stable one
    std::string note;
    bool is_settled = true;  // false: its stable name may still come
};

// The name that stays the same whichever socket the adapter is plugged into;
// empty when it has none.
QString stable_path(const QString& location) {
    const QString device = QFileInfo(location).canonicalFilePath();
    for (const QFileInfo& link : QDir(stable_names).entryInfoList(QDir::Files | QDir::System))
        if (link.canonicalFilePath() == device) return link.absoluteFilePath();
    return {};
}

std::string describe(const QSerialPortInfo& info) {
    const QString what = info.description().isEmpty() ? info.manufacturer() : info.description();
    if (what.isEmpty()) return info.portName().toStdString();
    return QStringLiteral("%1 (%2)").arg(what, info.portName()).toStdString();
}

Found find(const QSerialPortInfo& info) {
    if (system_numbers_ports) return {info.portName().toStdString(), describe(info)};
    const QString stable = stable_path(info.systemLocation());
    if (!stable.isEmpty()) return {stable.toStdString(), describe(info)};
    return {info.systemLocation().toStdString(), describe(info), !info.hasVendorIdentifier()};
}

std::vector<Found> devices_here() {
    std::vector<Found> found;
    for (const QSerialPortInfo& info : QSerialPortInfo::availablePorts())
        found.push_back(find(info));
    std::sort(found.begin(), found.end(),
              [](const Found& a, const Found& b) { return a.path < b.path; });
    return found;
}

// What to say of a device that isn't among those found: a path that somebody
// wrote into the settings, or an adapter that is unplugged.
std::string describe_unlisted(const std::string& device) {
    const QFileInfo info(QString::fromStdString(device));
    if (info.exists()) return device;
    return "未插 / unplugged: " + info.fileName().toStdString();
}

std::string note_of(const std::string& device, const std::vector<Found>& found) {
    if (device.empty()) return {};
    const auto here = std::find_if(found.begin(), found.end(),
                                   [&](const Found& each) { return each.path == device; });
    return here != found.end() ? here->note : describe_unlisted(device);
}

}  // namespace

PortRegistry::PortRegistry(SettingsStore& settings) : settings_(settings) {
    again_.setSingleShot(true);
    QObject::connect(&again_, &QTimer::timeout, &again_, [this] { look(); });
    QObject::connect(&watcher_, &QFileSystemWatcher::directoryChanged, &again_, [this] {
        if (again_.isActive()) return;
        patience_ = patience_after_a_plug;
        again_.start(settling);
    });
    look();
}

void PortRegistry::use(int number, std::string device) {
    if (!is_valid(number)) return;
    port(number) = {device, device, true};
    ++version_;
}

std::string PortRegistry::device(int number) const {
    return is_valid(number) ? ports_[static_cast<std::size_t>(number - 1)].device : std::string();
}

std::string PortRegistry::note(int number) const {
    return is_valid(number) ? ports_[static_cast<std::size_t>(number - 1)].note : std::string();
}

void PortRegistry::look() {
    std::vector<Found> found = devices_here();
    const bool wait = patience_ > 0 && !std::all_of(found.begin(), found.end(),
                                                    [](const Found& f) { return f.is_settled; });
    if (wait) std::erase_if(found, [](const Found& f) { return !f.is_settled; });
    patience_ = wait ? patience_ - 1 : 0;

    const auto before = ports_;
    std::vector<std::string> present;
    for (const Found& device : found) present.push_back(device.path);
    number_devices(present);
    for (Port& port : ports_)
        if (!port.fixed) port.note = note_of(port.device, found);
    if (ports_ != before) ++version_;
    look_again();
}

void PortRegistry::number_devices(const std::vector<std::string>& present) {
    PortNumbers numbers;
    for (int number = lowest_port_number; number <= highest_port_number; ++number) {
        std::string& device = numbers[static_cast<std::size_t>(number - 1)];
        if (!system_numbers_ports)
            device = settings_.get(section, key_of(number), "");
        else if (std::find(present.begin(), present.end(), key_of(number)) != present.end())
            device = key_of(number);
    }
    if (!system_numbers_ports && give_port_numbers(numbers, present)) {
        for (int number = lowest_port_number; number <= highest_port_number; ++number) {
            const std::string& device = numbers[static_cast<std::size_t>(number - 1)];
            if (!device.empty()) settings_.save(section, key_of(number), device);
        }
        settings_.flush();
    }
    for (std::size_t i = 0; i < ports_.size(); ++i)
        if (!ports_[i].fixed) ports_[i].device = numbers[i];
}

// Plugs show as changes of the folders that device nodes and names lie in. The
// folders of names come and go themselves, so they are watched anew each time.
void PortRegistry::look_again() {
    if (patience_ > 0) return again_.start(settling);
    if (system_numbers_ports) return again_.start(look_interval);
    for (const char* folder : {"/dev", "/dev/serial", stable_names})
        if (QFileInfo::exists(folder) && !watcher_.directories().contains(folder))
            watcher_.addPath(folder);
}

}  // namespace vkm
