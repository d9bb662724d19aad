#include "platform/qt/qt_event_loop.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QThread>
#include <algorithm>
#include <limits>
#include <utility>

#include "platform/qt/monotonic.h"

namespace vkm {
namespace {

// How often timers are looked at while a loop of the toolkit is on the stack.
constexpr int watch_ms = 20;

// The toolkit's own loops count; turns don't.
bool inside_a_loop_of_the_toolkit() {
    return QThread::currentThread()->loopLevel() > 0;
}

// Rounded up: waking too early would mean another round.
int milliseconds(Microseconds time) {
    const auto count = std::chrono::ceil<Milliseconds>(time).count();
    return static_cast<int>(
        std::clamp<Milliseconds::rep>(count, 1, std::numeric_limits<int>::max()));
}

}  // namespace

QtEventLoop::QtEventLoop(QtSerialPort& port) : port_(port) {
    alarm_.setSingleShot(true);
    alarm_.setTimerType(Qt::PreciseTimer);
    QObject::connect(&alarm_, &QTimer::timeout, &alarm_, [this] { wake(); });
    QObject::connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock,
                     &alarm_, [this] { watch(); });
    port_.woken = [this] { port_called_ = true; };
}

Instant QtEventLoop::now() const {
    return monotonic_now();
}

void QtEventLoop::turn(Instant until) {
    draw();
    if (hand_in() || std::exchange(port_called_, false)) return;
    const Instant time = now();
    const Instant wake_at = std::min(until, port_.next_departure(time));
    if (wake_at <= time)
        QCoreApplication::processEvents();
    else
        sleep(wake_at);
    hand_in();
    port_called_ = false;
}

// Returns at once when the toolkit has something pending.
void QtEventLoop::sleep(Instant until) {
    if (until != never) alarm_.start(milliseconds(until - now()));
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    alarm_.stop();
}

// Called whenever the toolkit is about to sleep. In a loop of its own it may come
// from any kind of turn and stay for minutes, so the alarm is set here and not
// where the turn began.
void QtEventLoop::watch() {
    if (inside_a_loop_of_the_toolkit() && (!alarm_.isActive() || alarm_.remainingTime() > watch_ms))
        alarm_.start(watch_ms);
}

void QtEventLoop::wake() {
    if (inside_a_loop_of_the_toolkit()) run_due();
}

}  // namespace vkm
