// The English half of what a session tells the operator.
#include <gtest/gtest.h>

#include <functional>

#include "session_bench.h"

namespace vkm::test {
namespace {

struct EnglishBench : SessionBench {
    explicit EnglishBench(const sim::ChipConfig& config = {}, const std::string& model = {})
        : SessionBench(config, model) {
        frm.screen.Show_English = true;
    }
};

void expect_told(const sim::ChipConfig& config, std::string_view log_end,
                 std::string_view verdict) {
    EnglishBench bench(config);
    bench.load(300);
    comDownload(bench.frm, 0);
    EXPECT_TRUE(ends_with(without_times(bench.log()), log_end)) << bench.log();
    EXPECT_EQ(bench.verdict(), verdict);
}

TEST(English, ErasingThatFailsNamesTheTimeAndTheLowerBaud) {
    expect_told({.faults = {lose_frame(sim::FrameKind::erase, always)}},
                "\r\nWe are erasing application flash..."
                "\r\nErase application is failed. (End: hh:mm:ss)"
                "\r\nTry to use the lower baud.",
                "✘ Failed: Erase");
}

TEST(English, ProgrammingThatFailsNamesTheTimeAndTheLowerBaud) {
    expect_told({.faults = {lose_frame(sim::FrameKind::block, always)}},
                "\r\nProgramming... ( Begin: hh:mm:ss )"
                "\r\nProgram is failure. (End: hh:mm:ss)"
                "\r\nTry to use the lower baud. ",
                "✘ Failed: Program");
}

TEST(English, OptionsThatCantBeReadFailTheHandshake) {
    expect_told({.model = "VKM47H58RK",
                 .status_length = 24,
                 .faults = {lose_frame(sim::FrameKind::status_read, always)}},
                "\r\nWe are trying to program ..."
                "\r\nHandshake is failed. (End: hh:mm:ss)",
                "✘ Failed: Read options");
}

TEST(English, AStopIsToldInEveryStep) {
    struct Step {
        sim::ChipConfig config;
        std::string_view before;  // the log's end when Stop is pressed
    };
    const Step steps[] = {
        {{.model = "VKM47H58RK",
          .status_length = 24,
          .faults = {lose_frame(sim::FrameKind::status_read, always)}},
         "We are trying to program ..."},
        {{.faults = {lose_frame(sim::FrameKind::erase, always)}},
         "We are erasing application flash..."},
        {{.block_time = std::chrono::milliseconds(50)}, " )"},
    };
    for (const Step& step : steps) {
        SCOPED_TRACE(step.before);
        EnglishBench bench(step.config);
        bench.load(3000);
        std::string before;
        std::function<void()> stop = [&] {
            if (ends_with(bench.log(), step.before)) {
                before = bench.log();
                comStop_Download(bench.frm);
            } else if (bench.frm.session.Running) {
                bench.at(50, stop);
            }
        };
        bench.at(50, stop);
        comDownload(bench.frm, 0);
        ASSERT_FALSE(before.empty());
        EXPECT_EQ(bench.log(), before + "\r\nOperation is stop. ");
        EXPECT_EQ(bench.verdict(), "■ Stopped");
    }
}

TEST(English, AnImageBeyondTheFirmwaresReachHasOneWarningForBothLanguages) {
    EnglishBench bench({.model = "VKM26H5052"});
    bench.load(0x1500);
    comDownload(bench.frm, 0);
    EXPECT_TRUE(
        bench.log_has(" bps."
                      "\r\n\r\n程序文件超出此 MCU 固件下载范围, 超出部分不下载。 \r\n"
                      "\r\nWe are erasing application flash..."))
        << bench.log();
}

TEST(English, ABlock0ThatMayNotBeWrittenIsToldInOneLine) {
    EnglishBench bench({.model = "VKM47H58RK"});
    bench.load(300);
    bench.frm.session.Block0_Rule = {"", "", "1"};
    comDownload(bench.frm, 0);
    EXPECT_TRUE(
        bench.log_has("\r\nBecause Block1 to write Block0 is disable, so program can not continue."
                      "\r\nWe are erasing application flash..."))
        << bench.log();
}

TEST(English, AWrongModelIsToldInTheLogAndInABox) {
    EnglishBench bench({.model = "VKM47H516RK"}, "VKM47H51RB");
    bench.load(100);
    comDownload(bench.frm, 0);
    EXPECT_TRUE(ends_with(bench.log(), " bps.\r\nMCU Type is wrong. ")) << bench.log();
    ASSERT_EQ(bench.boxes().size(), 1u);
    EXPECT_EQ(bench.boxes()[0].text,
              "MCU Type is wrong, please select another MCU and open the file again.");
    EXPECT_EQ(bench.verdict(), "✘ Failed: Identify model");
}

TEST(English, OverTheTriggerTheBaudIs115200) {
    EnglishBench bench({.model = "VKM47H58RK+"});
    bench.load(100);
    Command2(bench.frm);
    EXPECT_TRUE(bench.log_has("\r\nNow baud is: 115200 bps.\r\n")) << bench.log();
}

}  // namespace
}  // namespace vkm::test
