// The hall: the one record that owns all state of the tool for the whole run.
// It holds the state record of every subsystem, the screen, the timers and the
// seam, and does nothing itself. The operations (free functions of the folders
// beside this file) take it first and act on it.
//
// Everything runs on one thread. Every wait lets pending events run, so a
// handler may change any of this between two lines that have a wait between
// them; see waiting/waiting.h.
#pragma once

#include "assistant/assistant_state.h"
#include "board/board_state.h"
#include "catalogue/catalogue_state.h"
#include "image/image_state.h"
#include "increase/increase_set.h"
#include "link/link_state.h"
#include "monitor/monitor_state.h"
#include "options/options_state.h"
#include "platform/platform.h"
#include "platform/timers.h"
#include "screen/screen.h"
#include "session/session_state.h"
#include "window/window_state.h"

namespace vkm {

struct frmMain {
    explicit frmMain(const Platform& seam) : platform(seam) {}
    frmMain(const frmMain&) = delete;
    frmMain& operator=(const frmMain&) = delete;

    Platform platform;  // the world outside
    Timers timers;
    Screen screen;             // every control as a value
    CatalogueState catalogue;  // the selected model, the chip's model
    ImageState images;         // program and data image
    OptionsState options;      // option bytes
    IncreaseState increase;    // numbers counted up
    LinkState link;            // the wire and what the handshake found
    SessionState session;      // the running job
    MonitorState monitor;      // dumps of a stopped target
    AssistantState assistant;  // the serial terminal
    BoardState board;          // the stand-alone download board
    WindowState window;        // start-up, closing
};

}  // namespace vkm
