// The one window: its layout, its place on the screen, its closing.
#pragma once

#include <QMainWindow>

#include "frmMain.h"
#include "platform/qt/operator_queue.h"
#include "platform/qt/port_registry.h"
#include "platform/qt/qt_serial_port.h"
#include "platform/qt/screen_view.h"

namespace vkm {

class LockMark;
class StatusLine;

class MainWindowView final : public QMainWindow {
  public:
    // All must outlive the window.
    MainWindowView(frmMain& frm, OperatorQueue& queue, const QtSerialPort& port,
                   const PortRegistry& ports);

    // Draws what the logic has changed since the last time.
    void draw();

    // The window has been allowed to close, and has.
    bool is_over() const { return over_; }

    ScreenView& controls() { return view_; }

  protected:
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void moveEvent(QMoveEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

  private:
    void lay_out();
    void darken_disabled_captions();
    void draw_port_lists();
    void draw_window();
    void show_right(bool shown);
    void narrow_to_column(int height);
    int column_width() const;
    void draw_pointer();
    void hear_geometry();
    void ask_to_close();

    frmMain& frm_;
    OperatorQueue& queue_;
    const QtSerialPort& port_;
    const PortRegistry& ports_;
    ScreenView view_;
    QWidget* left_ = nullptr;
    QWidget* right_ = nullptr;
    StatusLine* status_ = nullptr;
    LockMark* lock_ = nullptr;
    WindowRecord drawn_;  // as last drawn or heard
    std::int32_t drawn_pointer_ = default_pointer;
    Qt::WindowStates filled_;  // how it filled the screen before it was shrunk
    int drawn_ports_ = 0;      // version of the ports that the lists show
    bool over_ = false;
};

}  // namespace vkm
