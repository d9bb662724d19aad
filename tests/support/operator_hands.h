// What an operator does with the window, for suites that link it.
#pragma once

#include "window/wiring.h"

namespace vkm::test {

class OperatorHands {
  public:
    explicit OperatorHands(frmMain& frm) : on_(frm) {}

    void click(Control& control) { handle_event(on_, {&control, EventKind::Click, 0, {}}); }

  private:
    frmMain& on_;
};

}  // namespace vkm::test
