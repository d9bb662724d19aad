// The program's record in a world of virtual time, without a target on the line.
// For suites that need no chip; virtual_bench.h has one.
//
// Operators of a test call the program's operations themselves, or lay out with
// at() what happens at which time:
//
//     VirtualWorld world;
//     world.at(300, [&] { world.frm.link.stop_requested = true; });
//     wait_ms(world.frm, 1000);
#pragma once

#include <string>
#include <vector>

#include "frmMain.h"
#include "support/virtual_platform.h"

namespace vkm::test {

struct VirtualWorld : VirtualPlatform {
    VirtualWorld();

    frmMain frm;

    // Runs the action that many ms after now, inside the loop.
    void at(std::int64_t ms, std::function<void()> action) {
        loop.after(Milliseconds(ms), std::move(action));
    }

    // Lets the program idle: events run until so many ms have passed.
    void run_for(std::int64_t ms);

    // ms since the world was made.
    double elapsed_ms() const {
        return std::chrono::duration<double, std::milli>(loop.elapsed()).count();
    }

    const std::string& log() const { return frm.screen.textMsg.Text; }
    bool log_has(std::string_view text) const { return log().find(text) != std::string::npos; }
    const std::vector<Box>& boxes() const { return dialogs.boxes; }
};

// The three lists that a download reads hold what they hold after start-up:
// combCommPort COM1 to COM16 with COM1 chosen, cobBaudMax every rate with the
// highest chosen, comDalay_ReDownLoad 9 to 1 with 5 chosen.
void fill_start_lists(Screen& screen);

}  // namespace vkm::test
