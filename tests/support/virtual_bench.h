// A bench: the program, the line and a simulated chip at its other end, in
// virtual time.
//
//     VirtualBench bench({.model = "VKM47H58RK+", .clock_hz = 12e6});
//     bench.select_model("VKM47H58RK+");
//     bench.load_bytes(image);
//     comDownload(bench.frm, 0);
//     EXPECT_TRUE(bench.frm.session.Program_OK) << bench.log();
//
// How the program is started hangs on the library that a suite links:
//   vkm_bench_link    the link alone: lists filled, receive handler and timers of
//                     the link plugged in; nothing above the link is needed
//   vkm_bench_window  the real wiring and start-up of the window
#pragma once

#include <functional>
#include <span>
#include <string>
#include <vector>

#include "simulators/simulated_chip.h"
#include "support/virtual_world.h"

namespace vkm::test {

struct VirtualBench : VirtualWorld {
    // The chip has power from the start unless the configuration says otherwise
    // (powered_at = never: until power_on). `prepare` may lay out settings, files
    // and ports before the program starts.
    explicit VirtualBench(const sim::ChipConfig& config = {},
                          const std::function<void(VirtualBench&)>& prepare = {});

    sim::SimulatedChip chip;

    // Chooses the model as the operator does; false when there is none.
    bool select_model(const std::string& name);

    // The program image as if a file with these bytes, placed at `address`, had
    // been loaded without remarks. Nothing of the readers is run.
    void load_bytes(std::span<const std::uint8_t> bytes, std::int32_t address = 0);
    // The same for the data image.
    void load_data_bytes(std::span<const std::uint8_t> bytes, std::int32_t address = 0);

    // Chooses an entry of a list by its text; false when there is none.
    bool choose(Control& list, std::string_view text) { return choose_text(list, text); }

    // ms after now.
    void power_on_in(std::int64_t ms) {
        at(ms, [this] { chip.power_on(loop.now()); });
    }
    void power_off_in(std::int64_t ms) {
        at(ms, [this] { chip.power_off(loop.now()); });
    }

    // The frames of a kind that the chip has heard: how many, and the last one.
    int heard(sim::FrameKind kind) const;
    std::vector<std::uint8_t> last_heard(sim::FrameKind kind) const;

    // The chip's flash has these bytes from the address on.
    bool flash_holds(std::span<const std::uint8_t> bytes, std::size_t address = 0) const;

    // The log, and what the chip had to object to: for the message of a failed test.
    std::string story() const;
};

// Defined by the library that the suite links; see above.
void start_program(frmMain& frm);
bool choose_model(frmMain& frm, const std::string& name);

}  // namespace vkm::test
