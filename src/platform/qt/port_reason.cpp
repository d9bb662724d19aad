#include "platform/qt/port_reason.h"

#include <QDir>
#include <QFileInfo>
#include <cerrno>
#include <cstring>

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <termios.h>
#include <unistd.h>
#endif

namespace vkm {
namespace {

// One row a reason: what is wrong, in both languages, and what to do about it.
// %1 is the port, %2 what the reason adds.
struct ReasonText {
    int error;
    const char* text;
};

// clang-format off
constexpr ReasonText no_device     = {ENODEV, "%1: 没有设备, 请插好串口线或另选串口 / no device has this number: plug it in or choose another port"};
constexpr ReasonText missing       = {ENOENT, "%1: 设备未插好 / the device is not there: plug it in"};
constexpr ReasonText no_permission = {EACCES, "%1: 没有权限, 请把用户加入 %2 组后重新登录 / no permission: add your user to the group %2 and log in again"};
constexpr ReasonText in_use        = {EBUSY,  "%1: 已被 %2 占用, 请先将其关闭 / in use by %2: close that first"};
constexpr ReasonText not_serial    = {ENOTTY, "%1: 不是串口, 请另选串口 / this is no serial port: choose another"};
constexpr ReasonText refused       = {EINVAL, "%1: 不支持 %2, 请换波特率 / does not do %2: choose another rate"};
constexpr ReasonText lost          = {EIO,    "%1: 设备已断开, 请重新插好 / the device went away: plug it in again"};
constexpr const char* other               =   "%1: 打不开 / will not open: %2";
constexpr const char* another_program     =   "另一程序 / another program";
// clang-format on

std::string filled(const char* text, const QString& port, const QString& more) {
    return QString::fromUtf8(text)
        .replace(QLatin1String("%1"), port)
        .replace(QLatin1String("%2"), more)
        .toStdString();
}

PortReason reason(const ReasonText& row, const QString& port, const QString& more = {}) {
    return {row.error, filled(row.text, port, more)};
}

#ifdef Q_OS_UNIX

QString program_name(qint64 pid) {
    QFile file(QStringLiteral("/proc/%1/comm").arg(pid));
    if (!file.open(QIODevice::ReadOnly)) return {};
    const QString name = QString::fromUtf8(file.readAll()).trimmed();
    return name.isEmpty() ? name : QStringLiteral("%1 (%2)").arg(name).arg(pid);
}

bool holds(qint64 pid, const QString& device) {
    const QDir descriptors(QStringLiteral("/proc/%1/fd").arg(pid));
    for (const QFileInfo& each : descriptors.entryInfoList(QDir::Files | QDir::System))
        if (each.symLinkTarget() == device) return true;
    return false;
}

// The program that has the device open, as far as this user may see it.
QString holder(const QString& device) {
    for (const QString& entry : QDir("/proc").entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        bool is_process = false;
        const qint64 pid = entry.toLongLong(&is_process);
        if (!is_process || pid == getpid() || !holds(pid, device)) continue;
        const QString name = program_name(pid);
        if (!name.isEmpty()) return name;
    }
    return QString::fromUtf8(another_program);
}

// What opening the device by ourselves comes to: 0 or the system's error.
int try_to_open(const QByteArray& path) {
    const int file = ::open(path.constData(), O_RDWR | O_NOCTTY | O_NONBLOCK);
    if (file < 0) return errno;
    termios settings{};
    const int error = ::tcgetattr(file, &settings) == 0 ? 0 : errno;
    ::close(file);
    return error;
}

// A port that others hold by a lock alone opens all the same.
PortReason reason_when_it_opens(const QString& port, const FailedOpen& failed) {
    const QFileInfo info(QString::fromStdString(failed.device));
    if (failed.error == QSerialPort::PermissionError)
        return reason(in_use, port, holder(info.canonicalFilePath()));
    return reason(refused, port, QString::fromStdString(failed.settings));
}

PortReason ask_the_system(const QString& port, const FailedOpen& failed) {
    const QFileInfo info(QString::fromStdString(failed.device));
    if (!info.exists()) return reason(missing, port);
    const int error = try_to_open(QFile::encodeName(info.filePath()));
    switch (error) {
        case 0:
            return reason_when_it_opens(port, failed);
        case ENOENT:
        case ENODEV:
        case ENXIO:
            return reason(missing, port);
        case EACCES:
        case EPERM:
            return reason(no_permission, port, info.group());
        case EBUSY:
            return reason(in_use, port, holder(info.canonicalFilePath()));
        case EISDIR:
        case ENOTTY:
            return reason(not_serial, port);
        case EIO:
            return reason(lost, port);
        default:
            return {error, filled(other, port, QString::fromLocal8Bit(std::strerror(error)))};
    }
}

#else

PortReason ask_the_system(const QString& port, const FailedOpen& failed) {
    switch (failed.error) {
        case QSerialPort::DeviceNotFoundError:
            return reason(missing, port);
        case QSerialPort::PermissionError:
            return reason(in_use, port, QString::fromUtf8(another_program));
        case QSerialPort::UnsupportedOperationError:
            return reason(refused, port, QString::fromStdString(failed.settings));
        case QSerialPort::ResourceError:
            return reason(lost, port);
        default:
            return reason(not_serial, port);
    }
}

#endif

}  // namespace

PortReason reason_of(const FailedOpen& failed) {
    const QString name = QString::fromStdString(failed.name);
    if (failed.device.empty()) return reason(no_device, name);
    return ask_the_system(name, failed);
}

PortReason reason_of_refused_settings(const std::string& name, const std::string& settings) {
    return reason(refused, QString::fromStdString(name), QString::fromStdString(settings));
}

PortReason reason_of_lost_device(const std::string& name) {
    return reason(lost, QString::fromStdString(name));
}

}  // namespace vkm
