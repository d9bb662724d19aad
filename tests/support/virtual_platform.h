// The whole world outside the program, in virtual time: what stands behind the
// seam in the tests. Needs no record of the program; VirtualWorld adds that.
//
// What went against the nature of a wire becomes a failure of the test when the
// record goes, or by check().
#pragma once

#include "platform/platform.h"
#include "support/faulty_port.h"
#include "support/gbk_code_page.h"
#include "support/memory_files.h"
#include "support/memory_settings.h"
#include "support/scripted_dialogs.h"
#include "support/virtual_line.h"
#include "support/virtual_loop.h"
#include "support/virtual_port.h"

namespace vkm::test {

struct VirtualPlatform {
    VirtualPlatform() = default;
    ~VirtualPlatform() { check(); }
    VirtualPlatform(const VirtualPlatform&) = delete;
    VirtualPlatform& operator=(const VirtualPlatform&) = delete;

    VirtualLine line;
    VirtualLoop loop{line};
    VirtualWallClock wall_clock{loop};
    VirtualPort port{loop, line};
    FaultyPort faults{port, loop};  // what the program sees; without faults it only passes on
    MemorySettings settings;
    ScriptedDialogs dialogs{loop};
    MemoryFiles files;
    CountingSounder sounder{loop};
    GbkCodePage code_page;

    Platform seam() {
        return {loop, wall_clock, faults, settings, dialogs, files, sounder, code_page};
    }

    // Reports the line's violations as failures of the test, each once.
    void check();
    // For a test of what violates: the violations, which are then no failures.
    std::vector<std::string> take_violations() { return std::exchange(line.violations, {}); }
};

}  // namespace vkm::test
