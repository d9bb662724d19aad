// The event loop on Qt's.
//
// A turn runs on the stack of the operation that waits. What the operator did is
// handed in after the toolkit has returned; timers and the port's receive event
// are delivered by process_events behind the turn. The one object that wakes the
// loop in time does nothing else.
#pragma once

#include <QTimer>
#include <functional>

#include "platform/event_loop.h"
#include "platform/qt/qt_serial_port.h"

namespace vkm {

class QtEventLoop final : public EventLoop {
  public:
    // `port` must outlive the loop; the application exists already.
    explicit QtEventLoop(QtSerialPort& port);

    void turn(Instant until) override;
    Instant now() const override;

    // ---- set once, before the first turn ----

    // Draws what the logic has changed.
    std::function<void()> draw;
    // Hands in what the operator did; true when there was something.
    std::function<bool()> hand_in;
    // Runs what is due while a loop of the toolkit itself is on the stack (a menu,
    // a dialog of the system): no turn comes back there.
    std::function<void()> run_due;

  private:
    void wake();
    void watch();
    void sleep(Instant until);

    QtSerialPort& port_;
    QTimer alarm_;
    bool port_called_ = false;  // the port has had something since the last turn
};

}  // namespace vkm
