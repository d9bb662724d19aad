// Whole downloads against the simulated chip, in virtual time.
#include <gtest/gtest.h>

#include <map>
#include <set>

#include "catalogue/model_table.h"
#include "image/image_files.h"
#include "session/erase.h"
#include "session_bench.h"
#include "text/trimming.h"
#include "window/main_window.h"

namespace vkm::test {
namespace {

// ---- one model of every group -----------------------------------------------

struct GroupCase {
    std::string chip;
    std::string model;  // as the operator chooses it
    char letter;
    int version;
    std::string clock_lines;
    std::string told;  // of model, firmware and options
};

const std::string one_clock = "\r\nClock:11.059326MHz./时钟频率:11.059326M.";
const std::string internal_clock = "\r\nInternal clock:11.059326MHz./内部时钟频率:11.059326M.";
const std::string both_clocks =
    internal_clock + "\r\nExternal clock:11.059326MHz./外部时钟频率:11.059326M.";

std::string told_of(const std::string& name, const std::string& firmware,
                    const std::string& options) {
    return (name.empty() ? "" : "\r\nMCU Type is: " + name) +
           "\r\nMCU Firmware Version: " + firmware + "\r\nChinese:MCU 固件版本号: " + firmware +
           options;
}

const std::string options_of_C =
    "\r\nDouble speed / 双倍速:          12T/单倍速"
    "\r\n振荡放大器增益:                  full gain"
    "\r\n下次下载时 P1.0, P1.1 与下载无关"
    "\r\n内部扩展AUX-RAM:        允许访问(强烈推荐)"
    "\r\n下次下载用户应用程序时将数据Flash区擦除: NO"
    "\r\n用户软件启动内部看门狗后:     复位关看门狗";
const std::string options_of_DEF =
    "\r\n下次冷启动后使用 内部 RC 振荡器         NO"
    "\r\n下次下载时 P1.0, P1.1 与下载无关"
    "\r\n下次下载用户应用程序时将数据Flash区清0:  NO"
    "\r\n"
    "\r\n启动内部看门狗后禁止改看门狗分频数      NO"
    "\r\n下次上电自动用有关参数启动内部看门狗    NO"
    "\r\nIdle(空闲)状态时内部看门狗停止计数      NO"
    "\r\n冷启动后内部看门狗预分频数(未启用):     256";
const std::string speed_of_A = "\r\nDouble speed: No";
const std::string speed_of_B = "\r\nDouble speed: Unknown";

std::vector<GroupCase> group_cases() {
    return {
        {"VKM47H516RK", "VKM47H516RK", 'A', 0x25, both_clocks, told_of("", "2.5A", speed_of_A)},
        {"VKM47H58RK", "VKM47H58RK", 'A', 0x03, both_clocks, told_of("", "0.3A", speed_of_A)},
        {"VKM47W516AD", "VKM47W516X2", 'B', 0x24, internal_clock,
         told_of("VKM47W516AD", "2.4B", speed_of_B)},
        {"VKM47W58AD", "VKM47W58AD", 'B', 0x24, internal_clock,
         told_of("VKM47W58AD", "2.4B", speed_of_B)},
        {"VKM47H58RK+", "VKM47H58RK+", 'C', 0x38, both_clocks,
         told_of("VKM47H58RK+", "3.8C", options_of_C)},
        {"VKM47W51RB", "VKM47W51RB", 'C', 0x27, both_clocks,
         told_of("VKM47H51RB", "2.7C", options_of_C)},
        {"VKM47H55RK+", "VKM47H55RK+", 'C', 0x38, both_clocks,
         told_of("VKM47H55RK+", "3.8C", options_of_C)},
        {"VKM26H2052", "VKM26H2052", 'D', 0x38, one_clock,
         told_of("VKM26H2052", "3.8D", options_of_DEF)},
        {"VKM26H5404", "VKM26H5404", 'E', 0x50, one_clock,
         told_of("VKM26H5404", "5.0E", options_of_DEF)},
        {"VKM26W5412AD", "VKM26W5412AD", 'E', 0x51, one_clock,
         told_of("VKM26W5412AD", "5.1E", options_of_DEF)},
        {"VKM26H5420", "26H/W54xx Series", 'F', 0x52, both_clocks,
         told_of("VKM26H5420", "5.2F", options_of_DEF)},
        {"VKM27J032", "VKM27J032", 'G', 0x38, both_clocks, told_of("VKM27J032", "3.8G", "")},
    };
}

// What the option write leaves in the log: the oldest chips are always written,
// the youngest are delivered with other options than the panel's, and the others
// have them already.
std::string option_lines(const GroupCase& c) {
    if (c.letter == 'A') return c.told + "\r\n (End: hh:mm:ss)";
    return c.letter == 'G' ? c.told + "\r\nConfig option OK. / 设置选项成功。" : "";
}

// What the log holds after a good chip.
std::string whole_log(const GroupCase& c, const std::string& baud, bool erased = true) {
    return "\r\nWe are trying to connect to your MCU ... "
           "\r\nChinese:正在尝试与 MCU/单片机 握手连接 ... " +
           c.told +
           "\r\nWe are trying to program ..."
           "\r\nChinese:正在进入正式编程阶段 ..." +
           c.clock_lines + "\r\nNow baud is: / 当前波特率为: " + baud + " bps." +
           (erased ? "\r\nWe are erasing application flash..."
                     "\r\n正在擦除应用程序区... ( mm:ss )"
                   : "") +
           "\r\nProgramming.../ 正在下载... ( Begin: hh:mm:ss )" + option_lines(c) +
           "\r\nProgram OK / 下载 OK"
           "\r\nVerify  OK / 校验 OK " +
           (erased ? "\r\nerase times/擦除时间 :  mm:ss" : "") +
           "\r\nprogram times/下载时间: mm:ss"
           "\r\nHave already encrypt. / 已加密";
}

TEST(Download, ProgramsAChipOfEveryGroupAndTellsItInTheLog) {
    for (const GroupCase& c : group_cases()) {
        SCOPED_TRACE(c.chip + " " + c.letter);
        SessionBench bench({.model = c.chip, .letter = c.letter, .version = c.version}, c.model);
        bench.frm.screen.textMsg.Text = "of a job before";
        bench.load(1900);
        comDownload(bench.frm, 0);
        expect_good_chip(bench);
        EXPECT_TRUE(bench.flash_holds(bench.image)) << bench.story();
        EXPECT_EQ(without_times(bench.log()), whole_log(c, "115200"));
        EXPECT_TRUE(bench.chip.faults().empty()) << bench.story();
        EXPECT_EQ(bench.frm.screen.textMsg.SelStart,
                  static_cast<std::int32_t>(character_count(bench.log())));
    }
}

TEST(Download, SpeaksEnglishOnDemand) {
    SessionBench bench({.model = "VKM26H2052", .clock_hz = 12e6});
    bench.frm.screen.Show_English = true;
    bench.load(300);
    comDownload(bench.frm, 0);
    EXPECT_EQ(without_times(bench.log()),
              "\r\nWe are trying to connect to your MCU ... "
              "\r\nMCU Type is: VKM26H2052"
              "\r\nMCU Firmware Version: 3.8D" +
                  options_of_DEF +
                  "\r\nWe are trying to program ..."
                  "\r\nClock:11.999142MHz."
                  "\r\nNow baud is: 57600 bps."
                  "\r\nWe are erasing application flash... ( mm:ss )"
                  "\r\nProgramming... ( Begin: hh:mm:ss )"
                  "\r\nProgram OK"
                  "\r\nVerify  OK ( Total: mm:ss )"
                  "\r\nHave already encrypt.");
    EXPECT_EQ(bench.verdict(), "✔ OK");
}

// The chip that answers to a model of the tree.
std::string chip_for(const std::string& model) {
    return model == "26H/W54xx Series" ? "VKM26H5428" : model;
}

TEST(Download, FillsTheProgramAreaOfEveryModel) {
    int models = 0;
    for (std::size_t group = 0; group < MCU_AP_ISP_range.size(); ++group) {
        if (group == 4) continue;  // never selectable: the same models under older codes
        for (const ModelRow& row : MCU_AP_ISP_range[group].rows) {
            const std::string name(row.MCU_Name);
            // The large 54xx are programmed under their collective entry.
            const bool large = group == 5 && row.Old_ID.empty();
            SCOPED_TRACE(name);
            SessionBench bench({.model = chip_for(name)}, large ? "26H/W54xx Series" : name);
            bench.load(static_cast<std::size_t>(row.AP_End) + 1, 0, static_cast<unsigned>(models));
            comDownload(bench.frm, 0);
            expect_good_chip(bench);
            EXPECT_TRUE(bench.flash_holds(bench.image)) << bench.story();
            EXPECT_TRUE(bench.chip.faults().empty()) << bench.story();
            ++models;
        }
    }
    EXPECT_EQ(models, 154 - 28);
}

TEST(Download, WorksAtEveryClockAndEveryHighestBaud) {
    for (const GroupCase& c : group_cases()) {
        for (double clock : {4e6, 11.0592e6, 12e6, 24e6, 33e6}) {
            SessionBench lists;
            for (const Entry& baud : lists.frm.screen.cobBaudMax.List) {
                SCOPED_TRACE(c.chip + " at " + std::to_string(clock) + ", " + baud.Text);
                SessionBench bench(
                    {.model = c.chip, .letter = c.letter, .version = c.version, .clock_hz = clock},
                    c.model);
                ASSERT_TRUE(bench.choose(bench.frm.screen.cobBaudMax, baud.Text));
                bench.load(700);
                comDownload(bench.frm, 0);
                expect_good_chip(bench);
                EXPECT_TRUE(bench.flash_holds(bench.image)) << bench.story();
            }
        }
    }
}

// ---- before the session ------------------------------------------------------------

TEST(Download, WithoutAFileOnlyShowsABox) {
    SessionBench bench;
    bench.frm.screen.textMsg.Text = "kept";
    comDownload(bench.frm, 0);
    ASSERT_EQ(bench.boxes().size(), 1u);
    EXPECT_EQ(bench.boxes()[0].text, "    Please open file./请打开文件。    ");
    EXPECT_EQ(bench.log(), "kept");
    EXPECT_EQ(bench.verdict(), "");
    EXPECT_EQ(bench.frm.session.UI_State, 0);
    EXPECT_FALSE(bench.frm.link.stop_requested);
    EXPECT_FALSE(bench.frm.session.Running);
    EXPECT_TRUE(bench.port.written.empty());

    bench.frm.screen.Show_English = true;
    comDownload(bench.frm, 1);
    EXPECT_EQ(bench.boxes()[1].text, "    Please open file.   ");
}

TEST(Download, ReloadsTheProgramFileWhenTheOperatorWantsIt) {
    SessionBench bench({.model = "VKM47H58RK+"});
    const auto first = random_bytes(900, 5);
    const auto second = random_bytes(1200, 6);
    bench.files.add("/job/app.bin", first);
    bench.settings.preset("Settings", "FilePath", "/job/app.bin");
    bench.dialogs.choose_file("/job/app.bin");
    bench.frm.screen.cheClearAP_Buffer.Value = 1;
    comLoadFile(bench.frm);
    ASSERT_TRUE(bench.frm.images.File_Loaded);
    bench.files.add("/job/app.bin", second);

    bench.frm.screen.cekReloadFile.Value = 0;
    comDownload(bench.frm, 0);
    EXPECT_TRUE(bench.flash_holds(first));

    bench.chip.power_cycle(bench.loop.now(), Milliseconds(100));
    bench.frm.screen.cekReloadFile.Value = 1;
    comDownload(bench.frm, 0);
    EXPECT_TRUE(bench.flash_holds(second));
    EXPECT_EQ(bench.count(), "2");
}

TEST(Download, ReadsTheLoadedFileAgainBehindOneWhoseStartAddressWasRefused) {
    for (const bool gone : {false, true}) {
        SessionBench bench({.model = "VKM47H58RK+"});
        Screen& screen = bench.frm.screen;
        const auto bytes = random_bytes(900, 5);
        bench.files.add("/job/app.bin", bytes);
        bench.files.add("/job/other.bin", random_bytes(900, 6));
        bench.dialogs.choose_file("/job/app.bin");
        comLoadFile(bench.frm);
        screen.txtAP_FileStart.Text = "FFFFF";
        bench.dialogs.choose_file("/job/other.bin");
        comLoadFile(bench.frm);
        ASSERT_EQ(bench.boxes().size(), 3u);
        bench.dialogs.boxes.clear();
        screen.txtAP_FileStart.Text = "0";
        if (gone) bench.files.remove("/job/other.bin");
        screen.cekReloadFile.Value = 1;
        comDownload(bench.frm, 0);
        expect_good_chip(bench);
        EXPECT_TRUE(bench.flash_holds(bytes));
        EXPECT_EQ(screen.Frame7.Caption, "File Buffer: /job/app.bin");
        EXPECT_TRUE(bench.boxes().empty());
    }
}

TEST(Download, TellsThatTheLoadedFileHasGoneThoughARefusedOneIsThere) {
    SessionBench bench;
    Screen& screen = bench.frm.screen;
    bench.files.add("/job/app.bin", random_bytes(900, 5));
    bench.files.add("/job/other.bin", random_bytes(900, 6));
    bench.dialogs.choose_file("/job/app.bin");
    comLoadFile(bench.frm);
    screen.txtAP_FileStart.Text = "FFFFF";
    bench.dialogs.choose_file("/job/other.bin");
    comLoadFile(bench.frm);
    bench.dialogs.boxes.clear();
    screen.txtAP_FileStart.Text = "0";
    bench.files.remove("/job/app.bin");
    screen.cekReloadFile.Value = 1;
    const auto image = bench.frm.images.AP_Buffer.Bytes;
    comDownload(bench.frm, 0);
    ASSERT_EQ(bench.boxes().size(), 1u);
    EXPECT_EQ(bench.boxes()[0].text, "Can not find the file./找不到文件");
    // Nothing takes its place: neither an empty image nor the one of before is sent.
    EXPECT_EQ(bench.chip.counters().erases, 0);
    EXPECT_EQ(bench.port.opens, 0);
    EXPECT_EQ(bench.frm.images.AP_Buffer.Bytes, image);
    EXPECT_TRUE(bench.frm.images.File_Loaded);
}

TEST(Download, ProgramsNothingWhenTheReloadedFileIsRefused) {
    SessionBench bench({.model = "VKM47H58RK+"});
    bench.files.add("/job/app.hex", std::string_view(":0100000055AA\r\n:00000001FF\r\n"));
    bench.settings.preset("Settings", "FilePath", "/job/app.hex");
    bench.dialogs.choose_file("/job/app.hex");
    comLoadFile(bench.frm);
    ASSERT_TRUE(bench.frm.images.File_Loaded);
    // The compiler's next output is damaged, and the operator says No to it.
    const std::string bad = ":0100000055AB\r\n";
    bench.files.add("/job/app.hex", std::string_view(bad + bad + bad + ":00000001FF\r\n"));
    bench.dialogs.answer_no();
    bench.frm.screen.cekReloadFile.Value = 1;
    comDownload(bench.frm, 0);
    ASSERT_FALSE(bench.boxes().empty());
    EXPECT_EQ(bench.boxes().back().text, "    Please open file./请打开文件。    ");
    EXPECT_EQ(bench.chip.counters().pulses, 0);
    EXPECT_EQ(bench.frm.session.UI_State, 0);
    EXPECT_FALSE(bench.frm.session.Running);
    EXPECT_EQ(bench.verdict(), "");
}

TEST(Download, ProgramsNothingWhenTheReloadedFileHasNoPlace) {
    SessionBench bench({.model = "VKM47H58RK+"});
    bench.files.add("/job/app.bin", random_bytes(900, 5));
    bench.dialogs.choose_file("/job/app.bin");
    comLoadFile(bench.frm);
    ASSERT_TRUE(bench.frm.images.File_Loaded);
    bench.dialogs.boxes.clear();
    bench.frm.screen.txtAP_FileStart.Text = "FFFFF";
    bench.frm.screen.cekReloadFile.Value = 1;
    comDownload(bench.frm, 0);
    ASSERT_EQ(bench.boxes().size(), 1u);
    EXPECT_NE(bench.boxes()[0].text.find("缓冲区起始地址超出有效空间。"), std::string::npos);
    EXPECT_EQ(bench.chip.counters().pulses, 0);
    EXPECT_EQ(bench.frm.session.UI_State, 0);
}

TEST(Download, PatchesANumberThatWasTouchedAndAdvancesItAfterAGoodChip) {
    SessionBench bench;
    bench.load(100);
    auto& fields = bench.frm.screen.texAuto_Increase;
    fields[0].Text = "3f";
    fields[1].Text = "2";
    fields[2].Text = "0041";
    bench.frm.screen.optAuto_Increase[1].Value = 1;
    bench.frm.screen.optAuto_Increase[0].Value = 0;
    bench.frm.screen.cheAuto_Increase.Value = 1;
    comDownload(bench.frm, 0);
    expect_good_chip(bench);
    EXPECT_TRUE(bench.flash_holds(std::vector<std::uint8_t>{0x00, 0x41}, 0x3E));
    EXPECT_EQ(fields[2].Text, "0042");
    EXPECT_EQ(bench.settings.on_disk.at({"Auto_Increase", "next_value"}), "0042");
    EXPECT_EQ(bench.frm.images.AP_Buffer.Bytes[0x3F], 0x42);

    // A chip that doesn't become good takes no number.
    bench.chip.power_cycle(bench.loop.now(), Milliseconds(10));
    bench.click_stop_in(1200);
    comDownload(bench.frm, 0);
    EXPECT_EQ(fields[2].Text, "0042");
    EXPECT_EQ(bench.settings.on_disk.at({"Auto_Increase", "next_value"}), "0042");
    EXPECT_EQ(bench.count(), "1");
}

TEST(Download, ClosesTheAssistantFirstAndOpensItAfterAGoodChipAlone) {
    static std::vector<std::string> calls;
    const auto prepare = [](frmMain& frm) {
        calls.clear();
        frm.session.Close_Assistant_Port = [](frmMain&) { calls.push_back("close"); };
        frm.session.Open_Assistant_Port = [](frmMain& f) {
            calls.push_back(f.session.UI_State == 0 ? "open" : "open too early");
        };
    };
    SessionBench bench;
    bench.load(100);
    prepare(bench.frm);
    comDownload(bench.frm, 0);
    EXPECT_EQ(calls, std::vector<std::string>{"close"});

    bench.frm.screen.che_AutoOpenPort.Value = 1;
    prepare(bench.frm);
    bench.chip.power_cycle(bench.loop.now(), Milliseconds(10));
    comDownload(bench.frm, 0);
    EXPECT_EQ(calls, (std::vector<std::string>{"close", "open"}));

    prepare(bench.frm);
    bench.click_stop_in(100);
    comDownload(bench.frm, 0);  // the chip runs its program and stays silent
    EXPECT_EQ(calls, std::vector<std::string>{"close"});

    bench.frm.images.File_Loaded = false;
    prepare(bench.frm);
    comDownload(bench.frm, 0);
    EXPECT_EQ(calls, std::vector<std::string>{"close"});
}

TEST(Download, AClickInsideARunningSessionDoesNothing) {
    SessionBench bench;
    bench.load(3000);
    for (int ms = 0; ms < 3000; ms += 50)
        bench.at(ms, [&] {
            comDownload(bench.frm, 1);
            Command2(bench.frm);
            EXPECT_EQ(bench.frm.screen.cheTL.Value, 0);
        });
    comDownload(bench.frm, 0);
    expect_good_chip(bench);
    EXPECT_TRUE(bench.flash_holds(bench.image));
    EXPECT_EQ(bench.chip.counters().erases, 1);
    EXPECT_LT(bench.job_ms(), 3000);
}

TEST(Download, EndsLockedWhenAProjectLocksTheOptions) {
    SessionBench bench;
    bench.load(100);
    bench.frm.session.Project_Lock = true;
    comDownload(bench.frm, 0);
    EXPECT_EQ(bench.frm.session.UI_State, 2);
    EXPECT_FALSE(bench.frm.screen.txtDevice.Enabled);
    EXPECT_TRUE(bench.frm.screen.comDownload[0].Enabled);
}

TEST(Download, ReturnsToTheLockedStateThatItCameFrom) {
    SessionBench bench;
    bench.load(100);
    Set_UI_State(bench.frm, 2);
    bench.at(500, [&] { EXPECT_EQ(bench.frm.session.UI_State, 3); });
    comDownload(bench.frm, 0);
    EXPECT_EQ(bench.frm.session.UI_State, 2);
}

// ---- connecting ---------------------------------------------------------------------

TEST(Connect, WaitsForPowerAsLongAsItTakes) {
    SessionBench bench({.powered_at = sim::never});
    bench.load(300);
    bench.power_on_in(20 * 60 * 1000);
    comDownload(bench.frm, 0);
    expect_good_chip(bench);
    EXPECT_GT(bench.job_ms(), 20 * 60 * 1000);
}

TEST(Connect, FailsWhenThereIsNoPort) {
    SessionBench bench;
    bench.load(300);
    bench.port.present.clear();
    comDownload(bench.frm, 0);
    expect_failed_at(bench, "Connect / 连接");
    EXPECT_EQ(bench.log(),
              "\r\nWe are trying to connect to your MCU ... "
              "\r\nChinese:正在尝试与 MCU/单片机 握手连接 ... "
              "\r\nOpen COM port failure! / 打开串口失败!"
              "\r\nThe COM port opened by another Program or no the COM port."
              "\r\nChinese:串口已被其它程序打开或该串口不存在。");
}

TEST(Connect, ReadsTheOptionsOfFirmwareWhoseStatusHasNone) {
    SessionBench bench({.model = "VKM47H58RK", .version = 0x25, .status_length = 24});
    bench.load(300);
    comDownload(bench.frm, 0);
    expect_good_chip(bench);
    EXPECT_TRUE(bench.flash_holds(bench.image));
    EXPECT_EQ(bench.frm.link.Chip_Version, "2.5");
    EXPECT_EQ(bench.chip.counters().erases, 1);
}

TEST(Connect, TakesTheOptionsOfAStatusThatHasThem) {
    SessionBench bench({.model = "VKM47H58RK+"});
    bench.load(300);
    comDownload(bench.frm, 0);
    EXPECT_EQ(bench.heard(sim::FrameKind::status_read), 0);
}

TEST(Connect, FailsWhenTheOptionsCantBeRead) {
    SessionBench bench({.model = "VKM47H58RK",
                        .status_length = 24,
                        .faults = {lose_frame(sim::FrameKind::status_read, always)}});
    bench.load(300);
    comDownload(bench.frm, 0);
    expect_failed_at(bench, "Read options / 读选项");
    EXPECT_TRUE(ends_with(without_times(bench.log()),
                          "\r\nHandshake is failed. / 握手失败 (End: hh:mm:ss)"));
    EXPECT_EQ(bench.sounder.beeps(), 3);
}

TEST(Connect, ReadsTheOptionsInFourTimesThreeTries) {
    for (const int lost : {11, 12}) {
        SCOPED_TRACE(lost);
        SessionBench bench({.model = "VKM47H58RK",
                            .status_length = 24,
                            .faults = {lose_frame(sim::FrameKind::status_read, lost)}});
        bench.load(300);
        comDownload(bench.frm, 0);
        // A job that goes on reads once more, behind the option write.
        EXPECT_EQ(bench.heard(sim::FrameKind::status_read), lost == 11 ? 13 : 12);
        if (lost == 11)
            expect_good_chip(bench);
        else
            expect_failed_at(bench, "Read options / 读选项");
    }
}

TEST(Connect, ChecksTheLinkFiveTimesBeforeTheErase) {
    SessionBench bench;
    bench.load(300);
    comDownload(bench.frm, 0);
    expect_good_chip(bench);
    std::vector<sim::FrameKind> kinds;
    for (const sim::LoggedFrame& frame : bench.chip.log())
        if (!frame.from_chip) kinds.push_back(frame.kind);
    const auto set = std::find(kinds.begin(), kinds.end(), sim::FrameKind::set_baud);
    ASSERT_GE(kinds.end() - set, 7);
    EXPECT_EQ(std::count(set, set + 6, sim::FrameKind::link_check), 5);
    EXPECT_EQ(set[6], sim::FrameKind::erase);
}

// The checks alone may go unanswered; then a late answer is given its time.
TEST(Connect, GoesOnWithoutAnAnswerToTheLinkChecks) {
    double took[2] = {};
    for (const bool silent : {false, true}) {
        SessionBench bench;
        if (silent) bench.chip.add_fault(lose_frame(sim::FrameKind::link_check, always));
        bench.load(300);
        comDownload(bench.frm, 0);
        expect_good_chip(bench);
        EXPECT_TRUE(bench.flash_holds(bench.image));
        EXPECT_EQ(bench.heard(sim::FrameKind::link_check), 5);
        took[silent] = bench.job_ms();
    }
    EXPECT_NEAR(took[true] - took[false], 5 * 200 + 600, 15);
}

TEST(Connect, StopsReadingTheOptionsAtOnce) {
    SessionBench bench({.model = "VKM47H58RK",
                        .status_length = 24,
                        .faults = {lose_frame(sim::FrameKind::status_read, always)}});
    bench.load(300);
    bench.click_stop_in(3000);
    comDownload(bench.frm, 0);
    expect_stopped(bench);
    EXPECT_EQ(bench.sounder.beeps(), 1);
}

TEST(Connect, ForTheLockAloneReadsAndEndsTheSession) {
    SessionBench bench;
    bench.frm.screen.LabLock[9].Caption = "of the chip before";
    Set_UI_State(bench.frm, 1);
    Connect_MCU(bench.frm, true);
    EXPECT_FALSE(bench.frm.session.Connected);
    EXPECT_TRUE(bench.frm.link.Status_Read_OK);
    EXPECT_EQ(bench.frm.session.UI_State, 0);
    EXPECT_FALSE(bench.port.is_open());
    EXPECT_EQ(bench.frm.screen.LabLock[9].Caption, "");
    EXPECT_EQ(bench.frm.session.Result, Job_Result::none);
    EXPECT_EQ(bench.log(),
              "\r\nWe are trying to connect to your MCU ... "
              "\r\nChinese:正在尝试与 MCU/单片机 握手连接 ... " +
                  told_of("VKM47H58RK+", "3.8C", options_of_C));
}

TEST(Connect, OverTheTriggerClaims115200Baud) {
    SessionBench bench({.model = "VKM47H58RK+"});
    bench.load(1000);
    bench.at(200, [&] { EXPECT_EQ(bench.frm.screen.cheTL.Value, 1); });
    Command2(bench.frm);
    EXPECT_EQ(bench.frm.screen.cheTL.Value, 0);
    expect_good_chip(bench);
    EXPECT_TRUE(bench.flash_holds(bench.image));
    EXPECT_TRUE(bench.log_has("\r\nNow baud is: / 当前波特率为: 115200 bps."));
    EXPECT_FALSE(bench.log_has("We are trying to program"));
}

TEST(Connect, ASecondClickLeavesTheTriggerLinkAlone) {
    SessionBench bench({.model = "VKM47H58RK+"});
    bench.load(1000);
    bench.at(200, [&] {
        Command2(bench.frm);
        EXPECT_EQ(bench.frm.screen.cheTL.Value, 1);
    });
    Command2(bench.frm);
    expect_good_chip(bench);
}

TEST(Connect, TellsDoubleSpeedByHalfTheExternalClock) {
    SessionBench bench({.model = "VKM47H58RK+", .clock_hz = 11059200, .double_speed = true});
    bench.load(100);
    comDownload(bench.frm, 0);
    EXPECT_TRUE(
        bench.log_has("\r\nInternal clock:22.118652MHz./内部时钟频率:22.118652M."
                      "\r\nExternal clock:11.059326MHz./外部时钟频率:11.059326M."))
        << bench.log();
}

// ---- the wrong model -------------------------------------------------------------------

TEST(WrongModel, EndsTheSessionAndAsksForTheFileAgain) {
    const struct {
        std::string chip, selected;
    } cases[] = {
        {"VKM47H516RK", "VKM47H51RB"}, {"VKM47W58AD", "VKM47W54AD"},
        {"VKM47H51RB", "VKM47H58RK+"}, {"VKM26H2052", "VKM26H4052"},
        {"VKM26H5404", "VKM26H5408"},  {"VKM26H5420", "VKM26H5404"},
        {"VKM27J032", "VKM27J008"},    {"VKM26H5412", "26H/W54xx Series"},
        {"VKM47H51RB", "VKM26H2052"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.chip + " for " + c.selected);
        SessionBench bench({.model = c.chip}, c.selected);
        bench.load(100);
        comDownload(bench.frm, 0);
        expect_failed_at(bench, "Identify model / 识别型号");
        EXPECT_TRUE(ends_with(bench.log(), "\r\nMCU Type is wrong. / MCU 型号错, 请重选"));
        EXPECT_EQ(bench.sounder.beeps(), 3);
        EXPECT_FALSE(bench.frm.images.File_Loaded);
        ASSERT_EQ(bench.boxes().size(), 1u);
        EXPECT_EQ(bench.boxes()[0].text,
                  "MCU Type is wrong, please select another MCU and open the file again.\r\n"
                  "         Chinese:MCU 型号错。请重选 MCU、重新打开文件。");
        EXPECT_EQ(bench.chip.counters().erases, 0);

        comDownload(bench.frm, 0);
        ASSERT_EQ(bench.boxes().size(), 2u);
        EXPECT_EQ(bench.boxes()[1].text, "    Please open file./请打开文件。    ");
        EXPECT_EQ(bench.verdict(), "✘ Failed / 失败: Identify model / 识别型号");
    }
}

// ---- the plan ------------------------------------------------------------------------------

TEST(Plan, WarnsOfAnImageBeyondTheFirmwaresReachInTheFirstRoundOnly) {
    SessionBench bench(
        {.model = "VKM26H5052", .after_start = {.power_cycle = true, .fresh_chip = true}});
    bench.choose(bench.frm.screen.comDalay_ReDownLoad, "2");
    bench.load(0x1500);
    const std::string warning = "\r\n\r\n程序文件超出此 MCU 固件下载范围, 超出部分不下载。 \r\n";
    std::vector<std::string> logs;
    std::function<void()> watch = [&] {
        if (bench.chip.counters().starts < 2) {
            const std::string& log = bench.log();
            if (log.find("will continue.  2") != std::string::npos &&
                (logs.empty() || logs.back() != log))
                logs.push_back(log);
            bench.at(100, watch);
            return;
        }
        comStop_Download(bench.frm);
    };
    bench.at(0, watch);
    std::string second;
    bench.at(8000, [&] { second = bench.log(); });
    comDownload(bench.frm, 1);
    ASSERT_FALSE(logs.empty());
    EXPECT_NE(logs[0].find(warning), std::string::npos) << logs[0];
    EXPECT_EQ(second.find("程序文件超出"), std::string::npos) << second;
    EXPECT_TRUE(bench.chip.faults().empty()) << bench.story();
    EXPECT_GE(bench.chip.counters().starts, 2);
}

TEST(Plan, CutsTheImageWhereTheFirmwareEnds) {
    SessionBench bench({.model = "VKM26H5052"});
    bench.load(0x1500);
    comDownload(bench.frm, 0);
    expect_good_chip(bench);
    EXPECT_TRUE(bench.flash_holds(std::span(bench.image).first(0x1400)));
    EXPECT_TRUE(bench.chip.faults().empty()) << bench.story();
    // Two beeps of the warning, one at the end.
    EXPECT_EQ(bench.sounder.beeps(), 3);
}

TEST(Plan, WarnsOfABlock0ThatMayNotBeWrittenAndGoesOn) {
    SessionBench bench({.model = "VKM47H58RK"});
    bench.load(300);
    bench.frm.session.Block0_Rule = {"", "", "1"};
    comDownload(bench.frm, 0);
    expect_good_chip(bench);
    EXPECT_TRUE(
        bench.log_has("\r\nBecause Block1 to write Block0 is disable, so program can not continue."
                      "\r\nChinese:因为由 block1 对 block0 编程已被禁止, 所以不能继续下载程序。"
                      "\r\nWe are erasing application flash..."));
    EXPECT_EQ(bench.sounder.beeps(), 4);

    SessionBench large({.model = "VKM47H58RK+"});  // its blocks are longer than a frame
    large.load(300);
    large.frm.session.Block0_Rule = {"", "", "1"};
    comDownload(large.frm, 0);
    EXPECT_FALSE(large.log_has("Block1"));
}

// ---- erase -----------------------------------------------------------------------------------

TEST(Erase, IsSkippedByFirmwareUpTo02) {
    for (int version : {0x00, 0x01, 0x02}) {
        SessionBench bench({.model = "VKM47H58RK", .version = version});
        bench.load(300);
        comDownload(bench.frm, 0);
        expect_good_chip(bench);
        EXPECT_EQ(bench.chip.counters().erases, 0) << version;
        const std::string firmware =
            version == 0 ? "A" : "0." + std::to_string(version) + "A";  // 00 is no version
        const GroupCase c = {"", "", 'A', version, both_clocks, told_of("", firmware, speed_of_A)};
        EXPECT_EQ(without_times(bench.log()), whole_log(c, "115200", false));
    }
    SessionBench bench({.model = "VKM47H58RK", .version = 0x03});
    bench.load(300);
    comDownload(bench.frm, 0);
    EXPECT_EQ(bench.chip.counters().erases, 1);
}

TEST(Erase, MeasuresItsTime) {
    SessionBench bench({.model = "VKM47H58RK+", .erase_time = std::chrono::milliseconds(3200)});
    bench.load(300);
    comDownload(bench.frm, 0);
    expect_good_chip(bench);
    EXPECT_TRUE(bench.log_has("\r\n正在擦除应用程序区... ( 00:03 )\r\n"));
    EXPECT_TRUE(bench.log_has("\r\nerase times/擦除时间 :  00:03\r\n"));
}

TEST(Erase, IsTriedThreeTimes) {
    SessionBench bench({.faults = {lose_frame(sim::FrameKind::erase, 2)}});
    bench.load(300);
    comDownload(bench.frm, 0);
    expect_good_chip(bench);
    EXPECT_TRUE(bench.log_has("正在擦除应用程序区... ( 00:10 )"));
}

// It comes at the end of the wait, or in the pause before the next try.
TEST(Erase, TakesALateAnswerAtTheEdgeOfItsTime) {
    for (int late = 4660; late <= 4720; late += 2) {  // the erase itself takes 300 ms
        SCOPED_TRACE(late);
        SessionBench bench(
            {.model = "VKM47W58AD",
             .faults = {fault_of(sim::FaultKind::delay, sim::FrameKind::erase, late, always)}});
        bench.load(100);
        comDownload(bench.frm, 0);
        expect_good_chip(bench);
        EXPECT_TRUE(bench.flash_holds(bench.image));
        EXPECT_LE(bench.chip.counters().erases, 2);
    }
}

const std::vector<std::uint8_t> acknowledgement = {0x46, 0xB9, 0x68, 0x00, 0x06, 0x80, 0xEE, 0x16};

// The firmware heard the repeat, too, and erases again.
TEST(Erase, ListensForASecondAnswerAsLongAsTheFirstTook) {
    SessionBench bench({.model = "VKM47H58RK+", .powered_at = sim::never});
    bench.frm.link.Chip_Letter = "C";
    bench.frm.link.Chip_Version = "3.8";
    const auto answer = [&] {
        auto& input = bench.line.input;
        input.insert(input.end(), acknowledgement.begin(), acknowledgement.end());
    };
    const double before = bench.elapsed_ms();
    bench.at(9'000, answer);
    bench.at(17'000, answer);
    Erase_Application(bench.frm);
    EXPECT_TRUE(bench.frm.link.frame_ok);
    EXPECT_GT(bench.elapsed_ms() - before, 17'000);
    EXPECT_FALSE(bench.frm.link.answer_owed);
}

TEST(Erase, ForgetsHalfAHeaderThatCameBefore) {
    SessionBench bench;
    bench.load(100);
    Connect_MCU(bench.frm, false);
    bench.frm.link.hunt_header = true;
    bench.frm.link.seen_46 = true;
    Erase_Application(bench.frm);
    EXPECT_TRUE(bench.frm.link.frame_ok);
    EXPECT_EQ(bench.heard(sim::FrameKind::erase), 1);
}

// What the search for a rate still owes would come at a rate that is over.
TEST(Erase, WaitsForNothingThatABaudTestOwes) {
    SessionBench bench({.faults = {lose_reply(sim::FrameKind::test_baud)}});
    bench.load(100);
    comDownload(bench.frm, 0);
    expect_good_chip(bench);
    Instant last_check, erase;
    for (const Written& written : bench.port.written) {
        if (written.bytes.size() < 8 || written.bytes[0] != 0x46) continue;
        if (written.bytes[5] == 0x80) last_check = written.at;
        if (written.bytes[5] == 0x84) erase = written.at;
    }
    EXPECT_LT(erase - last_check, Milliseconds(100));
}

TEST(Erase, WithoutAnAnswerInThreeTriesFailsTheJob) {
    SessionBench bench({.faults = {lose_frame(sim::FrameKind::erase, always)}});
    bench.load(300);
    comDownload(bench.frm, 0);
    expect_failed_at(bench, "Erase / 擦除");
    EXPECT_TRUE(ends_with(without_times(bench.log()),
                          "\r\n正在擦除应用程序区..."
                          "\r\nErase application is failed. / 擦除失败 (End: hh:mm:ss)"
                          "\r\nTry to use the lower baud. / 请尝试用稍低的波特率下载。"));
    EXPECT_EQ(bench.sounder.beeps(), 3);
    EXPECT_EQ(bench.chip.counters().blocks, 0);
    EXPECT_GT(bench.job_ms(), 15000);
    EXPECT_LT(bench.job_ms(), 18000);
}

TEST(Erase, SparesTheDataMemoryOfAChipThatKeepsIt) {
    for (bool keeps : {false, true}) {
        sim::OptionBytes options;
        options.fill(0xFF);
        options[8] = keeps ? 0xFF : 0xFD;
        SessionBench bench({.model = "VKM26H2052", .options = options});
        bench.load(700);
        comDownload(bench.frm, 0);
        expect_good_chip(bench);
        std::vector<std::uint8_t> range;
        for (const Written& written : bench.port.written)
            if (written.bytes.size() == 15 && written.bytes[5] == 0x84)
                range.assign(written.bytes.begin() + 6, written.bytes.begin() + 13);
        // From behind the image up to the data memory, or to its end.
        EXPECT_EQ(range, keeps ? (std::vector<std::uint8_t>{0xFF, 0, 0x02, 0xBC, 0, 0x10, 0x00})
                               : (std::vector<std::uint8_t>{0xFF, 0, 0x02, 0xBC, 0, 0x13, 0xFF}));
    }
}

TEST(Erase, RestartsThePortAndRestsBehindTheAnswer) {
    SessionBench bench;
    bench.load(100);
    int openings_before = 0;
    int openings_after = 0;
    std::function<void()> watch = [&] {
        (bench.log_has("We are erasing") ? openings_after : openings_before) = bench.port.openings;
        if (!bench.log_has("Programming...")) bench.at(1, watch);
    };
    bench.at(0, watch);
    comDownload(bench.frm, 0);
    EXPECT_EQ(openings_after, openings_before + 1);

    Instant erased{};
    Instant first_block{};
    for (const sim::LoggedFrame& frame : bench.chip.take_log()) {
        if (frame.kind == sim::FrameKind::erase) erased = frame.at;
        if (frame.kind == sim::FrameKind::block && first_block == Instant{}) first_block = frame.at;
    }
    EXPECT_GE(first_block - erased, Milliseconds(100));
}

TEST(Erase, TakesAnyGoodFrameForAnAnswer) {
    SessionBench bench(
        {.faults = {
             {.kind = sim::FaultKind::other_code, .frame = sim::FrameKind::erase, .value = 0x8F}}});
    bench.load(300);
    comDownload(bench.frm, 0);
    expect_good_chip(bench);
}

TEST(Erase, ClearsWhatTheChipHeldBefore) {
    for (const GroupCase& c : group_cases()) {
        SCOPED_TRACE(c.chip);
        SessionBench bench({.model = c.chip, .letter = c.letter, .version = c.version}, c.model);
        bench.chip.load_flash(random_bytes(bench.chip.flash().size(), 77));
        bench.load(900);
        comDownload(bench.frm, 0);
        expect_good_chip(bench);
        EXPECT_TRUE(bench.flash_holds(bench.image)) << bench.story();
        EXPECT_TRUE(bench.chip.faults().empty()) << bench.story();
    }
}

// ---- programming --------------------------------------------------------------------------------

// The data frames that went out, in order.
struct SentBlock {
    int command, address, count;
    bool operator==(const SentBlock&) const = default;
};

std::vector<SentBlock> sent_blocks(const SessionBench& bench) {
    std::vector<SentBlock> blocks;
    for (const Written& written : bench.port.written) {
        const auto& b = written.bytes;
        if (b.size() < 15 || b[0] != 0x46 || b[1] != 0xB9 || b[2] != 0x6A) continue;
        if (b[5] != 0x00 && b[5] != 0x30) continue;
        blocks.push_back(
            {b[5], (b[6] << 24) | (b[7] << 16) | (b[8] << 8) | b[9], b[10] << 8 | b[11]});
    }
    return blocks;
}

TEST(Programming, SendsAnImageOf100BytesIn640) {
    SessionBench bench({.model = "VKM47H58RK"});
    bench.load(100);
    comDownload(bench.frm, 0);
    EXPECT_EQ(sent_blocks(bench),
              (std::vector<SentBlock>{
                  {0, 0, 128}, {0, 128, 128}, {0, 256, 128}, {0, 384, 128}, {0, 512, 128}}));
    EXPECT_EQ(bench.chip.flash()[100], 0);  // as it stands in the buffer

    SessionBench large({.model = "VKM47H58RK+"});
    large.load(100);
    comDownload(large.frm, 0);
    EXPECT_EQ(sent_blocks(large).size(), 8u);
    EXPECT_EQ(sent_blocks(large).back(), (SentBlock{0, 896, 128}));
}

TEST(Programming, BeginsWhereTheImageBegins) {
    SessionBench bench({.model = "VKM47H58RK+"});
    bench.load(0x300, 0x110);
    comDownload(bench.frm, 0);
    expect_good_chip(bench);
    EXPECT_TRUE(bench.flash_holds(bench.image, 0x110));
    EXPECT_EQ(sent_blocks(bench), (std::vector<SentBlock>{{0, 0x110, 128},
                                                          {0, 0x180, 128},
                                                          {0, 0x200, 128},
                                                          {0, 0x280, 128},
                                                          {0, 0x300, 128},
                                                          {0, 0x380, 128},
                                                          {0, 0x400, 128},
                                                          {0, 0x480, 128},
                                                          {0, 0x500, 128},
                                                          {0, 0x580, 128}}));
}

TEST(Programming, ARetriedBlockBeginsWithCommand30) {
    // The third frame of the second block isn't answered, once.
    SessionBench bench(
        {.model = "VKM47H58RK+", .faults = {lose_frame(sim::FrameKind::block, 1, 7)}});
    bench.load(1200);
    comDownload(bench.frm, 0);
    expect_good_chip(bench);
    EXPECT_TRUE(bench.flash_holds(bench.image));
    const auto blocks = sent_blocks(bench);
    ASSERT_EQ(blocks.size(), 12u + 3u);
    EXPECT_EQ(blocks[6], (SentBlock{0x00, 0x300, 128}));
    EXPECT_EQ(blocks[7], (SentBlock{0x30, 0x200, 128}));
    EXPECT_EQ(blocks[8], (SentBlock{0x00, 0x280, 128}));
    EXPECT_EQ(blocks[9], (SentBlock{0x00, 0x300, 128}));
}

TEST(Programming, SurvivesFiveFailuresInARowAndNoSixth) {
    const sim::FaultKind kinds[] = {sim::FaultKind::lose_frame, sim::FaultKind::lose_reply,
                                    sim::FaultKind::other_code, sim::FaultKind::wrong_data_sum,
                                    sim::FaultKind::damage};
    for (const sim::FaultKind kind : kinds) {
        SCOPED_TRACE(std::string(sim::name_of(kind)));
        for (int failures : {5, 6}) {
            SessionBench bench({.model = "VKM47H58RK+",
                                .faults = {{.kind = kind,
                                            .frame = sim::FrameKind::block,
                                            .nth = 6,
                                            .times = failures,
                                            .value = kind == sim::FaultKind::damage ? 5 : 0x8F}}});
            bench.load(3000);
            // A block starts over with its first frame, so that the fault strikes
            // that one from its second try on.
            comDownload(bench.frm, 0);
            if (failures == 5) {
                expect_good_chip(bench);
                EXPECT_TRUE(bench.flash_holds(bench.image)) << bench.story();
            } else {
                expect_failed_at(bench, "Program / 下载");
                EXPECT_TRUE(
                    ends_with(without_times(bench.log()),
                              "\r\nProgram is failure. / 下载失败 (End: hh:mm:ss)"
                              "\r\nTry to use the lower baud. / 请尝试用稍低的波特率下载。"));
                EXPECT_EQ(bench.sounder.beeps(), 3);
                EXPECT_EQ(sent_blocks(bench).size(), 5u + 6u);
            }
        }
    }
}

TEST(Programming, ABlockThatSucceedsForgivesTheFailuresBefore) {
    sim::FaultPlan faults;
    // Five failures in each of three blocks, a success between them.
    for (int nth : {1, 10, 19}) faults.push_back(lose_frame(sim::FrameKind::block, 5, nth));
    SessionBench bench({.model = "VKM47H58RK+", .faults = faults});
    bench.load(2000);
    comDownload(bench.frm, 0);
    expect_good_chip(bench);
    EXPECT_TRUE(bench.flash_holds(bench.image));
}

TEST(Programming, TriesASingleBlockThreeTimes) {
    for (int losses : {2, 3}) {
        SessionBench bench(
            {.model = "VKM47H58RK+", .faults = {lose_frame(sim::FrameKind::block, losses)}});
        bench.load(0x80, 0x400);
        comDownload(bench.frm, 0);
        if (losses == 2) {
            expect_good_chip(bench);
            EXPECT_TRUE(bench.flash_holds(bench.image, 0x400));
            EXPECT_EQ(sent_blocks(bench)[1].command, 0x30);
        } else {
            expect_failed_at(bench, "Program / 下载");
        }
    }
}

TEST(Programming, ASingleBlockInAMemoryHoleCountsAsDone) {
    SessionBench bench({.model = "VKM47H55RK+"});
    bench.load(0x80, 0x400);
    comDownload(bench.frm, 0);
    expect_good_chip(bench);
    EXPECT_TRUE(sent_blocks(bench).empty());

    SessionBench behind({.model = "VKM47W55RK+"});
    behind.load(0x80, 0x8000);
    comDownload(behind.frm, 0);
    expect_good_chip(behind);
    EXPECT_TRUE(behind.flash_holds(behind.image, 0x8000));
}

TEST(Programming, SetsTheWaitsOfTheBoardLink) {
    SessionBench bench;
    bench.frm.link.Board_Block_Wait = 1;
    bench.frm.link.Board_Gap_Wait = 1;
    bench.load(10);
    comDownload(bench.frm, 0);
    EXPECT_EQ(bench.frm.link.Board_Block_Wait, 600);
    EXPECT_EQ(bench.frm.link.Board_Gap_Wait, 200);
}

TEST(Programming, TakesAnswersWithoutADataSum) {
    SessionBench bench({.model = "VKM47H58RK+", .short_acks = true});
    bench.load(2000);
    comDownload(bench.frm, 0);
    expect_good_chip(bench);
    EXPECT_TRUE(bench.flash_holds(bench.image));
}

TEST(Programming, CutsTheImageBelowTheBootFirmware) {
    // Feature 2: 2 K of firmware, so the chip ends 1 K earlier.
    SessionBench bench({.model = "VKM47H516RK+", .feature = 2});
    bench.load(63488);
    comDownload(bench.frm, 0);
    expect_good_chip(bench);
    EXPECT_TRUE(bench.flash_holds(std::span(bench.image).first(62464)));
    EXPECT_TRUE(bench.chip.faults().empty()) << bench.story();
    EXPECT_EQ(bench.sounder.beeps(), 3);
    EXPECT_TRUE(
        bench.log_has("\r\nEnable 61K file size for this Version firmware."
                      "\r\n\r\nChinese:此版本固件最多可编程 61K, 您的文件已超长，"
                      "\r\n        超长部分不下载。\r\n"
                      "\r\nProgram OK / 下载 OK(有一部分数据未下载)。\r\n"))
        << bench.log();
    EXPECT_EQ(bench.frm.session.Cut_Note, "(Downloaded 61K only)");
    EXPECT_EQ(bench.frm.screen.ProgressBar1.Max, 62463 / 256 + 1);

    // The next chip takes it whole: no remark.
    SessionBench whole({.model = "VKM47H516RK+"});
    whole.frm.session.Cut_Note = "stale";
    whole.frm.session.Cut_Note_CN = "stale";
    whole.load(63488);
    comDownload(whole.frm, 0);
    expect_good_chip(whole);
    EXPECT_TRUE(whole.flash_holds(whole.image));
    EXPECT_TRUE(whole.log_has("\r\nProgram OK / 下载 OK\r\n"));
    EXPECT_EQ(whole.frm.session.Cut_Note, "");
}

TEST(Programming, RemarksTheCutInEnglishBehindTheResult) {
    SessionBench bench({.model = "VKM47H516RK+", .feature = 2});
    bench.frm.screen.Show_English = true;
    bench.load(63488);
    comDownload(bench.frm, 0);
    EXPECT_TRUE(
        bench.log_has("\r\nEnable 61K file size for this Version firmware."
                      "\r\nProgram OK(Downloaded 61K only)\r\n"))
        << bench.log();
}

TEST(Programming, TakesTheFirmwaresSizeFromItsVersionWhenTheChipDoesntTell) {
    // The code of letter B tells no size; version 2.5 stands for 2 K.
    SessionBench bench({.model = "VKM47W516AD", .version = 0x25});
    bench.load(0xFC00);
    comDownload(bench.frm, 0);
    EXPECT_TRUE(bench.log_has("\r\nEnable 62K file size for this Version firmware."));
    EXPECT_EQ(sent_blocks(bench).back(), (SentBlock{0, 0xF780, 128}));
    EXPECT_EQ(bench.frm.session.Firmware_Size, 2048);

    SessionBench whole({.model = "VKM47W516AD", .version = 0x24});
    whole.load(0xFC00);
    comDownload(whole.frm, 0);
    EXPECT_TRUE(whole.flash_holds(whole.image));
    EXPECT_FALSE(whole.log_has("Enable"));
}

TEST(Programming, JoinsProgramAndDataFileInFamilies3And4) {
    SessionBench bench({.model = "VKM26H5404", .version = 0x51});
    bench.load(2222);
    const auto data = random_bytes(3333, 9);
    bench.load_data_bytes(data);
    comDownload(bench.frm, 0);
    expect_good_chip(bench);
    EXPECT_TRUE(bench.flash_holds(bench.image));
    EXPECT_TRUE(bench.flash_holds(data, 0x1000));
    EXPECT_TRUE(bench.chip.faults().empty()) << bench.story();
}

TEST(Programming, OtherFamiliesLeaveTheDataFileAlone) {
    SessionBench bench({.model = "VKM47H51RB"});
    bench.load(2222);
    bench.load_data_bytes(random_bytes(100, 9));
    comDownload(bench.frm, 0);
    expect_good_chip(bench);
    EXPECT_EQ(sent_blocks(bench).back().address, 0x980);
}

TEST(Programming, EndsFamily6WithItsDataMemory) {
    SessionBench bench({.model = "VKM27J060"});
    bench.load(0xF800);
    comDownload(bench.frm, 0);
    expect_good_chip(bench);
    EXPECT_TRUE(bench.flash_holds(std::span(bench.image).first(0xF000)));
    EXPECT_EQ(sent_blocks(bench).back().address, 0xEF80);
}

TEST(Programming, ShowsItsProgressOnceABlock) {
    SessionBench bench({.model = "VKM47H58RK"});
    bench.load(1280);
    std::vector<std::string> texts;
    std::vector<std::int32_t> values;
    std::function<void()> watch = [&] {
        const std::string& text = bench.frm.screen.labKbyte.Caption;
        if (!text.empty() && (texts.empty() || texts.back() != text)) {
            texts.push_back(text);
            values.push_back(bench.frm.screen.ProgressBar1.Value);
            EXPECT_TRUE(bench.frm.screen.ProgressBar1.Visible);
        }
        bench.at(1, watch);
    };
    bench.at(0, watch);
    comDownload(bench.frm, 0);
    EXPECT_EQ(texts, (std::vector<std::string>{"0.125K", "0.250K", "0.375K", "0.500K", "0.625K",
                                               "0.750K", "0.875K", "1.000K", "1.125K", "1.250K"}));
    EXPECT_EQ(values,
              (std::vector<std::int32_t>{128, 256, 384, 512, 640, 768, 896, 1024, 1152, 1280}));
    EXPECT_FALSE(bench.frm.screen.ProgressBar1.Visible);
    EXPECT_EQ(bench.frm.screen.labKbyte.Caption, "");
    EXPECT_EQ(bench.frm.screen.ProgressBar1.Max, 1280);
}

TEST(Programming, CountsTheBarInUnitsBeyond32767) {
    SessionBench bench({.model = "VKM47H58RK+"});
    bench.load(32769);
    comDownload(bench.frm, 0);
    expect_good_chip(bench);
    EXPECT_EQ(bench.frm.screen.ProgressBar1.Min, 0);
    EXPECT_EQ(bench.frm.screen.ProgressBar1.Max, 33279 / 256 + 1);
    EXPECT_EQ(bench.frm.screen.ProgressBar1.Value, 130);
}

TEST(Programming, GivesTheLastBlockASecondAtTheLowestBaud) {
    double settled[2];
    for (int i : {0, 1}) {
        SessionBench bench({.model = "VKM47W58AD"});  // has no option write in between
        bench.choose(bench.frm.screen.cobBaudMax, i == 0 ? "2400" : "1200");
        bench.load(10);
        comDownload(bench.frm, 0);
        expect_good_chip(bench);
        const Written* last_block = nullptr;
        const Written* trigger = nullptr;
        for (const Written& w : bench.port.written) {
            if (w.bytes.size() == 142) last_block = &w;
            if (w.bytes.size() == 12 && w.bytes[0] == 0xFE) trigger = &w;
        }
        ASSERT_TRUE(last_block && trigger);
        const double wire = 142 * 10.0 / (i == 0 ? 2400 : 1200) * 1000;
        settled[i] =
            std::chrono::duration<double, std::milli>(trigger->at - last_block->at).count() - wire;
    }
    EXPECT_LT(settled[0], 200);
    EXPECT_GT(settled[1], 1000);
}

// ---- options and the end ------------------------------------------------------------------------

TEST(Finish, OptionsThatCantBeWrittenFailTheJobAndTheSeries) {
    sim::OptionBytes other{};
    SessionBench bench({.options = other, .faults = {lose_frame(sim::FrameKind::options, always)}});
    bench.load(100);
    comDownload(bench.frm, 1);
    expect_failed_at(bench, "Write options / 写选项");
    EXPECT_FALSE(bench.chip.started());
    EXPECT_FALSE(bench.log_has("Program OK"));
}

TEST(Finish, SendsTheTriggerAndALastCommandAndClosesThePort) {
    SessionBench bench;
    bench.load(100);
    comDownload(bench.frm, 0);
    const auto& written = bench.port.written;
    ASSERT_GE(written.size(), 2u);
    EXPECT_EQ(written[written.size() - 2].bytes,
              (std::vector<std::uint8_t>{0xFE, 0xFE, 0xFE, 0xFE, 0x46, 0xB9, 0x6A, 0x00, 0x06, 0x82,
                                         0xF2, 0x16}));
    EXPECT_EQ(written.back().bytes,
              (std::vector<std::uint8_t>{0x46, 0xB9, 0x6A, 0x00, 0x0A, 0x52, 0x02, 0x00, 0x36, 0x01,
                                         0xFF, 0x16}));
    EXPECT_EQ(written.back().at - written[written.size() - 2].at, Milliseconds(100));
}

TEST(Finish, LetsTheTriggerLeaveTheSlowestLineWhole) {
    for (const auto& [baud, wait] : {std::pair{"2400", 100.0}, std::pair{"1200", 120.0}}) {
        SessionBench bench({.model = "VKM47W58AD"});
        bench.choose(bench.frm.screen.cobBaudMax, baud);
        bench.load(10);
        comDownload(bench.frm, 0);
        expect_good_chip(bench);
        const auto& written = bench.port.written;
        ASSERT_GE(written.size(), 2u);
        const Written& trigger = written[written.size() - 2];
        ASSERT_EQ(trigger.bytes[0], 0xFE);
        EXPECT_NEAR(std::chrono::duration<double>(written.back().at - trigger.at).count() * 1000,
                    wait, 2);
    }
}

TEST(Finish, BeepsOnlyWhenTheOperatorWantsItAndLosesNoTimeByIt) {
    double job_ms[2];
    for (int beeps : {0, 1}) {
        SessionBench bench;
        bench.frm.screen.optBeepYes.Value = beeps;
        bench.load(100);
        comDownload(bench.frm, 0);
        EXPECT_EQ(bench.sounder.beeps(), beeps);
        job_ms[beeps] = bench.job_ms();
    }
    EXPECT_DOUBLE_EQ(job_ms[0], job_ms[1]);
}

TEST(Finish, TellsOnlyTwoDigitsOfTheMinutes) {
    SessionBench bench;
    EXPECT_EQ(elapsed_time(bench.frm, bench.wall_clock.seconds() - 6000), "00:00");
    EXPECT_EQ(elapsed_time(bench.frm, bench.wall_clock.seconds() - 754), "12:34");
    EXPECT_EQ(elapsed_time(bench.frm, bench.wall_clock.seconds() + 9), "00:00");
}

TEST(Finish, TheLengthBeginsWithTheProgramming) {
    SessionBench bench({.model = "VKM47H58RK+",
                        .block_time = std::chrono::milliseconds(20),
                        .erase_time = std::chrono::milliseconds(4000)});
    bench.load(20000);
    comDownload(bench.frm, 0);
    EXPECT_TRUE(bench.log_has("\r\nprogram times/下载时间: 00:05") ||
                bench.log_has("\r\nprogram times/下载时间: 00:06"))
        << bench.log();
}

TEST(Counter, IsStoredBeforeAnythingElseCanGoWrong) {
    SessionBench bench;
    bench.frm.screen.txtWrite_OK_Count.Text = " 41 ";
    bench.load(100);
    bool seen = false;
    bench.settings.after_flush = [&] {
        if (seen) return;
        seen = true;
        EXPECT_TRUE(bench.log_has("Have already encrypt"));
        EXPECT_EQ(bench.settings.on_disk.at({"Settings", "Write_OK_Count"}), "42");
        EXPECT_FALSE(bench.port.is_open());
        EXPECT_NE(bench.frm.session.Result, Job_Result::done);  // no verdict yet
    };
    comDownload(bench.frm, 0);
    EXPECT_TRUE(seen);
    EXPECT_EQ(bench.count(), "42");
}

TEST(Counter, IsClearedAtOnce) {
    SessionBench bench;
    bench.frm.screen.txtWrite_OK_Count.Text = "77";
    comClear_OK_Count(bench.frm);
    EXPECT_EQ(bench.count(), "0");
    EXPECT_EQ(bench.settings.on_disk.at({"Settings", "Write_OK_Count"}), "0");
}

TEST(Counter, SurvivesAHandEditedText) {
    for (const auto& [text, next] : std::map<std::string, std::string>{
             {"", "1"}, {"many", "1"}, {"99999999999999999999", "100000000000000000000"}}) {
        SessionBench bench;
        bench.frm.screen.txtWrite_OK_Count.Text = text;
        bench.load(10);
        comDownload(bench.frm, 0);
        EXPECT_EQ(bench.count(), next);
    }
}

// ---- Re-Download
// ---------------------------------------------------------------------------------

// Notes every text of the log that lasts, and the verdict beside it.
struct LogWatch {
    explicit LogWatch(SessionBench& watched) : bench(watched) { look(); }

    void look() {
        if (logs.empty() || logs.back() != bench.log()) {
            logs.push_back(bench.log());
            verdicts.push_back(bench.verdict());
        }
        if (bench.frm.session.Running || !started) bench.at(50, [this] { look(); });
        started = started || bench.frm.session.Running;
    }

    SessionBench& bench;
    bool started = false;
    std::vector<std::string> logs;
    std::vector<std::string> verdicts;
};

TEST(ReDownload, CountsDownBetweenTheChipsOfASeries) {
    SessionBench bench(
        {.model = "VKM47H58RK+", .after_start = {.power_cycle = true, .fresh_chip = true}});
    bench.load(1500);
    bench.choose(bench.frm.screen.comDalay_ReDownLoad, "3");
    LogWatch watch(bench);
    // The third chip is done; Stop comes in the count-down behind it.
    std::function<void()> stop = [&] {
        if (bench.count() == "3" && bench.log_has("will continue.  2"))
            comStop_Download(bench.frm);
        else
            bench.at(20, stop);
    };
    bench.at(0, stop);
    comDownload(bench.frm, 1);

    EXPECT_EQ(bench.chip.counters().starts, 3);
    EXPECT_EQ(bench.chip.counters().chips, 4);
    EXPECT_EQ(bench.count(), "3");
    EXPECT_EQ(bench.settings.on_disk.at({"Settings", "Write_OK_Count"}), "3");
    expect_session_over(bench);

    const std::string kept = whole_log(
        {"", "", 'C', 0x38, both_clocks, told_of("VKM47H58RK+", "3.8C", options_of_C)}, "115200");
    int steps = 0;
    for (std::size_t i = 0; i < watch.logs.size(); ++i) {
        const std::string log = without_times(watch.logs[i]);
        if (log.find("will continue") == std::string::npos) continue;
        const std::string n = std::to_string(3 - steps % 3);
        EXPECT_EQ(log, kept +
                           "\r\n\r\nProgram succeed. / 下载成功."
                           "\r\n\r\nAfter a few seconds re-connect will continue.  " +
                           n + "\r\n\r\nChinese:几秒钟后将继续下载下一个 MCU...  " + n);
        EXPECT_EQ(watch.verdicts[i], "✔ OK / 成功");
        ++steps;
    }
    EXPECT_EQ(steps, 9);

    // The rest of the count-down ran, and only then the stop was told.
    EXPECT_EQ(bench.log(),
              "\r\nWe are trying to connect to your MCU ... "
              "\r\nChinese:正在尝试与 MCU/单片机 握手连接 ... "
              "\r\nOperation is stop. / 操作被停止.");
    expect_stopped(bench);
}

TEST(ReDownload, TellsTheCountDownInEnglish) {
    SessionBench bench;
    bench.frm.screen.Show_English = true;
    bench.load(10);
    bench.choose(bench.frm.screen.comDalay_ReDownLoad, "1");
    LogWatch watch(bench);
    bench.click_stop_in(6000);
    comDownload(bench.frm, 1);
    int steps = 0;
    for (const std::string& log : watch.logs)
        if (ends_with(log,
                      "\r\n\r\nProgram succeed."
                      "\r\n\r\nAfter a few seconds re-connect will continue.  1"))
            ++steps;
    EXPECT_EQ(steps, 1);
}

TEST(ReDownload, GoesOnAtOnceWithADelayOfZero) {
    SessionBench bench({.after_start = {.power_cycle = true,
                                        .off_after = std::chrono::milliseconds(1),
                                        .off_for = std::chrono::milliseconds(1)}});
    fill_list(bench.frm.screen.comDalay_ReDownLoad, {"0"});
    bench.frm.screen.comDalay_ReDownLoad.ListIndex = 0;
    bench.load(10);
    LogWatch watch(bench);
    bench.click_stop_in(15000);
    comDownload(bench.frm, 1);
    EXPECT_GE(bench.chip.counters().starts, 5);
    for (const std::string& log : watch.logs)
        EXPECT_EQ(log.find("will continue"), std::string::npos);
    expect_stopped(bench);
}

TEST(ReDownload, EndsTheSeriesAtTheFirstFailure) {
    SessionBench bench({.after_start = {.power_cycle = true, .fresh_chip = true},
                        .faults = {lose_frame(sim::FrameKind::erase, always, 2)}});
    bench.choose(bench.frm.screen.comDalay_ReDownLoad, "1");
    bench.load(10);
    comDownload(bench.frm, 1);
    EXPECT_EQ(bench.count(), "1");
    EXPECT_EQ(bench.verdict(), "✘ Failed / 失败: Erase / 擦除");
    expect_session_over(bench);
}

TEST(ReDownload, RefusesClicksInTheRestOfAStoppedCountDown) {
    SessionBench bench;
    bench.load(10);
    bench.choose(bench.frm.screen.comDalay_ReDownLoad, "9");
    bool stopped = false;
    std::function<void()> act = [&] {
        if (!stopped && bench.log_has("will continue.  8")) {
            comStop_Download(bench.frm);
            stopped = true;
            EXPECT_TRUE(bench.frm.screen.comDownload[0].Enabled);
        } else if (stopped && bench.frm.session.Running) {
            comDownload(bench.frm, 0);
            EXPECT_TRUE(bench.frm.link.stop_requested);
        }
        if (!stopped || bench.frm.session.Running) bench.at(100, act);
    };
    bench.at(0, act);
    comDownload(bench.frm, 1);
    EXPECT_EQ(bench.chip.counters().starts, 1);
    expect_stopped(bench);
}

// ---- Stop
// ----------------------------------------------------------------------------------------

TEST(Stop, WorksAtEveryMomentOfAJob) {
    std::map<std::string, int> outcomes;
    for (int ms = 0; ms < 3300; ms += 3) {
        SCOPED_TRACE("stop after " + std::to_string(ms) + " ms");
        SessionBench bench({.model = "VKM47H58RK+"});
        bench.load(4000);
        Instant stopped = never;
        bench.at(ms, [&] {
            comStop_Download(bench.frm);
            stopped = bench.loop.now();
        });
        comDownload(bench.frm, 0);
        expect_session_over(bench);
        ++outcomes[bench.verdict()];
        if (bench.frm.session.Result == Job_Result::done) {
            expect_good_chip(bench);
            EXPECT_TRUE(bench.flash_holds(bench.image));
        } else {
            expect_stopped(bench);
            EXPECT_EQ(bench.count(), "0");
            // No wait for the chip goes on; only short waits and beeps run to their end.
            EXPECT_LT(bench.loop.now() - stopped, Milliseconds(1100));
        }
        if (HasFailure()) break;
    }
    EXPECT_EQ(outcomes.size(), 2u);
    EXPECT_GT(outcomes["■ Stopped / 已停止"], 500);
    EXPECT_GT(outcomes["✔ OK / 成功"], 50);
}

TEST(Stop, WorksAtEveryMomentAtTheLowestBaud) {
    int stopped = 0;
    for (int ms = 0; ms < 13000; ms += 37) {
        SCOPED_TRACE("stop after " + std::to_string(ms) + " ms");
        SessionBench bench({.model = "VKM47H58RK"});
        bench.choose(bench.frm.screen.cobBaudMax, "1200");
        bench.load(100);
        bench.click_stop_in(ms);
        comDownload(bench.frm, 0);
        if (bench.frm.session.Result == Job_Result::done) {
            // Stop may cut off the trigger that starts the program; the chip is good.
            expect_session_over(bench);
            EXPECT_EQ(bench.count(), "1");
            EXPECT_TRUE(bench.flash_holds(bench.image));
        } else if (bench.log_has("Config option")) {
            // A stopped option write is told as one that failed.
            expect_session_over(bench);
            EXPECT_EQ(bench.frm.session.Result, Job_Result::stopped);
            EXPECT_EQ(bench.count(), "0");
        } else {
            expect_stopped(bench);
            ++stopped;
        }
        if (HasFailure()) return;
    }
    EXPECT_GT(stopped, 100);
}

TEST(Stop, WorksAtEveryMomentOfASeries) {
    std::map<std::string, int> counts;
    for (int ms = 0; ms < 12000; ms += 29) {
        SCOPED_TRACE("stop after " + std::to_string(ms) + " ms");
        SessionBench bench(
            {.model = "VKM26H2052", .after_start = {.power_cycle = true, .fresh_chip = true}});
        bench.choose(bench.frm.screen.comDalay_ReDownLoad, "2");
        bench.load(1000);
        bench.click_stop_in(ms);
        comDownload(bench.frm, 1);
        expect_stopped(bench);
        EXPECT_EQ(bench.count(), std::to_string(bench.chip.counters().starts));
        ++counts[bench.count()];
        if (HasFailure()) return;
    }
    EXPECT_GE(counts.size(), 3u);
}

TEST(Stop, WorksWhileTheChipHasNoPower) {
    SessionBench bench({.powered_at = sim::never});
    bench.load(100);
    bench.click_stop_in(60'000);
    comDownload(bench.frm, 0);
    expect_stopped(bench);
    EXPECT_EQ(bench.sounder.beeps(), 1 + 2);  // the advice after four seconds beeps twice
    EXPECT_LT(bench.job_ms(), 60'300);
}

TEST(Stop, WorksInTheMiddleOfALongErase) {
    SessionBench bench({.erase_time = std::chrono::milliseconds(4500)});
    bench.load(100);
    bench.click_stop_in(4000);
    comDownload(bench.frm, 0);
    expect_stopped(bench);
    EXPECT_EQ(bench.sounder.beeps(), 1);
    EXPECT_TRUE(bench.log_has("正在擦除应用程序区...\r\nOperation is stop."));
    // Two more tries end at their first look, and 100 ms follow; the beep has no pause.
    EXPECT_LT(bench.job_ms(), 4130);
}

TEST(Stop, DuringProgrammingIsToldWithThreeBeeps) {
    SessionBench bench({.block_time = std::chrono::milliseconds(50)});
    bench.load(10000);
    bench.click_stop_in(4000);
    comDownload(bench.frm, 0);
    expect_stopped(bench);
    EXPECT_EQ(bench.sounder.beeps(), 3);
}

TEST(Stop, MayComeTwice) {
    SessionBench bench({.powered_at = sim::never});
    bench.load(100);
    bench.click_stop_in(500);
    bench.click_stop_in(500);
    bench.click_stop_in(560);
    comDownload(bench.frm, 0);
    expect_stopped(bench);
    comStop_Download(bench.frm);
    expect_stopped(bench);
}

TEST(Stop, LeavesTheNextJobWhole) {
    SessionBench bench;
    bench.load(20000);
    bench.click_stop_in(2000);
    comDownload(bench.frm, 0);
    expect_stopped(bench);
    bench.chip.power_cycle(bench.loop.now(), Milliseconds(300));
    comDownload(bench.frm, 0);
    expect_good_chip(bench);
    EXPECT_TRUE(bench.flash_holds(bench.image));
}

TEST(Closing, StopsAJobInItsFirstPass) {
    for (int ms : {100, 1200, 1800, 2200, 2400}) {
        SCOPED_TRACE(ms);
        SessionBench bench({.block_time = std::chrono::milliseconds(20)});
        bench.load(20000);
        bench.at(ms, [&] { EXPECT_FALSE(QueryUnload(bench.frm)); });
        comDownload(bench.frm, 0);
        expect_stopped(bench);
        bench.run_for(1000);
        EXPECT_TRUE(bench.frm.screen.window.Close_Requested);
        EXPECT_TRUE(QueryUnload(bench.frm));
    }
}

}  // namespace
}  // namespace vkm::test
