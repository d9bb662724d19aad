// Closing the window while a job talks to a chip: two passes, at whatever moment
// the operator does it, and a tool that always ends.
#include <gtest/gtest.h>

#include "session/download_session.h"
#include "support/virtual_bench.h"
#include "window/main_window.h"
#include "window/wiring.h"

namespace vkm {
namespace {

// The second pass may come later than 500 ms: nothing runs while written bytes
// leave the wire before a change of baud.
constexpr std::int64_t second_pass_within_ms = 1000;

struct ClosingBench : test::VirtualBench {
    explicit ClosingBench(const sim::ChipConfig& config = {}) : VirtualBench(config) {
        EXPECT_TRUE(select_model(config.model));
        run_for(600);
        load_bytes(std::vector<std::uint8_t>(2000, 0x5A));
    }

    // What the edge does with a closing: asks, and asks again when the logic
    // wants the window closed.
    void close() {
        if (QueryUnload(frm)) closed_at = elapsed_ms();
    }
    void close_in(std::int64_t ms) {
        at(ms, [this] { close(); });
        for (std::int64_t later = 0; later < second_pass_within_ms; ++later)
            at(ms + later, [this] {
                if (closed_at == 0 && std::exchange(frm.screen.window.Close_Requested, false))
                    close();
            });
    }
    void click_download(int index) {
        handle_event(
            frm,
            {&frm.screen.comDownload[static_cast<std::size_t>(index)], EventKind::Click, 0, {}});
    }

    double closed_at = 0;  // ms, by elapsed_ms()
};

void expect_over(ClosingBench& bench) {
    EXPECT_GT(bench.closed_at, 0) << bench.story();
    EXPECT_FALSE(bench.frm.session.Running);
    EXPECT_FALSE(bench.port.is_open());
    EXPECT_EQ(bench.frm.session.UI_State, 0);
    Unload(bench.frm);
}

double whole_job_ms() {
    ClosingBench bench;
    const double began = bench.elapsed_ms();
    bench.click_download(0);
    EXPECT_TRUE(bench.frm.session.Program_OK) << bench.story();
    return bench.elapsed_ms() - began;
}

TEST(ClosingDuringADownload, AtAnyMomentEndsTheJobAndTheWindow) {
    const auto job_ms = static_cast<std::int64_t>(whole_job_ms());
    for (std::int64_t moment = 1; moment < job_ms; moment += 23) {
        SCOPED_TRACE(moment);
        ClosingBench bench;
        const double began = bench.elapsed_ms();
        bench.close_in(moment);
        bench.click_download(0);
        EXPECT_LT(bench.elapsed_ms() - began, static_cast<double>(moment) + 1500)
            << "the waits leave soon";
        bench.run_for(second_pass_within_ms);
        expect_over(bench);
        EXPECT_EQ(bench.frm.screen.txtWrite_OK_Count.Text, bench.frm.session.Program_OK ? "1" : "0")
            << "a chip counts when its image was whole before";
    }
}

TEST(ClosingDuringADownload, InThePauseBetweenTwoChipsLetsItCountDown) {
    sim::ChipConfig config;
    config.after_start.power_cycle = true;
    ClosingBench bench(config);
    const auto job_ms = static_cast<std::int64_t>(whole_job_ms());
    bench.close_in(job_ms + 1000);
    bench.click_download(1);
    expect_over(bench);
    EXPECT_EQ(bench.frm.screen.txtWrite_OK_Count.Text, "1");
}

TEST(ClosingDuringADownload, WithABoxOnTheScreenEndsOnceTheBoxIsAnswered) {
    sim::ChipConfig config;
    config.model = "VKM26H2052";
    ClosingBench bench(config);
    ASSERT_TRUE(bench.select_model("VKM47H58RK+"));
    bench.load_bytes(std::vector<std::uint8_t>(100, 1));
    bench.dialogs.stays = std::chrono::seconds(10);
    double box_at = 0;
    for (int ms = 0; ms < 20000; ms += 100)
        bench.at(ms, [&] {
            if (box_at > 0 || bench.dialogs.open_boxes == 0) return;
            box_at = bench.elapsed_ms();
            bench.close_in(100);
        });
    bench.click_download(0);
    ASSERT_GT(box_at, 0) << bench.story();
    EXPECT_LT(bench.closed_at, box_at + 1000);
    expect_over(bench);
}

TEST(ClosingDuringADownload, ASecondClickOnTheCloseButtonClosesAtOnce) {
    ClosingBench bench;
    bench.at(500, [&] {
        EXPECT_FALSE(QueryUnload(bench.frm));
        EXPECT_TRUE(QueryUnload(bench.frm));
        bench.closed_at = bench.elapsed_ms();
    });
    bench.click_download(0);
    expect_over(bench);
}

TEST(Closing, NoJobBeginsBehindABoxThatOutlivedTheWindow) {
    ClosingBench bench;
    // The remembered file has gone, and the box that tells it stands until the
    // window has closed in its second pass.
    bench.frm.screen.cekReloadFile.Value = 1;
    bench.dialogs.stays = Milliseconds(2000);
    bench.close_in(0);
    bench.at(100, [&] { bench.click_download(0); });
    bench.run_for(5000);
    expect_over(bench);
    EXPECT_EQ(bench.chip.counters().pulses, 0);
}

}  // namespace
}  // namespace vkm
