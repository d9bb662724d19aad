// A user's own ISP program at the other end of the line, and the operator at the page
// ISP DEMO. The bench's simulated chip stands beside it without power.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "board_frames.h"
#include "session/demo_download.h"
#include "session_bench.h"
#include "simulators/simulated_isp_program.h"
#include "support/operator_hands.h"

namespace vkm::test {

// The program of a VKM47H58RK+ in its target.
inline sim::IspConfig isp_target(const std::vector<std::string>& faults = {}) {
    sim::IspConfig config;
    config.code = {0x40, 0x05};
    config.chip_byte = 0x5C;
    for (const std::string& text : faults)
        config.faults.push_back(sim::parse_fault_on<sim::IspFrame>(text).value());
    return config;
}

struct DemoBench : SessionBench, OperatorHands {
    explicit DemoBench(sim::IspConfig config = isp_target(),
                       const std::string& model = "VKM47H58RK+")
        : SessionBench({.model = model, .powered_at = sim::never}),
          OperatorHands(frm),
          target(std::move(config)) {
        line.connect(target.target());
        load(900);
        frm.screen.optBeepYes.Value = 0;
        frm.screen.textMsg.Text.clear();
        if (target.config().baud != 115200)
            set_line(std::to_string(static_cast<int>(target.config().baud)));
    }

    sim::SimulatedIspProgram target;

    // The rate of both, also one that stands in no list.
    void set_line(const std::string& baud) {
        if (choose(frm.screen.cob_DEMO_DownLoad_Baud, baud)) return;
        fill_list(frm.screen.cob_DEMO_DownLoad_Baud, {baud});
        frm.screen.cob_DEMO_DownLoad_Baud.ListIndex = 0;
    }
    void with_user_code(const std::string& code, const std::string& baud = "115200") {
        frm.screen.che_Demo_DownLoad.Value = 1;
        frm.screen.txt_DEMO_UserCode.Text = code;
        EXPECT_TRUE(choose(frm.screen.cob_DEMO_UserCode_Baud, baud));
    }

    void run() { click(frm.screen.com_Demo_DownLoad); }
    void run_series() { click(frm.screen.com_Demo_Re_DownLoad); }
    void click_demo_stop_in(std::int64_t ms) {
        at(ms, [this] { click(frm.screen.com_Demo_Stop); });
    }

    bool target_holds(std::span<const std::uint8_t> bytes, std::size_t address = 0) const {
        return std::equal(bytes.begin(), bytes.end(),
                          target.flash().begin() + static_cast<std::ptrdiff_t>(address));
    }
    // Commands that were written, by their code.
    std::vector<int> commands() const {
        std::vector<int> codes;
        for (const Written& w : port.written)
            if (w.bytes.size() > 4 && w.bytes[0] == 0x5A) codes.push_back(w.bytes[4]);
        return codes;
    }
    int written(int command) const {
        const auto codes = commands();
        return static_cast<int>(std::count(codes.begin(), codes.end(), command));
    }
    std::vector<Instant> times_of(int command) const {
        std::vector<Instant> times;
        for (const Written& w : port.written)
            if (w.bytes.size() > 4 && w.bytes[0] == 0x5A && w.bytes[4] == command)
                times.push_back(w.at);
        return times;
    }
    std::string demo_story() const {
        std::string text = log();
        for (const std::string& fault : target.faults()) text += "\ntarget: " + fault;
        return text;
    }
};

// However it ended: the port and the controls are given back, and the modes are clean.
inline void expect_demo_over(const DemoBench& bench) {
    expect_session_over(bench);
    const frmMain& frm = bench.frm;
    EXPECT_FALSE(frm.link.demo_mode);
    EXPECT_TRUE(frm.screen.com_Demo_DownLoad.Enabled);
    EXPECT_TRUE(frm.screen.com_Demo_Re_DownLoad.Enabled);
    EXPECT_FALSE(frm.screen.com_Demo_Stop.Enabled);
    EXPECT_EQ(frm.screen.Focus_Request, "Text1");
    EXPECT_EQ(bench.count(), "0");
}

inline void expect_demo_good(const DemoBench& bench) {
    expect_demo_over(bench);
    EXPECT_EQ(bench.frm.session.Result, Job_Result::done) << bench.demo_story();
    EXPECT_TRUE(bench.target_holds(bench.image)) << bench.demo_story();
    EXPECT_TRUE(bench.log_has("\r\nVerify  OK / 校验 OK  ( Total: ")) << bench.demo_story();
}

inline void expect_demo_failed(const DemoBench& bench, const std::string& step,
                               const std::string& log) {
    expect_demo_over(bench);
    EXPECT_EQ(bench.frm.session.Result, Job_Result::failed);
    EXPECT_EQ(bench.frm.session.Failed_Step, step) << bench.demo_story();
    EXPECT_TRUE(bench.log_has(log)) << bench.demo_story();
    EXPECT_FALSE(bench.log_has("Program OK"));
    EXPECT_FALSE(bench.log_has("Operation is stop."));
}

inline void expect_demo_stopped(const DemoBench& bench) {
    expect_demo_over(bench);
    EXPECT_TRUE(ends_with(bench.log(), "Operation is stop. / 操作被停止.")) << bench.demo_story();
    EXPECT_EQ(bench.target.faults(), std::vector<std::string>{}) << bench.demo_story();
}

}  // namespace vkm::test
