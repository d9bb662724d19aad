#include "platform/qt/operator_queue.h"

#include "window/wiring.h"

namespace vkm {

void OperatorQueue::push(ScreenEvent event) {
    push([event = std::move(event)](frmMain& frm) {
        if (event.Source && !(event.Source->Enabled && event.Source->Visible)) return;
        handle_event(frm, event);
    });
}

bool OperatorQueue::hand_in(frmMain& frm) {
    if (acts_.empty()) return false;
    while (!acts_.empty()) {
        // Taken out first: what runs may turn the event loop and come here again.
        const auto act = std::move(acts_.front());
        acts_.pop_front();
        act(frm);
    }
    return true;
}

}  // namespace vkm
