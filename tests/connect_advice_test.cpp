// The advice for a chip that stays silent.
#include "session/connect_advice.h"

#include <gtest/gtest.h>

#include "option_bench.h"
#include "session/read_chip_lock.h"

namespace vkm::test {
namespace {

const std::string connecting =
    "\r\nWe are trying to connect to your MCU ... "
    "\r\nChinese:正在尝试与 MCU/单片机 握手连接 ... ";

const std::string english =
    "\r\nConnection is failure. You can try:"
    "\r\n 1.Give your MCU Power On Reset."
    "\r\n 2.Stop operation, then re-select COM Port."
    "\r\n 3.Because PLCC-DIP/PQFP-DIP Socket trace too long."
    "\r\n 4.Update the VKM ISP.exe version."
    "\r\n 5.If still error, your MCU Firmware is error"
    "\r\n   or null.";

const std::string chinese =
    "\r\nChinese:连接失败，请尝试以下操作："
    "\r\n 1.给 MCU/单片机上电复位(冷启动，先没有电，再上电)。"
    "\r\n 2.停止下载，重新选择 RS-232 串口, 接好电缆。"
    "\r\n 3.因 PLCC、PQFP 转换座引线过长而引起时钟振荡不对，请调整参数。"
    "\r\n 4.可能要升级电脑端的 VKM ISP.exe 软件。"
    "\r\n 5.若仍然不成功，可能 MCU/单片机内无 ISP 系统引导码，"
    "\r\n   或需退回升级，或 MCU 已损坏。"
    "\r\n 仍在连接中, 请给 MCU 上电...";

const std::string of_demo_link =
    "\r\n连接失败，请尝试以下操作："
    "\r\n 1.重新选择 RS-232 串口, 接好电缆，打开电源。"
    "\r\n 2.检查波特率、奇偶位、数据位、停止位是否正确。"
    "\r\n 3.因 PLCC、PQFP 转换座引线过长而引起时钟振荡不对，请调整参数。"
    "\r\n 4.可能要升级电脑端的 VKM ISP.exe 软件。"
    "\r\n 5.若仍然不成功，可能 MCU/单片机内无 ISP 系统引导码，"
    "\r\n   或需退回升级，或 MCU 已损坏。"
    "\r\n 仍在连接中, 请给 MCU 上电...";

const std::string stopped = "\r\nOperation is stop. / 操作被停止.";

int times_in(const std::string& text, std::string_view part) {
    int count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
        ++count;
    return count;
}

// A chip without power until the test gives it some; both operations seek it.
struct SilentBench : OptionBench {
    SilentBench() : OptionBench(chip_of('D'), {.powered_at = sim::never}) {}

    void seek(bool only_read) {
        loop.time_limit = loop.elapsed() + std::chrono::hours(2);
        ASSERT_NO_THROW(only_read ? comReadChipLock(frm) : comDownload(frm, 0)) << story();
    }

    // ms from the click.
    double beep_ms(std::size_t n) const {
        return std::chrono::duration<double, std::milli>(sounder.at[n] - loop.start()).count() -
               start_ms;
    }
};

TEST(ConnectAdvice, ComesFourSecondsAfterTheWaitBeganBehindTwoBeeps) {
    for (const bool only_read : {false, true}) {
        SilentBench bench;
        std::string before, between, after;
        bench.at(3990, [&] {
            before = bench.log();
            EXPECT_EQ(bench.sounder.beeps(), 0);
        });
        bench.at(4290, [&] {
            between = bench.log();
            EXPECT_EQ(bench.sounder.beeps(), 2);
        });
        bench.at(4330, [&] { after = bench.log(); });
        bench.click_stop_in(5000);
        bench.seek(only_read);
        EXPECT_EQ(before, connecting);
        EXPECT_EQ(between, connecting);
        EXPECT_EQ(after, connecting + english + chinese);
        EXPECT_EQ(bench.log(), connecting + english + chinese + stopped);
        EXPECT_NEAR(bench.beep_ms(0), 4000, 15);
        EXPECT_NEAR(bench.beep_ms(1), 4150, 15);
    }
}

TEST(ConnectAdvice, ComesOnceHoweverLongTheWait) {
    for (const bool only_read : {false, true}) {
        SilentBench bench;
        bench.click_stop_in(3'600'000);
        bench.seek(only_read);
        EXPECT_EQ(times_in(bench.log(), "Connection is failure."), 1) << bench.log();
        EXPECT_EQ(bench.sounder.beeps(), 3) << "two of the advice, one of the stop";
    }
}

TEST(ConnectAdvice, IsInEnglishAloneWhenTheToolIs) {
    SilentBench bench;
    bench.frm.screen.Show_English = true;
    bench.click_stop_in(5000);
    bench.seek(false);
    EXPECT_EQ(bench.log(), "\r\nWe are trying to connect to your MCU ... " + english +
                               "\r\nOperation is stop. ");
}

TEST(ConnectAdvice, OfTheDemoLinkIsAListOfItsOwnInBothLanguages) {
    for (const bool Show_English : {false, true}) {
        VirtualWorld world;
        world.frm.screen.Show_English = Show_English;
        world.frm.link.demo_mode = true;
        world.frm.timers.Timer9.Enabled = true;
        Timer9_Tick(world.frm);
        EXPECT_EQ(world.log(), of_demo_link);
        EXPECT_EQ(world.sounder.beeps(), 2);
        EXPECT_NEAR(world.elapsed_ms(), 300, 5);
        EXPECT_FALSE(world.frm.timers.Timer9.Enabled);
    }
}

TEST(ConnectAdvice, ShowsTheEndOfTheLog) {
    VirtualWorld world;
    const auto scrolled_to = [&] { return world.frm.screen.textMsg.SelStart; };
    const auto before = scrolled_to();
    Timer9_Tick(world.frm);
    EXPECT_GT(scrolled_to(), before);
}

TEST(ConnectAdvice, IsSparedToWhomTheChipAnswersInTime) {
    SilentBench bench;
    bench.power_on_in(3300);  // its answer alone takes a third of a second
    bench.seek(false);
    expect_good_chip(bench);
    EXPECT_FALSE(bench.log_has("Connection is failure.")) << bench.log();
    EXPECT_EQ(bench.sounder.beeps(), 1) << "of the good chip";
    EXPECT_GT(bench.job_ms(), 4500);
}

TEST(ConnectAdvice, DoesNotEndTheWaitForAChipThatComesLater) {
    for (const std::int64_t later : {4500, 10'000, 600'000}) {
        SilentBench bench;
        bench.power_on_in(later);
        bench.seek(false);
        expect_good_chip(bench);
        EXPECT_TRUE(bench.flash_holds(bench.image));
        EXPECT_EQ(bench.log().find(connecting + english + chinese + "\r\nMCU Type is: "), 0u)
            << bench.log();

        SilentBench read;
        read.power_on_in(later);
        read.seek(true);
        EXPECT_TRUE(ends_with(read.log(), "冷启动后内部看门狗预分频数(未启用):     256"))
            << read.log();
    }
}

TEST(ConnectAdvice, LetsAChipConnectWhileItsBeepsSound) {
    int spared = 0, advised = 0;
    for (std::int64_t moment = 3300; moment < 4400; moment += 7) {
        SCOPED_TRACE(moment);
        SilentBench bench;
        bench.power_on_in(moment);
        bench.seek(false);
        expect_good_chip(bench);
        EXPECT_TRUE(bench.flash_holds(bench.image));
        EXPECT_TRUE(bench.chip.faults().empty()) << bench.story();
        const int lists = times_in(bench.log(), "Connection is failure.");
        EXPECT_LE(lists, 1);
        ++(lists == 1 ? advised : spared);
    }
    EXPECT_GT(spared, 10);
    EXPECT_GT(advised, 50);
}

TEST(ConnectAdvice, LetsAStopThroughWhileItsBeepsSound) {
    for (const bool only_read : {false, true}) {
        for (std::int64_t moment = 3980; moment < 4340; ++moment) {
            SCOPED_TRACE(moment);
            SilentBench bench;
            bench.click_stop_in(moment);
            bench.seek(only_read);
            EXPECT_TRUE(ends_with(bench.log(), stopped)) << bench.log();
            EXPECT_LT(bench.job_ms(), static_cast<double>(moment) + 350);
            EXPECT_FALSE(bench.frm.timers.Timer9.Enabled);
            EXPECT_FALSE(bench.port.is_open());
            EXPECT_EQ(bench.frm.session.UI_State, 0);
            // Nothing comes after the end.
            const std::string log = bench.log();
            bench.run_for(10'000);
            EXPECT_EQ(bench.log(), log);
            if (::testing::Test::HasFailure()) return;
        }
    }
}

TEST(ConnectAdvice, LetsTheWindowCloseWhileItsBeepsSound) {
    for (const bool only_read : {false, true}) {
        for (std::int64_t moment = 3980; moment < 4340; moment += 3) {
            SCOPED_TRACE(moment);
            SilentBench bench;
            bench.close_window_in(moment);
            bench.seek(only_read);
            EXPECT_TRUE(ends_with(bench.log(), stopped)) << bench.log();
            EXPECT_LT(bench.job_ms(), static_cast<double>(moment) + 350);
            EXPECT_FALSE(bench.port.is_open());
            bench.run_for(1000);
            EXPECT_TRUE(bench.frm.screen.window.Close_Requested);
            EXPECT_TRUE(QueryUnload(bench.frm));
            if (::testing::Test::HasFailure()) return;
        }
    }
}

TEST(ConnectAdvice, ComesAgainForTheNextChipOfASeries) {
    OptionBench bench(chip_of('D'), {.after_start = {.power_cycle = true,
                                                     .off_for = std::chrono::seconds(30),
                                                     .fresh_chip = true}});
    bench.choose(bench.frm.screen.comDalay_ReDownLoad, "2");
    std::vector<std::string> logs;
    for (const int ms : {12'000, 45'000}) bench.at(ms, [&] { logs.push_back(bench.log()); });
    bench.click_stop_in(46'000);
    bench.run_job(1);
    ASSERT_EQ(logs.size(), 2u);
    for (const std::string& log : logs)
        EXPECT_EQ(times_in(log, "Connection is failure."), 1) << log;
    EXPECT_EQ(bench.count(), "2");
}

}  // namespace
}  // namespace vkm::test
