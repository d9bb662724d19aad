// The seam: everything that the logic needs of the world, in one record. Behind
// each reference stands either Qt (src/platform/qt) or virtual time
// (tests/support); nothing inside knows which.
#pragma once

#include "platform/code_page.h"
#include "platform/dialogs.h"
#include "platform/event_loop.h"
#include "platform/files.h"
#include "platform/serial_port.h"
#include "platform/settings_store.h"
#include "platform/sounder.h"

namespace vkm {

struct Platform {
    EventLoop& loop;
    WallClock& wall_clock;
    SerialPort& port;
    SettingsStore& settings;
    Dialogs& dialogs;
    Files& files;
    Sounder& sounder;
    CodePage& code_page;
};

}  // namespace vkm
