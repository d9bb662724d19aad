// The running tool: the record, the world behind its seam, and the window, built
// in the order in which one needs the other.
#pragma once

#include <map>
#include <string>

#include "frmMain.h"
#include "platform/qt/main_window_view.h"
#include "platform/qt/operator_queue.h"
#include "platform/qt/port_registry.h"
#include "platform/qt/qt_code_page.h"
#include "platform/qt/qt_dialogs.h"
#include "platform/qt/qt_event_loop.h"
#include "platform/qt/qt_files.h"
#include "platform/qt/qt_serial_port.h"
#include "platform/qt/qt_settings_store.h"
#include "platform/qt/qt_sounder.h"
#include "platform/qt/system_clock.h"

namespace vkm {

// What a run may have of its own. The tool as people use it has nothing.
struct ToolChoices {
    std::string settings_file;         // instead of the user's settings store
    std::map<int, std::string> ports;  // COM number: device
    std::string program_folder;        // taken as the program's own
};

struct Tool {
    // Wired and loaded; the window isn't shown yet. A QApplication has to stand.
    explicit Tool(const ToolChoices& choices = {});
    Tool(const Tool&) = delete;
    Tool& operator=(const Tool&) = delete;

    // Shows the window, and returns once it has closed.
    void run();

    QtSettingsStore settings;
    QtFiles files;
    QtSounder sounder;
    QtCodePage code_page;
    SystemClock wall_clock;
    PortRegistry ports;
    QtSerialPort port;
    QtEventLoop loop;
    QtDialogs dialogs;
    OperatorQueue queue;
    frmMain frm;
    MainWindowView window;
};

}  // namespace vkm
