// The line under everything: the port with its device and settings, whether it
// is open and for whom, and below it why the system refuses, as long as that
// stands.
#pragma once

#include <QLabel>
#include <QWidget>
#include <string>

#include "frmMain.h"
#include "platform/qt/port_registry.h"
#include "platform/qt/qt_serial_port.h"

namespace vkm {

class StatusLine final : public QWidget {
  public:
    // `button` stands at its end.
    explicit StatusLine(QWidget* button);

    // Costs nothing to speak of when nothing has changed.
    void draw(const frmMain& frm, const QtSerialPort& port, const PortRegistry& ports);

  protected:
    void resizeEvent(QResizeEvent* event) override;

  private:
    void make_room();
    int port_width() const;

    QLabel* port_;
    QLabel* reason_;
    std::string port_text_;
    std::string reason_text_;
};

}  // namespace vkm
