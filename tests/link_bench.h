// What the suites of the handshake share: a bench whose chip is of the selected
// model, and what must hold after every handshake however it ended.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "link/handshake.h"
#include "support/chip_faults.h"
#include "support/virtual_bench.h"

namespace vkm::test {

using Bytes = std::vector<std::uint8_t>;
using sim::ChipConfig;
using sim::Fault;
using sim::FaultKind;
using sim::FrameKind;
using std::chrono::milliseconds;

inline constexpr const char* stop_text = "\r\nOperation is stop. / 操作被停止.";
inline constexpr const char* failed_text = "\r\nHandshake is failed. / 握手失败 (End: ";
inline constexpr const char* programming_text =
    "\r\nWe are trying to program ...\r\nChinese:正在进入正式编程阶段 ...";

struct LinkBench : VirtualBench {
    explicit LinkBench(const ChipConfig& config = {}) : VirtualBench(config) {
        EXPECT_TRUE(select_model(config.model));
    }

    int run(bool ReadChipLock_just = false) {
        newbaud = -1;
        started = elapsed_ms();
        result = handshake(frm, newbaud, ReadChipLock_just);
        took = elapsed_ms() - started;
        return result;
    }

    void stop_in(std::int64_t ms) {
        at(ms, [this] {
            frm.link.stop_requested = true;
            stopped_at = elapsed_ms();
        });
    }

    // The link works at the end: the port is open at the rate that the chip has.
    void expect_connected() {
        EXPECT_EQ(result, 0) << story();
        EXPECT_TRUE(port.is_open());
        EXPECT_EQ(port.settings(), std::to_string(newbaud) + ",n,8,1");
        EXPECT_NEAR(chip.rate() / newbaud, 1, 0.045) << newbaud;
        EXPECT_TRUE(chip.faults().empty()) << story();
        EXPECT_EQ(sounder.beeps(), 0);
        EXPECT_FALSE(frm.timers.Timer9.Enabled);
    }

    void expect_failure_told() {
        EXPECT_EQ(result, -1);
        EXPECT_EQ(newbaud, -1);
        EXPECT_EQ(sounder.beeps(), 3);
        EXPECT_TRUE(log_has(failed_text)) << log();
        EXPECT_EQ(log().back(), ')');
        EXPECT_EQ(frm.screen.textMsg.SelStart, log_characters());
    }

    void expect_stop_told() {
        EXPECT_EQ(result, -1);
        EXPECT_EQ(newbaud, -1);
        EXPECT_EQ(sounder.beeps(), 1) << log();
        EXPECT_TRUE(log().ends_with(stop_text)) << log();
        EXPECT_EQ(frm.screen.textMsg.SelStart, log_characters());
    }

    std::int32_t log_characters() const {
        Control copy = frm.screen.textMsg;
        caret_to_end(copy);
        return copy.SelStart;
    }

    std::int32_t newbaud = -1;
    int result = 1;
    double started = 0;
    double took = 0;
    double stopped_at = -1;
};

struct LetterRow {
    const char* model;
    char letter;
    const char* version;
    const char* name;  // as the catalogue knows its code; "" for firmware without one
};

// One model for every letter; D has an older sister in E.
inline const LetterRow letter_rows[] = {
    {"VKM47H516RK", 'A', "2.5", ""},
    {"VKM47W58AD", 'B', "2.4", "VKM47W58AD"},
    {"VKM47H58RK+", 'C', "3.8", "VKM47H58RK+"},
    {"VKM26H2052", 'D', "3.8", "VKM26H2052"},
    {"VKM26H5408", 'E', "5.0", "VKM26H5408"},
    {"VKM26H5424", 'F', "5.2", "VKM26H5424"},
    {"VKM27J052", 'G', "3.8", "VKM27J052"},
};

inline void choose_watchdog(LinkBench& bench, const std::string& pin) {
    bench.frm.screen.opt_ISP_DEMO_WDT[0].Value = 0;
    bench.frm.screen.opt_ISP_DEMO_WDT[1].Value = 1;
    if (pin.empty()) return;
    fill_list(bench.frm.screen.comb_WDT, {"P0.0", "P3.5", "P4.3"});
    ASSERT_TRUE(choose_text(bench.frm.screen.comb_WDT, pin));
}

}  // namespace vkm::test
