#include "platform/qt/tool.h"

#include "waiting/waiting.h"
#include "window/main_window.h"
#include "window/wiring.h"

namespace vkm {

Tool::Tool(const ToolChoices& choices)
    : settings(choices.settings_file),
      files(choices.program_folder),
      ports(settings),
      port(ports),
      loop(port),
      frm({loop, wall_clock, port, settings, dialogs, files, sounder, code_page}),
      window(frm, queue, port, ports) {
    for (const auto& [number, device] : choices.ports) ports.use(number, device);
    loop.draw = [this] { window.draw(); };
    loop.hand_in = [this] { return queue.hand_in(frm); };
    loop.run_due = [this] { deliver_due(frm); };
    dialogs.window = &window;
    dialogs.let_events_run = [this] { process_events(frm, Sleep::until_something); };
    dialogs.is_over = [this] { return window.is_over(); };
    wire(frm);
    Load(frm);
    window.draw();
}

void Tool::run() {
    window.show();
    while (!window.is_over()) process_events(frm, Sleep::until_something);
    Unload(frm);
}

}  // namespace vkm
