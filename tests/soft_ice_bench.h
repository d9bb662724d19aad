// A chip whose boot firmware gives way to a debug monitor: the monitor's files beside the
// program, and what the operator answers.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "session/monitor_loader.h"
#include "session/soft_ice.h"
#include "session/soft_ice_image.h"
#include "session_bench.h"
#include "support/operator_hands.h"

namespace vkm::test {

inline const std::string start_path = "/opt/vkm/VKM2000.rom";

struct SoftIceBench : SessionBench, OperatorHands {
    explicit SoftIceBench(sim::ChipConfig config = {.model = "VKM47H58RK"},
                          const std::string& model = {})
        : SessionBench(config, model), OperatorHands(frm) {
        set_files(0x180, 0x1000);
        dialogs.answer_yes();
        dialogs.answer_yes();
        frm.screen.textMsg.Text.clear();
    }

    std::string monitor_path() const { return "/opt/vkm/" + frm.catalogue.SoftICE_File; }
    void set_files(std::size_t start_count, std::size_t monitor_count) {
        start_file = random_bytes(start_count, 21);
        monitor_file = random_bytes(monitor_count, 22);
        files.add(start_path, start_file);
        files.add(monitor_path(), monitor_file);
    }
    void run() { click(frm.screen.comDownSoft_ICE); }
    std::uint8_t flash(std::size_t address) const { return chip.flash()[address]; }

    Bytes start_file;
    Bytes monitor_file;
};

inline void put_digits(Bytes& image, std::size_t address, std::string_view digits) {
    for (std::size_t i = 0; i + 1 < digits.size(); i += 2)
        image[address++] =
            static_cast<std::uint8_t>(std::stoi(std::string(digits.substr(i, 2)), nullptr, 16));
}

// What address 0 to 13312 hold, put together anew.
inline Bytes monitor_image(const Bytes& start, const Bytes& monitor, std::string_view file) {
    Bytes image(0x3401, 0xFF);
    std::copy_n(start.begin(), std::min<std::size_t>(start.size(), 0x180), image.begin() + 0x2000);
    std::copy_n(monitor.begin(), std::min<std::size_t>(monitor.size(), 0x1000),
                image.begin() + 0x2300);
    std::size_t at = 0x2180;
    for (const auto line : monitor_loader(file).at_2180) put_digits(image, at, line), at += 16;
    at = 0x3300;
    for (const auto line : monitor_loader(file).at_3300) put_digits(image, at, line), at += 16;
    image[0] = 0x02;
    image[1] = 0x22;
    image[2] = 0x00;
    return image;
}

// The port and the controls are the operator's again; no chip was counted, no option written.
inline void expect_soft_ice_over(const SoftIceBench& bench) {
    expect_session_over(bench);
    EXPECT_EQ(bench.count(), "0");
    EXPECT_EQ(bench.chip.counters().option_writes, 0);
    EXPECT_EQ(bench.frm.screen.comDownSoft_ICE.Enabled, bench.frm.session.UI_State == ui_idle);
    EXPECT_FALSE(bench.frm.timers.Timer10.Enabled && !bench.frm.link.stop_requested);
}

inline void expect_nothing_changed(const SoftIceBench& bench) {
    EXPECT_EQ(bench.port.opens, 0);
    EXPECT_EQ(bench.log(), "");
    EXPECT_EQ(bench.frm.session.UI_State, 0);
    EXPECT_FALSE(bench.frm.session.Running);
    EXPECT_EQ(bench.frm.session.Result, Job_Result::none);
}

}  // namespace vkm::test
