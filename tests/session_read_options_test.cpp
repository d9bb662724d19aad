// Reading a chip's options without programming it.
#include <gtest/gtest.h>

#include "option_bench.h"
#include "session/read_chip_lock.h"

namespace vkm::test {
namespace {

using sim::FrameKind;

const std::string connecting =
    "\r\nWe are trying to connect to your MCU ... "
    "\r\nChinese:正在尝试与 MCU/单片机 握手连接 ... ";

std::string firmware_lines(const std::string& version) {
    return "\r\nMCU Firmware Version: " + version + "\r\nChinese:MCU 固件版本号: " + version;
}

// A chip that is delivered, and what its reading tells; the lines of the page are
// those of LabLock that are shown.
struct Reading {
    OptionChip chip;
    std::string version;
    bool has_name;
    std::vector<std::string> log;
    std::vector<std::string> page;
};

const std::vector<std::string> options_of_DEF = {
    "下次冷启动后使用 内部 RC 振荡器         NO",  "下次下载时 P1.0, P1.1 与下载无关",
    "下次下载用户应用程序时将数据Flash区清0:  NO", "",
    "启动内部看门狗后禁止改看门狗分频数      NO",  "下次上电自动用有关参数启动内部看门狗    NO",
    "Idle(空闲)状态时内部看门狗停止计数      NO",  "冷启动后内部看门狗预分频数(未启用):     256"};

std::vector<std::string> page_of_DEF(const std::string& name, const std::string& version) {
    std::vector<std::string> page = {"     MCU: " + name + "    固件版本号: " + version};
    page.insert(page.end(), options_of_DEF.begin(), options_of_DEF.end());
    return page;
}

const std::vector<Reading> readings = {
    {chip_of('A'),
     "2.5A",
     false,
     {"Double speed: No"},
     {"MCU Firmware Version / MCU 固件版本号: 2.5A", "Double speed (6 clock) / 双倍速:       No"}},
    {{'B', "VKM47W58AD", "VKM47W58AD", 0},
     "2.4B",
     true,
     {"Double speed: Unknown"},
     {"MCU Type is:                      VKM47W58AD", "MCU Firmware Version / MCU 固件版本号: 2.4B",
      "Double speed (6 clock) / 双倍速:     Unknown"}},
    {chip_of('C'),
     "3.8C",
     true,
     {"Double speed / 双倍速:          12T/单倍速", "振荡放大器增益:                  full gain",
      "下次下载时 P1.0, P1.1 与下载无关", "内部扩展AUX-RAM:        允许访问(强烈推荐)",
      "下次下载用户应用程序时将数据Flash区擦除: NO", "用户软件启动内部看门狗后:     复位关看门狗"},
     {"MCU: VKM47H58RK+    固件版本号: 3.8C", "下次下载时 P1.0, P1.1 与下载无关",
      "内部扩展AUX-RAM:        允许访问(强烈推荐)", "下次下载用户应用程序时将数据Flash区擦除: NO",
      "用户软件启动内部看门狗后:     复位关看门狗"}},
    {chip_of('D'), "3.8D", true, options_of_DEF, page_of_DEF("VKM26H2052", "3.8D")},
    {chip_of('E'), "5.0E", true, options_of_DEF, page_of_DEF("VKM26H5404", "5.0E")},
    {chip_of('F'), "5.2F", true, options_of_DEF, page_of_DEF("VKM26H5420", "5.2F")},
    {chip_of('G'), "3.8G", true, {}, {}},
};

std::string options_told(const Reading& reading, bool with_name) {
    std::string text;
    if (with_name && reading.has_name) text += "\r\nMCU Type is: " + reading.chip.chip;
    text += firmware_lines(reading.version);
    for (const std::string& line : reading.log) text += "\r\n" + line;
    return text;
}

std::vector<std::string> page_of(const OptionBench& bench) {
    std::vector<std::string> lines;
    for (const Control& label : bench.frm.screen.LabLock)
        if (label.Visible) lines.push_back(label.Caption);
    return lines;
}

void expect_nothing_done_to_chip(const OptionBench& bench) {
    EXPECT_EQ(bench.chip.counters().erases, 0);
    EXPECT_EQ(bench.chip.counters().blocks, 0);
    EXPECT_EQ(bench.chip.counters().option_writes, 0);
    EXPECT_EQ(bench.heard(FrameKind::test_baud), 0);
    EXPECT_EQ(bench.heard(FrameKind::set_baud), 0);
    EXPECT_TRUE(bench.chip.faults().empty()) << bench.story();
}

void expect_over(const OptionBench& bench, int UI_State = 0) {
    const frmMain& frm = bench.frm;
    EXPECT_FALSE(bench.port.is_open());
    EXPECT_EQ(frm.session.UI_State, UI_State);
    EXPECT_TRUE(frm.screen.comReadChipLock.Enabled);
    EXPECT_FALSE(frm.screen.comStop_Download.Enabled);
    EXPECT_FALSE(frm.session.Running);
    EXPECT_FALSE(frm.session.Connected);
    EXPECT_FALSE(frm.timers.Timer9.Enabled);
}

// The reading ends, whatever happens, within three minutes.
void read_options(OptionBench& bench) {
    bench.loop.time_limit = bench.loop.elapsed() + std::chrono::minutes(3);
    ASSERT_NO_THROW(comReadChipLock(bench.frm)) << bench.story();
}

void forget_file(OptionBench& bench) {
    bench.frm.images.AP_Buffer = {};
    bench.frm.images.File_Loaded = false;
}

TEST(ReadingOptions, ShowsWhatTheChipHoldsInTheLogAndOnThePage) {
    for (const Reading& reading : readings) {
        SCOPED_TRACE(reading.chip.letter);
        OptionBench bench(reading.chip);
        forget_file(bench);
        read_options(bench);
        EXPECT_EQ(bench.log(), connecting + options_told(reading, true));
        EXPECT_EQ(page_of(bench), reading.page);
        expect_log_at_its_end(bench.frm);
        EXPECT_TRUE(bench.frm.link.Status_Read_OK);
        EXPECT_EQ(bench.heard(FrameKind::link_check), 5);
        EXPECT_EQ(bench.status_reads(), 0);
        EXPECT_TRUE(bench.boxes().empty());
        EXPECT_EQ(bench.sounder.beeps(), 0);
        expect_nothing_done_to_chip(bench);
        expect_over(bench);
    }
}

TEST(ReadingOptions, AsksForThemWhenTheFirstAnswerIsTooShort) {
    for (const Reading& reading : readings) {
        SCOPED_TRACE(reading.chip.letter);
        OptionBench bench(reading.chip, {.status_length = 24});
        forget_file(bench);
        read_options(bench);
        EXPECT_EQ(bench.log(), connecting +
                                   "\r\nWe are Reading Chip Lock./ 正在读加密位,双倍速,版本号" +
                                   options_told(reading, false));
        EXPECT_EQ(bench.status_reads(), 1);
        EXPECT_TRUE(bench.frm.link.Status_Read_OK);
        expect_nothing_done_to_chip(bench);
        expect_over(bench);
    }
}

TEST(ReadingOptions, NamesNoModelWhenTheFirstAnswerHasOneByteOfItsCode) {
    for (const Reading& reading : {readings[0], readings[1], readings[2]}) {
        SCOPED_TRACE(reading.chip.letter);
        OptionBench bench(reading.chip, {.status_length = 25});
        read_options(bench);
        EXPECT_EQ(bench.log(), connecting + options_told(reading, false));
        EXPECT_EQ(bench.status_reads(), 0);
        expect_over(bench);
    }
}

TEST(ReadingOptions, ByCommandIsTriedTwelveTimes) {
    for (const auto& [lost, good] : {std::pair{2, true}, {3, true}, {11, true}, {12, false}}) {
        SCOPED_TRACE(lost);
        OptionBench bench(chip_of('D'), {.status_length = 24,
                                         .faults = {lose_reply(FrameKind::status_read, lost)}});
        read_options(bench);
        EXPECT_EQ(bench.status_reads(), good ? lost + 1 : 12);
        EXPECT_EQ(bench.frm.link.Status_Read_OK, good);
        if (!good) {
            EXPECT_TRUE(ends_with(without_times(bench.log()),
                                  "\r\nHandshake is failed. / 握手失败 (End: hh:mm:ss)"))
                << bench.log();
            EXPECT_EQ(bench.sounder.beeps(), 3);
        }
        expect_over(bench);
    }
}

TEST(ReadingOptions, ShowsTheSameInEnglishButForTheOptionsThemselves) {
    OptionBench bench(chip_of('A'), {.status_length = 24});
    bench.frm.screen.Show_English = true;
    read_options(bench);
    EXPECT_EQ(bench.log(),
              "\r\nWe are trying to connect to your MCU ... "
              "\r\nWe are Reading Chip Lock."
              "\r\nMCU Firmware Version: 2.5A"
              "\r\nDouble speed: No");
}

TEST(ReadingOptions, LeavesTheImagesTheVerdictAndTheCounterAlone) {
    OptionBench bench(chip_of('D'));
    bench.run_job();
    expect_good_chip(bench);
    bench.power_cycle();
    const auto& images = bench.frm.images;
    const auto program = images.AP_Buffer.Bytes;
    const auto sum = images.AP_Buffer.Sum;
    const auto data = images.Data_Buffer.Bytes;
    const int erases = bench.chip.counters().erases;
    read_options(bench);
    EXPECT_EQ(images.AP_Buffer.Bytes, program);
    EXPECT_EQ(images.AP_Buffer.Sum, sum);
    EXPECT_EQ(images.Data_Buffer.Bytes, data);
    EXPECT_TRUE(images.File_Loaded);
    EXPECT_EQ(bench.verdict(), "✔ OK / 成功");
    EXPECT_EQ(bench.count(), "1");
    EXPECT_EQ(bench.chip.counters().erases, erases);
    EXPECT_TRUE(bench.flash_holds(bench.image));
    EXPECT_FALSE(bench.log_has("Program OK")) << "the log begins anew";

    // A job that failed stays failed too.
    OptionBench failed = OptionBench::with_other_options(
        chip_of('D'), {.faults = {lose_frame(FrameKind::options, 4)}});
    failed.run_job();
    failed.power_cycle();
    read_options(failed);
    EXPECT_EQ(failed.verdict(), "✘ Failed / 失败: Write options / 写选项");
}

TEST(ReadingOptions, TakesTheControlsAndGivesThemBack) {
    for (const int locked : {0, 1}) {
        OptionBench bench(chip_of('C'));
        if (locked) comLockOptions(bench.frm);
        ASSERT_EQ(bench.frm.session.UI_State, locked ? 2 : 0);
        int looked = 0;
        bench.at(20, [&] {
            ++looked;
            EXPECT_EQ(bench.frm.session.UI_State, locked ? 3 : 1);
            EXPECT_FALSE(bench.frm.screen.comReadChipLock.Enabled);
            EXPECT_TRUE(bench.frm.screen.comStop_Download.Enabled);
            EXPECT_TRUE(bench.frm.session.Running);
        });
        read_options(bench);
        EXPECT_EQ(looked, 1);
        expect_over(bench, locked ? 2 : 0);
    }
}

TEST(ReadingOptions, ClosesTheTerminalsPortFirst) {
    static int closings;
    closings = 0;
    OptionBench bench(chip_of('C'));
    bench.frm.session.Close_Assistant_Port = [](frmMain& frm) {
        ++closings;
        EXPECT_EQ(frm.session.UI_State, 0);
    };
    read_options(bench);
    EXPECT_EQ(closings, 1);
}

TEST(ReadingOptions, EndsSoonAtAStopAtAnyMoment) {
    for (const int status_length : {0, 24}) {
        OptionBench whole(chip_of('D'), {.status_length = status_length});
        read_options(whole);
        const auto end = static_cast<std::int64_t>(whole.job_ms());
        for (const bool closing : {false, true}) {
            int told = 0;
            for (std::int64_t moment = 0; moment <= end; ++moment) {
                SCOPED_TRACE(moment);
                OptionBench bench(chip_of('D'), {.status_length = status_length});
                if (closing)
                    bench.close_window_in(moment);
                else
                    bench.click_stop_in(moment);
                read_options(bench);
                EXPECT_LT(bench.job_ms(), static_cast<double>(moment) + 200);
                expect_over(bench);
                told += ends_with(bench.log(), "\r\nOperation is stop. / 操作被停止.");
                if (::testing::Test::HasFailure()) return;
            }
            EXPECT_GT(told, 30);
        }
    }
}

TEST(ReadingOptions, OfAChipThatStaysSilentEndsWithStop) {
    OptionBench bench(chip_of('D'), {.powered_at = sim::never});
    bench.click_stop_in(60'000);
    read_options(bench);
    EXPECT_NEAR(bench.job_ms(), 60'000, 200);
    EXPECT_TRUE(ends_with(bench.log(), "\r\nOperation is stop. / 操作被停止.")) << bench.log();
    expect_over(bench);
    EXPECT_EQ(bench.verdict(), "");
}

TEST(ReadingOptions, DoesNothingWhileAJobRuns) {
    OptionBench bench(chip_of('D'));
    int clicks = 0;
    std::function<void()> click = [&] {
        if (!bench.frm.session.Running) return;
        ++clicks;
        const std::string log = bench.log();
        const bool connected = bench.frm.session.Connected;
        comReadChipLock(bench.frm);
        EXPECT_EQ(bench.log(), log);
        EXPECT_EQ(bench.frm.session.Connected, connected);
        EXPECT_EQ(bench.frm.session.UI_State, 1);
        EXPECT_FALSE(bench.frm.link.stop_requested);
        bench.at(13, click);
    };
    bench.at(5, click);
    bench.run_job();
    expect_good_chip(bench);
    EXPECT_GT(clicks, 50);
    EXPECT_TRUE(bench.chip.faults().empty()) << bench.story();
}

// ---- a session that is open already ---------------------------------------------------

struct OpenSession : OptionBench {
    OpenSession(const std::string& letter, bool read, bool english)
        : OptionBench(chip_of('D'), {.powered_at = sim::never}) {
        frm.screen.Show_English = english;
        frm.screen.textMsg.Text = "before";
        frm.session.Connected = true;
        frm.link.stop_requested = true;
        frm.link.Chip_Letter = letter;
        frm.link.Chip_Clock = 12e6f;
        frm.link.Status_Read_OK = read;
        port.open();
        comReadChipLock(frm);
    }
};

struct OpenCase {
    std::string letter;
    bool read;
    bool english;
    std::string_view log;
};

TEST(ReadingOptionsOfAnOpenSession, EndsItAndTellsWhatWasRead) {
    const std::vector<OpenCase> cases = {
        {"D", true, false,
         "before\r\nClock:12MHz./时钟频率:12M.\r\nRead Chip Lock OK. / 读选项成功."},
        {"D", true, true, "before\r\nClock:12MHz.\r\nRead Chip Lock OK. "},
        {"B", true, false,
         "before\r\nInternal clock:12MHz./内部时钟频率:12M."
         "\r\nRead MCU Firmware Version OK. / 读版本号成功."},
        {"B", true, true, "before\r\nInternal clock:12MHz.\r\nRead MCU Firmware Version OK."},
    };
    for (const OpenCase& open : cases) {
        SCOPED_TRACE(open.log);
        OpenSession bench(open.letter, open.read, open.english);
        EXPECT_EQ(bench.log(), open.log);
        expect_log_at_its_end(bench.frm);
        ASSERT_EQ(bench.port.written.size(), 2u);
        EXPECT_EQ(bench.port.written[0].bytes,
                  (Bytes{0xFE, 0xFE, 0xFE, 0xFE, 0x46, 0xB9, 0x6A, 0x00, 0x06, 0x82, 0xF2, 0x16}));
        EXPECT_EQ(bench.port.written[1].bytes[5], 0x52);
        EXPECT_FALSE(bench.port.is_open());
        EXPECT_FALSE(bench.frm.session.Running);
        // The session that was open gives the controls back, not this button.
        EXPECT_EQ(bench.frm.session.UI_State, 1);
        EXPECT_TRUE(bench.frm.session.Connected);
        EXPECT_FALSE(bench.frm.link.stop_requested);
    }
}

TEST(ReadingOptionsOfAnOpenSession, LeavesItOpenWhenNothingWasRead) {
    const std::vector<OpenCase> cases = {
        {"D", false, false,
         "before\r\nClock:12MHz./时钟频率:12M.\r\nFailed to read Options. / 读选项失败."},
        {"D", false, true, "before\r\nClock:12MHz.\r\nFailed to read Options."},
        {"B", false, true, "before\r\nInternal clock:12MHz.\r\nFailed to read Options."},
    };
    for (const OpenCase& open : cases) {
        SCOPED_TRACE(open.log);
        OpenSession bench(open.letter, open.read, open.english);
        EXPECT_EQ(bench.log(), open.log);
        expect_log_at_its_end(bench.frm);
        EXPECT_TRUE(bench.port.written.empty());
        EXPECT_TRUE(bench.port.is_open());
        EXPECT_EQ(bench.frm.session.UI_State, 1);
    }
}

}  // namespace
}  // namespace vkm::test
