// What the operator did and the logic has not heard yet.
//
// The widgets' own handlers only note it here. The event loop hands it in once
// the toolkit has returned, so an operation, which may take as long as a whole
// download, never runs inside the toolkit.
#pragma once

#include <deque>
#include <functional>

#include "frmMain.h"
#include "screen/screen_event.h"

namespace vkm {

class OperatorQueue {
  public:
    void push(std::function<void(frmMain&)> act) { acts_.push_back(std::move(act)); }

    // An event of a control; by the time that it is handed in the logic may have
    // disabled or hidden the control, and then nothing happens.
    void push(ScreenEvent event);

    // Runs everything noted, also what comes in meanwhile. True when there was
    // something.
    bool hand_in(frmMain& frm);

  private:
    std::deque<std::function<void(frmMain&)>> acts_;
};

}  // namespace vkm
