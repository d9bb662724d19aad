#include "platform/qt/qt_serial_port.h"

#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <cerrno>
#include <cmath>
#include <thread>

#include "platform/qt/line_control.h"
#include "platform/qt/monotonic.h"

namespace vkm {
namespace {

using namespace std::chrono_literals;

// An adapter gets what was written with the next millisecond of its bus, and
// needs another to start; so much later than reckoned the wire may fall silent.
constexpr Milliseconds adapter_delay = 2ms;

// How long a device that still holds bytes after their time is waited for.
constexpr Milliseconds drain_margin = 100ms;
constexpr Milliseconds drain_step = 1ms;

// How far the rate of a device may lie from the one asked for: a UART follows
// less than 5 % together with the error of the other end.
constexpr double baud_tolerance = 0.03;

QSerialPort::Parity parity_of(char letter) {
    if (letter == 'e') return QSerialPort::EvenParity;
    return letter == 'o' ? QSerialPort::OddParity : QSerialPort::NoParity;
}

QSerialPort::StopBits stop_bits_of(double count) {
    if (count == 2) return QSerialPort::TwoStop;
    return count == 1 ? QSerialPort::OneStop : QSerialPort::OneAndHalfStop;
}

#ifdef Q_OS_UNIX
// Locks of other programs are made for the device itself, not for a link to it.
QString location_of(const std::string& device) {
    const QFileInfo info(QString::fromStdString(device));
    return info.exists() ? info.canonicalFilePath() : info.filePath();
}
#else
QString location_of(const std::string& device) {
    return QString::fromStdString(device);
}
#endif

}  // namespace

QtSerialPort::QtSerialPort(const PortRegistry& ports) : ports_(ports) {
    QObject::connect(&port_, &QSerialPort::readyRead, &port_, [this] {
        if (woken) woken();
    });
    QObject::connect(&port_, &QSerialPort::errorOccurred, &port_,
                     [this](QSerialPort::SerialPortError error) { take_error(error); });
}

QtSerialPort::~QtSerialPort() {
    close();
}

bool QtSerialPort::is_open() const {
    return port_.isOpen() && !lost_;
}

bool QtSerialPort::set_settings(std::string_view text) {
    const auto wanted = parse_port_settings(text);
    if (!wanted) {
        reason_ = reason_of_refused_settings(name(), std::string(text));
        return false;
    }
    if (is_open() && text != settings_) {
        wait_for_output();
        if (!apply(*wanted) || !runs_at(wanted->baud)) {
            reason_ = reason_of_refused_settings(name(), std::string(text));
            apply(*parse_port_settings(settings_));
            return false;
        }
    }
    settings_ = text;
    return true;
}

int QtSerialPort::open() {
    if (is_open()) return EBUSY;
    close();
    const std::string device = ports_.device(number_);
    const QString location = location_of(device);
    port_.setPortName(location);
    shifts_bits_ = shifts_bits(QFile::encodeName(location).constData());
    const PortSettings wanted = *parse_port_settings(settings_);
    apply(wanted);
    if (device.empty() || !port_.open(QIODevice::ReadWrite)) {
        const PortReason reason = reason_of({name(), device, settings_, port_.error()});
        port_.clearError();
        return refuse(reason);
    }
    open_number_ = number_;
    hand_in_at_once(static_cast<int>(port_.handle()));
    if (!runs_at(wanted.baud)) {
        port_.close();
        return refuse(reason_of_refused_settings(name(), settings_));
    }
    reason_ = {};
    return 0;
}

void QtSerialPort::close() {
    if (!port_.isOpen()) return;
    if (!lost_) wait_for_output();
    port_.close();
    port_.clearError();
    lost_ = false;
    clock_.dropped();
}

std::vector<std::uint8_t> QtSerialPort::read() {
    const std::size_t waiting = input_count();
    std::vector<std::uint8_t> bytes(read_length_ == 1 ? std::min<std::size_t>(waiting, 1)
                                                      : waiting);
    if (bytes.empty()) return bytes;
    const auto count =
        port_.read(reinterpret_cast<char*>(bytes.data()), static_cast<qint64>(bytes.size()));
    bytes.resize(static_cast<std::size_t>(std::max<qint64>(count, 0)));
    return bytes;
}

std::size_t QtSerialPort::input_count() const {
    return is_open() ? static_cast<std::size_t>(port_.bytesAvailable()) : 0;
}

void QtSerialPort::clear_input() {
    if (is_open()) port_.clear(QSerialPort::Input);
}

std::size_t QtSerialPort::output_count() const {
    if (!is_open()) return 0;
    return std::max(held_by_system(), clock_.unsent(monotonic_now()));
}

std::size_t QtSerialPort::held_output() const {
    return is_open() ? held_by_system() : 0;
}

// Of what the device has already it would drop some, and a pseudo-terminal has all of it.
void QtSerialPort::clear_output() {
    if (!is_open()) return;
    if (held_by_system() > 0) port_.clear(QSerialPort::Output);
    clock_.dropped();
}

void QtSerialPort::write(std::span<const std::uint8_t> bytes) {
    if (!is_open() || bytes.empty()) return;
    port_.write(reinterpret_cast<const char*>(bytes.data()), static_cast<qint64>(bytes.size()));
    port_.flush();
    clock_.written(bytes.size(), monotonic_now());
}

Instant QtSerialPort::next_departure(Instant now) const {
    if (!is_open()) return never;
    const Instant end = clock_.free_at();
    if (clock_.unsent(now) > 0) return end;
    return held_by_system() > 0 && now < end + drain_margin ? now + drain_step : never;
}

std::string QtSerialPort::name() const {
    return "COM" + std::to_string(number_);
}

int QtSerialPort::refuse(PortReason reason) {
    reason_ = std::move(reason);
    return std::max(reason_.error, 1);
}

// On a closed port it takes effect when the port opens.
bool QtSerialPort::apply(const PortSettings& settings) {
    const PortSettings device = shifts_bits_ ? settings : PortSettings{settings.baud};
    const bool taken = port_.setBaudRate(device.baud) &&
                       port_.setDataBits(QSerialPort::DataBits(device.data_bits)) &&
                       port_.setParity(parity_of(device.parity)) &&
                       port_.setStopBits(stop_bits_of(device.stop_bits));
    if (!taken) {
        port_.clearError();
        return false;
    }
    clock_.set_rate(settings.baud, settings.bits_per_byte());
    return true;
}

// An adapter that can't do a rate takes the nearest one without a word.
bool QtSerialPort::runs_at(std::int32_t baud) const {
    const auto actual = actual_baud(static_cast<int>(port_.handle()));
    return !actual || std::abs(*actual - baud) <= baud * baud_tolerance;
}

std::size_t QtSerialPort::held_by_system() const {
    return static_cast<std::size_t>(port_.bytesToWrite()) +
           output_in_system(static_cast<int>(port_.handle()));
}

// What was written must have left the wire before its rate changes or the port
// closes, or a frame's last bytes are lost. Nothing is waited for when the
// output was cleared.
void QtSerialPort::wait_for_output() {
    const Instant silent = clock_.free_at() + adapter_delay;
    const Instant deadline = std::max(silent, monotonic_now()) + drain_margin;
    for (Instant now = monotonic_now(); now < deadline && !lost_; now = monotonic_now()) {
        port_.flush();
        if (now >= silent && held_by_system() == 0) return;
        if (is_alive(static_cast<int>(port_.handle())) == Alive::no) return;
        std::this_thread::sleep_for(drain_step);
    }
}

// Inside the toolkit: takes note, and closes the device once it has returned.
void QtSerialPort::take_error(QSerialPort::SerialPortError error) {
    const bool of_device = error == QSerialPort::ResourceError || error == QSerialPort::ReadError ||
                           error == QSerialPort::WriteError ||
                           error == QSerialPort::DeviceNotFoundError;
    if (!of_device || !port_.isOpen() || lost_) return;
    if (is_alive(static_cast<int>(port_.handle())) == Alive::yes) {
        // A read that found nothing, because the input was cleared meanwhile, is
        // no loss; setting the size takes reading up again.
        port_.clearError();
        port_.setReadBufferSize(0);
        return;
    }
    lost_ = true;
    reason_ = reason_of_lost_device("COM" + std::to_string(open_number_));
    QMetaObject::invokeMethod(
        &port_,
        [this] {
            if (lost_) close();
        },
        Qt::QueuedConnection);
    if (woken) woken();
}

}  // namespace vkm
