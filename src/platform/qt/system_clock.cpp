#include "platform/qt/system_clock.h"

#include <QDateTime>

namespace vkm {

std::int64_t SystemClock::seconds() const {
    return QDateTime::currentSecsSinceEpoch();
}

std::string SystemClock::time_of_day() const {
    return QTime::currentTime().toString(QStringLiteral("hh:mm:ss")).toStdString();
}

}  // namespace vkm
