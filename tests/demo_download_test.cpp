// Programming over a user's own ISP program: the job from the click on its page to the
// target's flash.
#include "demo_bench.h"

#include "catalogue/older_codes.h"
#include "window/main_window.h"

namespace vkm::test {
namespace {

std::int64_t us_between(Instant from, Instant to) {
    return std::chrono::duration_cast<std::chrono::microseconds>(to - from).count();
}

// ---- the good job ----------------------------------------------------------------------

TEST(DemoDownload, ProgramsATargetOverItsOwnIspProgram) {
    DemoBench bench;
    bench.run();
    expect_demo_good(bench);
    EXPECT_EQ(bench.target.faults(), std::vector<std::string>{}) << bench.demo_story();
    EXPECT_EQ(without_times(bench.log()),
              "\r\nWe are trying to connect to your MCU ... "
              "\r\nChinese:正在尝试与 MCU/单片机 握手连接 ... "
              "\r\nConnection is OK... / 握手成功..."
              "\r\nWe are read MCU Firmware Version ..."
              "\r\nWe are erasing application flash..."
              "\r\n正在擦除应用程序区..."
              "\r\nProgramming.../ 正在下载... ( Begin: hh:mm:ss )"
              "\r\nProgram OK / 下载 OK"
              "\r\nVerify  OK / 校验 OK  ( Total: mm:ss )");
    EXPECT_EQ(bench.sounder.beeps(), 0);
    EXPECT_TRUE(bench.boxes().empty());
}

TEST(DemoDownload, SpeaksEnglish) {
    DemoBench bench;
    bench.frm.screen.Show_English = true;
    bench.run();
    EXPECT_EQ(without_times(bench.log()),
              "\r\nWe are trying to connect to your MCU ... "
              "\r\nConnection is OK..."
              "\r\nWe are read MCU Firmware Version ..."
              "\r\nWe are erasing application flash..."
              "\r\nProgramming... ( Begin: hh:mm:ss )"
              "\r\nProgram OK."
              "\r\nVerify  OK ( Total: mm:ss )");
}

TEST(DemoDownload, SendsItsCommandsInTheirOrder) {
    DemoBench bench;
    bench.run();
    const std::vector<int> blocks(8, 0xB3);  // 1024 bytes, 128 to the frame
    std::vector<int> wanted = {0xB0, 0xB0, 0xB0, 0xB0, 0xB5, 0xB2};
    wanted.insert(wanted.end(), blocks.begin(), blocks.end());
    wanted.insert(wanted.end(), {0xB1, 0xB1});
    EXPECT_EQ(bench.commands(), wanted);
    EXPECT_EQ(bench.target.counters().ends, 2);
    for (const Written& written : bench.port.written) {
        EXPECT_EQ(written.settings, "115200,N,8,1");
        EXPECT_EQ(written.unsent, 0u);
    }
    const Bytes first(bench.image.begin(), bench.image.begin() + 128);
    EXPECT_EQ(bench.port.written[6].bytes, isp_block(0, first));
}

TEST(DemoDownload, WritesNoCommandSoonerThan20MsAndNoBlockSoonerThan100Ms) {
    sim::IspConfig config = isp_target();
    config.erase_time = std::chrono::milliseconds(1);
    DemoBench bench(config);
    bench.run();
    const auto& written = bench.port.written;
    ASSERT_EQ(written.size(), 16u);
    for (std::size_t i = 1; i < written.size(); ++i)
        if (written[i].bytes.size() == 8) {
            const std::int64_t us = us_between(written[i - 1].at, written[i].at);
            EXPECT_GE(us, 20'000) << i;
            EXPECT_LE(us, 40'000) << i;
        }
    EXPECT_GE(us_between(written[5].at, written[6].at), 101'000);
    EXPECT_LE(us_between(written[5].at, written[6].at), 108'000);
}

TEST(DemoDownload, TakesEachModelOfTheOlderCodes) {
    int models = 0;
    for (const OlderCode& row : older_codes()) {
        const std::string model(row.Chip_Name);
        if (model.find('/') != std::string::npos) continue;
        SCOPED_TRACE(model);
        ++models;
        sim::IspConfig config = isp_target();
        config.code = {static_cast<std::uint8_t>(
                           std::stoi(std::string(row.reported.substr(0, 2)), nullptr, 16)),
                       static_cast<std::uint8_t>(
                           std::stoi(std::string(row.reported.substr(2, 2)), nullptr, 16))};
        DemoBench bench(config, model);
        bench.run();
        expect_demo_good(bench);
        EXPECT_EQ(bench.frm.link.Chip_Name, model);
        EXPECT_EQ(bench.frm.link.Chip_ID_High, row.Chip_ID_High);
        EXPECT_EQ(bench.frm.link.Chip_ID_Low, row.Chip_ID_Low);
        EXPECT_EQ(bench.frm.options.Chip_Bytes[0], 0x5C);
    }
    EXPECT_EQ(models, 12);
}

TEST(DemoDownload, TakesATargetOfBothVariantsByItsId) {
    sim::IspConfig config = isp_target();
    config.code = {0x00, 0x58};
    DemoBench bench(config);
    bench.run();
    expect_demo_good(bench);
    EXPECT_EQ(bench.frm.link.Chip_Name, "VKM47H/W58RK+");
}

TEST(DemoDownload, BeepsBehindAGoodChipIfSo) {
    DemoBench bench;
    bench.frm.screen.optBeepYes.Value = 1;
    bench.run();
    EXPECT_EQ(bench.sounder.beeps(), 1);
}

TEST(DemoDownload, ClearsTheLinesOfTheReadOptionsBeforeItReadsTheVersion) {
    for (const bool answered : {true, false}) {
        DemoBench bench(isp_target(answered ? std::vector<std::string>{}
                                            : std::vector<std::string>{"lose_reply@connect*0"}));
        for (Control& line : bench.frm.screen.LabLock) line.Caption = "old";
        bench.click_demo_stop_in(3000);
        bench.run();
        for (const Control& line : bench.frm.screen.LabLock)
            EXPECT_EQ(line.Caption, answered ? "" : "old");
    }
}

TEST(DemoDownload, HidesTheProgressAtItsEnd) {
    DemoBench bench;
    bool seen = false;
    bench.at(580, [&] { seen = bench.frm.screen.ProgressBar1.Visible; });
    bench.run();
    EXPECT_TRUE(seen);
    EXPECT_FALSE(bench.frm.screen.ProgressBar1.Visible);
    EXPECT_EQ(bench.frm.screen.labKbyte.Caption, "");
}

TEST(DemoDownload, ShowsABusyToolInBothLockStates) {
    for (const bool locked : {false, true}) {
        DemoBench bench;
        if (locked) bench.click(bench.frm.screen.comLockOptions);
        int state = -1;
        bool stop = false;
        bench.at(300, [&] {
            state = bench.frm.session.UI_State;
            stop = bench.frm.screen.com_Demo_Stop.Enabled;
        });
        bench.run();
        EXPECT_EQ(state, locked ? 3 : 1);
        EXPECT_TRUE(stop);
        EXPECT_EQ(bench.frm.session.UI_State, locked ? 2 : 0);
        EXPECT_EQ(bench.frm.session.Result, Job_Result::done);
    }
}

TEST(DemoDownload, ProgramsPastTheEndThatABootFirmwareWouldSet) {
    sim::IspConfig config = isp_target();
    config.flash_size = 0x10000;
    DemoBench bench(config);
    bench.frm.session.Firmware_Size = 4096;
    bench.frm.session.Firmware_Size_Known = true;
    bench.load(0xF700);
    bench.run();
    expect_demo_good(bench);
    EXPECT_FALSE(bench.log_has("Enable "));
}

// ---- before the job -----------------------------------------------------------------------

TEST(DemoDownload, ClosesTheTerminalWhileItsOwnModeIsOff) {
    static int closed;
    static bool in_mode;
    for (const bool file : {true, false}) {
        DemoBench bench;
        closed = 0;
        in_mode = true;
        bench.frm.session.Close_Assistant_Port = [](frmMain& frm) {
            ++closed;
            in_mode = frm.link.demo_mode || frm.platform.port.is_open();
        };
        bench.frm.images.File_Loaded = file;
        bench.run();
        EXPECT_EQ(closed, 1);
        EXPECT_FALSE(in_mode);
    }
}

TEST(DemoDownload, NeedsAFile) {
    for (const bool english : {false, true}) {
        DemoBench bench;
        bench.frm.screen.Show_English = english;
        bench.frm.images.File_Loaded = false;
        bench.frm.link.demo_mode = true;
        bench.with_user_code("55");
        bench.run();
        ASSERT_EQ(bench.boxes().size(), 1u);
        EXPECT_EQ(bench.boxes()[0].text,
                  english ? "  Please open file. " : " Please open file./请打开文件。");
        EXPECT_EQ(bench.boxes()[0].title, "");
        EXPECT_EQ(bench.port.opens, 0);
        EXPECT_FALSE(bench.frm.session.Running);
        EXPECT_FALSE(bench.frm.link.demo_mode);
        EXPECT_EQ(bench.frm.session.UI_State, 0);
        EXPECT_EQ(bench.frm.screen.Focus_Request, "Text1");
        EXPECT_EQ(bench.log(), "");
    }
}

TEST(DemoDownload, DoesNotBeginInAWindowThatCloses) {
    DemoBench bench;
    QueryUnload(bench.frm);
    bench.run();
    EXPECT_EQ(bench.port.opens, 0);
    EXPECT_FALSE(bench.frm.session.Running);
    EXPECT_EQ(bench.frm.session.UI_State, 0);
}

TEST(DemoDownload, RestsTheKeyboardWhileItRuns) {
    DemoBench bench(isp_target({"lose_reply@connect:1*20"}));
    bench.frm.screen.Focus_Request = {};
    bool looked = false;
    bench.at(500, [&] {
        looked = bench.frm.session.Running;
        EXPECT_EQ(bench.frm.screen.Focus_Request, "Text1");
    });
    bench.run();
    EXPECT_TRUE(looked);
    expect_demo_good(bench);
}

TEST(DemoDownload, UsesTheChosenPort) {
    DemoBench bench;
    bench.port.plug(3);
    bench.frm.screen.combCommPort.ListIndex = 2;
    bench.run();
    expect_demo_good(bench);
    EXPECT_EQ(bench.port.opened_numbers, std::vector<int>(bench.port.opened_numbers.size(), 3));
}

// ---- the user code -----------------------------------------------------------------------

const Bytes code = {0x55, 0xAA, 0x01};

TEST(DemoUserCode, GoesOutFirstAtItsOwnSettingsAndStartsTheIspProgram) {
    sim::IspConfig config = isp_target();
    config.user_code = code;
    config.user_code_baud = 9600;
    config.baud = 57600;
    DemoBench bench(config);
    bench.with_user_code("55 AA 01", "9600");
    Screen& s = bench.frm.screen;
    ASSERT_TRUE(bench.choose(s.cob_DEMO_UserCode_Parity, "Even"));
    ASSERT_TRUE(bench.choose(s.cob_DEMO_UserCode_StopBits, "2"));
    // Those of a plain download's user code are others.
    ASSERT_TRUE(bench.choose(s.cobUserCodeBaud, "1200"));
    s.txtUserCode.Text = "11 22";
    bench.run();
    expect_demo_good(bench);
    EXPECT_EQ(bench.port.written[0].bytes, code);
    EXPECT_EQ(bench.port.written[0].settings, "9600,E,8,2");
    for (std::size_t i = 1; i < bench.port.written.size(); ++i) {
        EXPECT_EQ(bench.port.written[i].settings, "57600,N,8,1");
        EXPECT_NE(bench.port.written[i].bytes, code);
    }
    EXPECT_EQ(bench.target.counters().user_codes, 1);
}

TEST(DemoUserCode, IsNotSentUnlessItIsWanted) {
    DemoBench bench;
    bench.with_user_code("55 AA 01");
    bench.frm.screen.che_Demo_DownLoad.Value = 0;
    bench.run();
    expect_demo_good(bench);
    EXPECT_EQ(bench.port.written[0].bytes, isp_command(0xB0));
}

TEST(DemoUserCode, HasLeftTheWire20MsBeforeTheConnectBegins) {
    for (const char* baud : {"115200", "9600", "600"}) {
        DemoBench bench;
        bench.with_user_code("55 AA 01", baud);
        bench.run();
        expect_demo_good(bench);
        const std::int64_t wire = 3 * 10 * 1'000'000 / std::stol(baud);
        const auto& written = bench.port.written;
        // Then 20 ms more, as before each command.
        EXPECT_GE(us_between(written[0].at, written[1].at), wire + 40'000) << baud;
        EXPECT_LE(us_between(written[0].at, written[1].at), wire + 44'000) << baud;
    }
}

TEST(DemoUserCode, IsOncePerJobAlsoInASeries) {
    DemoBench bench;
    bench.with_user_code("55 AA 01");
    ASSERT_TRUE(bench.choose(bench.frm.screen.comDalay_ReDownLoad, "1"));
    bench.at(2500, [&] { bench.target.replace(bench.loop.now()); });
    bench.click_demo_stop_in(6000);
    bench.run_series();
    EXPECT_GE(bench.target.counters().erases, 2);
    EXPECT_EQ(std::count_if(bench.port.written.begin(), bench.port.written.end(),
                            [](const Written& w) { return w.bytes == code; }),
              1);
}

// ---- the port ------------------------------------------------------------------------------

TEST(DemoPort, TakesTheLineThatTheOperatorChose) {
    const struct {
        const char *baud, *parity, *bits, *stop, *settings;
    } lines[] = {{"9600", "Even", "8", "1", "9600,E,8,1"},
                 {"19200", "Odd", "8", "2", "19200,O,8,2"},
                 {"115200", "None", "8", "2", "115200,N,8,2"}};
    for (const auto& row : lines) {
        sim::IspConfig config = isp_target();
        config.baud = std::stoi(row.baud);
        DemoBench bench(config);
        Screen& s = bench.frm.screen;
        ASSERT_TRUE(bench.choose(s.cob_DEMO_DownLoad_Parity, row.parity));
        ASSERT_TRUE(bench.choose(s.cob_DEMO_DownLoad_DataBits, row.bits));
        ASSERT_TRUE(bench.choose(s.cob_DEMO_DownLoad_StopBits, row.stop));
        bench.run();
        expect_demo_good(bench);
        for (const Written& written : bench.port.written) EXPECT_EQ(written.settings, row.settings);
    }
}

TEST(DemoPort, WorksAtEachRateOfItsList) {
    const DemoBench lists;
    int rates = 0;
    for (const Entry& entry : lists.frm.screen.cob_DEMO_DownLoad_Baud.List) {
        SCOPED_TRACE(entry.Text);
        sim::IspConfig config = isp_target();
        config.baud = std::stoi(entry.Text);
        DemoBench bench(config);
        bench.run();
        expect_demo_good(bench);
        EXPECT_EQ(bench.target.faults(), std::vector<std::string>{});
        EXPECT_EQ(bench.target.counters().retried_blocks, 0);
        ++rates;
    }
    EXPECT_EQ(rates, 15);
}

// A frame takes longer than the wait for its answer there.
TEST(DemoPort, SendsWholeFramesOnTheSlowestLines) {
    for (const int baud : {300, 600, 1200}) {
        for (const bool silent : {false, true}) {
            SCOPED_TRACE(std::to_string(baud) + (silent ? " silent" : ""));
            sim::IspConfig config = isp_target();
            config.baud = baud;
            config.silent = silent;
            DemoBench bench(config);
            bench.load(300);
            if (silent) bench.click_demo_stop_in(3003);
            bench.run();
            if (silent)
                expect_demo_stopped(bench);
            else
                expect_demo_good(bench);
            EXPECT_GE(bench.target.counters().connects, 4);
            EXPECT_EQ(bench.target.faults(), std::vector<std::string>{}) << bench.demo_story();
        }
    }
}

TEST(DemoPort, WithSettingsThatItRefusesIsToldInABox) {
    for (const bool of_code : {false, true})
        for (const bool english : {false, true}) {
            DemoBench bench;
            Screen& s = bench.frm.screen;
            s.Show_English = english;
            bench.with_user_code("55");
            s.che_Demo_DownLoad.Value = of_code ? 1 : 0;
            (of_code ? s.cob_DEMO_UserCode_Parity : s.cob_DEMO_DownLoad_Parity).ListIndex = -1;
            bench.run();
            ASSERT_EQ(bench.boxes().size(), 1u);
            EXPECT_EQ(bench.boxes()[0].title, "  调试用串口     ");
            EXPECT_TRUE(ends_with(bench.boxes()[0].text, "115200,,8,1")) << bench.boxes()[0].text;
            EXPECT_EQ(bench.port.opens, 0);
            EXPECT_FALSE(bench.log_has("trying"));
            if (!of_code) expect_demo_over(bench);
            EXPECT_EQ(bench.frm.session.UI_State, 0);
            EXPECT_FALSE(bench.frm.session.Running);
            EXPECT_FALSE(bench.frm.link.demo_mode);
        }
}

TEST(DemoPort, ThatCantBeOpenedIsTold) {
    for (const bool of_code : {false, true})
        for (const bool english : {false, true}) {
            DemoBench bench;
            bench.frm.screen.Show_English = english;
            if (of_code) bench.with_user_code("55");
            bench.port.open_error[1] = error_busy;
            bench.run();
            EXPECT_EQ(bench.log(),
                      english ? "\r\nOpen COM port failure!\r\n"
                                "The COM port opened by another Program or no the COM port."
                              : "\r\nOpen COM port failure! / 打开串口失败!\r\n"
                                "The COM port opened by another Program or no the COM port.\r\n"
                                "Chinese:串口已被其它程序打开或该串口不存在。");
            EXPECT_EQ(bench.sounder.beeps(), 3);
            EXPECT_EQ(bench.port.opens, 1);
            EXPECT_TRUE(bench.boxes().empty());
            EXPECT_EQ(bench.frm.session.UI_State, 0);
            EXPECT_FALSE(bench.frm.session.Running);
            EXPECT_FALSE(bench.frm.link.demo_mode);
        }
}

TEST(DemoPort, ThatTheUserCodeCantOpenIsAFailedConnect) {
    DemoBench bench;
    bench.frm.session.Result = Job_Result::done;
    bench.frm.screen.che_Demo_DownLoad.Value = 1;
    bench.port.nth_open_error = {{1, 5}};
    bench.run();
    expect_demo_over(bench);
    EXPECT_EQ(bench.frm.session.Result, Job_Result::failed);
    EXPECT_EQ(bench.frm.session.Failed_Step, "Connect / 连接");
}

TEST(DemoPort, ThatGoesEndsWithAFailureOrWaitsForStop) {
    for (int ms = 5; ms < 1400; ms += 27) {
        SCOPED_TRACE(ms);
        DemoBench bench;
        bench.at(ms, [&] { bench.port.unplug(); });
        bench.click_demo_stop_in(60'000);
        bench.run();
        expect_demo_over(bench);
        EXPECT_NE(bench.frm.session.Result, Job_Result::running);
    }
}

// ---- connecting ------------------------------------------------------------------------------

TEST(DemoConnect, AsksAtTheIntervalOfTheRate) {
    const struct {
        int baud, wait_ms;
    } rows[] = {{1200, 200}, {2400, 100}, {4800, 50}, {9600, 50}, {115200, 50}};
    for (const auto& row : rows) {
        sim::IspConfig config = isp_target();
        config.baud = row.baud;
        config.silent = true;
        DemoBench bench(config);
        bench.click_demo_stop_in(3500);
        bench.run();
        expect_demo_stopped(bench);
        const auto times = bench.times_of(0xB0);
        ASSERT_GE(times.size(), 10u);
        for (std::size_t i = 1; i < times.size(); ++i) {
            const std::int64_t us = us_between(times[i - 1], times[i]);
            EXPECT_GE(us, (row.wait_ms + 20) * 1000) << row.baud;
            EXPECT_LE(us, (row.wait_ms + 25) * 1000) << row.baud;
        }
    }
}

TEST(DemoConnect, WaitsForATargetThatIsSwitchedOnLater) {
    DemoBench bench(isp_target({"lose_frame@connect*300"}));
    bench.run();
    expect_demo_good(bench);
    EXPECT_EQ(bench.target.counters().connects, 4);
}

TEST(DemoConnect, GivesItsAdviceOnceBehind4SecondsOfSilence) {
    for (const bool english : {false, true}) {
        sim::IspConfig config = isp_target();
        config.silent = true;
        DemoBench bench(config);
        bench.frm.screen.Show_English = english;
        std::string before, behind;
        bench.at(3950, [&] { before = bench.log(); });
        bench.at(4700, [&] { behind = bench.log(); });
        bench.click_demo_stop_in(20'000);
        bench.run();
        const std::string advice =
            "\r\n连接失败，请尝试以下操作："
            "\r\n 1.重新选择 RS-232 串口, 接好电缆，打开电源。"
            "\r\n 2.检查波特率、奇偶位、数据位、停止位是否正确。"
            "\r\n 3.因 PLCC、PQFP 转换座引线过长而引起时钟振荡不对，请调整参数。"
            "\r\n 4.可能要升级电脑端的 VKM ISP.exe 软件。"
            "\r\n 5.若仍然不成功，可能 MCU/单片机内无 ISP 系统引导码，"
            "\r\n   或需退回升级，或 MCU 已损坏。"
            "\r\n 仍在连接中, 请给 MCU 上电...";
        EXPECT_EQ(before.find("连接失败"), std::string::npos);
        EXPECT_TRUE(ends_with(behind, advice)) << behind;
        const std::size_t at = bench.log().find("连接失败");
        EXPECT_EQ(bench.log().find("连接失败", at + 1), std::string::npos);
    }
}

TEST(DemoConnect, NeedsOneAnswerOfThreeFurtherPolls) {
    for (const char* fault : {"lose_reply@connect:2*1", "lose_reply@connect:2*2",
                              "lose_reply@connect:3*2", "lose_reply@connect:2*3"}) {
        SCOPED_TRACE(fault);
        DemoBench bench(isp_target({fault}));
        bench.run();
        EXPECT_EQ(bench.written(0xB0), 4);
        if (std::string(fault).ends_with("2*3"))
            expect_demo_failed(bench, "Connect / 连接",
                               "\r\nHandshake is failed. / 握手失败 (End: 10:00:0");
        else
            expect_demo_good(bench);
    }
}

TEST(DemoConnect, FailsInEnglish) {
    DemoBench bench(isp_target({"lose_reply@connect:2*3"}));
    bench.frm.screen.Show_English = true;
    bench.run();
    EXPECT_TRUE(ends_with(without_times(bench.log()), "\r\nHandshake is failed. (End: hh:mm:ss)"))
        << bench.log();
}

// Its answers fall into the pause before the next poll, or later.
TEST(DemoConnect, ReachesATargetThatTakesItsTime) {
    for (const int ms : {10, 30, 48, 55, 60, 68}) {
        SCOPED_TRACE(ms);
        sim::IspConfig config = isp_target();
        config.turnaround = std::chrono::milliseconds(ms);
        DemoBench bench(config);
        bench.click_demo_stop_in(30'000);
        bench.run();
        expect_demo_good(bench);
        // It hears nothing while it is at work, and no frame that is cut off.
        for (const std::string& fault : bench.target.faults())
            EXPECT_TRUE(ends_with(fault, "while it was at work")) << fault;
    }
}

// ---- version and erase --------------------------------------------------------------------------

TEST(DemoVersion, IsAskedForThreeTimes2SecondsEach) {
    for (const int lost : {1, 2, 3}) {
        DemoBench bench(isp_target({"lose_reply@version*" + std::to_string(lost)}));
        bench.run();
        EXPECT_EQ(bench.written(0xB5), std::min(lost + 1, 3));
        const auto times = bench.times_of(0xB5);
        EXPECT_GE(us_between(times[0], times[1]), 2'020'000);
        EXPECT_LE(us_between(times[0], times[1]), 2'025'000);
        if (lost < 3) {
            expect_demo_good(bench);
        } else {
            expect_demo_failed(bench, "Identify model / 识别型号",
                               "\r\nRead MCU Option is failed. / 读 Option 失败 (End: 10:00:0");
            EXPECT_EQ(bench.sounder.beeps(), 3);
            EXPECT_EQ(bench.written(0xB2), 0);
        }
    }
}

TEST(DemoVersion, OfAnotherModelEndsTheJob) {
    for (const bool english : {false, true}) {
        sim::IspConfig config = isp_target();
        config.code = {0x40, 0x04};
        DemoBench bench(config);
        bench.frm.screen.Show_English = english;
        bench.frm.options.Chip_Bytes[0] = 0x11;
        bench.run();
        EXPECT_TRUE(ends_with(bench.log(), english
                                               ? "\r\nMCU Type is wrong. "
                                               : "\r\nMCU Type is wrong. / MCU 型号错, 请重选"));
        ASSERT_EQ(bench.boxes().size(), 1u);
        EXPECT_EQ(bench.boxes()[0].text.find("Chinese") == std::string::npos, english);
        EXPECT_EQ(bench.sounder.beeps(), 3);
        EXPECT_FALSE(bench.frm.images.File_Loaded);
        EXPECT_EQ(bench.frm.options.Chip_Bytes[0], 0x11);
        EXPECT_EQ(bench.frm.link.Chip_Name, "VKM47H54RK+");
        EXPECT_EQ(bench.target.counters().erases, 0);
        expect_demo_over(bench);
    }
}

TEST(DemoVersion, OfACodeThatIsNoneIsAnotherModel) {
    for (const std::array<std::uint8_t, 2> reported :
         {std::array<std::uint8_t, 2>{0xF1, 0x08}, {0x40, 0x00}, {0xFF, 0xFF}}) {
        sim::IspConfig config = isp_target();
        config.code = reported;
        DemoBench bench(config);
        bench.run();
        expect_demo_failed(bench, "Identify model / 识别型号", "MCU Type is wrong.");
        EXPECT_EQ(bench.frm.link.Chip_Name, "");
    }
}

TEST(DemoErase, IsTriedThreeTimes5SecondsEach) {
    for (const int lost : {1, 2, 3}) {
        DemoBench bench(isp_target({"lose_reply@erase*" + std::to_string(lost)}));
        bench.run();
        EXPECT_EQ(bench.written(0xB2), std::min(lost + 1, 3));
        const auto times = bench.times_of(0xB2);
        EXPECT_GE(us_between(times[0], times[1]), 5'020'000);
        EXPECT_LE(us_between(times[0], times[1]), 5'025'000);
        if (lost < 3) {
            expect_demo_good(bench);
        } else {
            expect_demo_failed(bench, "Erase / 擦除",
                               "\r\nErase application is failed. / 擦除失败 (End: 10:00:1");
            EXPECT_EQ(bench.target.counters().blocks, 0);
        }
    }
}

// Does it as soon as the condition holds.
void once(DemoBench& bench, const std::function<bool()>& condition,
          const std::function<void()>& act) {
    if (condition())
        act();
    else
        bench.at(1, [&bench, condition, act] { once(bench, condition, act); });
}

// The version's answer comes once more, in the pause before the erase is written.
TEST(DemoErase, IsNotAnsweredByWhatCameBeforeItWasWritten) {
    DemoBench bench(isp_target({"lose_reply@erase*0"}));
    once(
        bench, [&] { return bench.log_has("We are erasing"); },
        [&] {
            EXPECT_EQ(bench.written(0xB2), 0);
            const Bytes late =
                ended_with_sum({0x5A, 0xA5, 0x00, 0x0C, 0x80, 0x10, 0x40, 0x05, 0x5C});
            bench.line.input.insert(bench.line.input.end(), late.begin(), late.end());
        });
    bench.run();
    expect_demo_failed(bench, "Erase / 擦除", "Erase application is failed.");
    EXPECT_EQ(bench.written(0xB2), 3);
}

// Each try was heard and is answered, the first of them late: none of the answers passes
// for that to what comes behind.
TEST(DemoErase, IsNotAnsweredByARepeatedVersion) {
    DemoBench bench(isp_target({"delay@version:1=2500"}));
    bench.run();
    expect_demo_good(bench);
    EXPECT_EQ(bench.target.counters().erases, 1);
    EXPECT_EQ(bench.target.counters().retried_blocks, 0);
}

TEST(DemoErase, MayTakeItsTime) {
    sim::IspConfig config = isp_target();
    config.erase_time = std::chrono::milliseconds(4900);
    DemoBench bench(config);
    bench.run();
    expect_demo_good(bench);
    EXPECT_EQ(bench.target.counters().erases, 1);
}

// ---- blocks
// --------------------------------------------------------------------------------------

TEST(DemoBlock, IsTriedAgainAsARetry) {
    for (const char* fault : {"lose_reply@block:3", "lose_frame@block:3", "wrong_data_sum@block:3",
                              "wrong_sum@block:3", "cut_off@block:3=5"}) {
        SCOPED_TRACE(fault);
        DemoBench bench(isp_target({fault}));
        bench.run();
        expect_demo_good(bench);
        EXPECT_EQ(bench.written(0xB4), 1);
    }
}

TEST(DemoBlock, ThatFailsSixTimesEndsTheJob) {
    for (const char* fault : {"lose_reply@block:2*6", "wrong_data_sum@block:2*6"}) {
        DemoBench bench(isp_target({fault}));
        bench.run();
        expect_demo_failed(bench, "Program / 下载",
                           "\r\nProgram is failure. / 下载失败 (End: 10:00:");
        EXPECT_EQ(bench.sounder.beeps(), 3);
        EXPECT_EQ(bench.written(0xB1), 0);
    }
}

// A machine that wakes late; an answer of a quick target has come then.
TEST(DemoBlock, IsAcknowledgedHoweverLateTheMachineWakes) {
    for (const int us : {0, 400, 1700, 5000, 15'600, 40'000}) {
        SCOPED_TRACE(us);
        sim::IspConfig config = isp_target();
        config.turnaround = std::chrono::microseconds(50);
        config.block_time = std::chrono::microseconds(100);
        DemoBench bench(config);
        bench.loop.oversleep = Microseconds(us);
        bench.run();
        expect_demo_good(bench);
        EXPECT_EQ(bench.target.counters().retried_blocks, 0);
    }
}

// Blocks with like content have like sums: what answers the one before isn't theirs. The
// target, still talking, doesn't hear the next one.
TEST(DemoBlock, IsNotAcknowledgedByTheAnswerToTheOneBefore) {
    for (const int baud : {1200, 9600, 115200}) {
        SCOPED_TRACE(baud);
        sim::IspConfig config = isp_target({"twice@block:3"});
        config.baud = baud;
        DemoBench bench(config);
        bench.image.assign(900, 0xA5);
        bench.load_bytes(bench.image);
        bench.run();
        expect_demo_good(bench);
        EXPECT_EQ(bench.written(0xB4), 1);
    }
}

// ---- any answer --------------------------------------------------------------------------------

// A good job whose target holds the image, or a failure that is told.
void expect_right_or_told(DemoBench& bench) {
    bench.loop.time_limit = std::chrono::minutes(10) + bench.loop.elapsed();
    bench.click_demo_stop_in(300'000);
    ASSERT_NO_THROW(bench.run()) << bench.demo_story();
    expect_demo_over(bench);
    if (bench.frm.session.Result == Job_Result::done) {
        EXPECT_TRUE(bench.target_holds(bench.image)) << bench.demo_story();
        EXPECT_TRUE(bench.log_has("Program OK"));
        return;
    }
    EXPECT_FALSE(bench.log_has("Program OK"));
    const auto told = {"Handshake is failed.", "Read MCU Option is failed.",
                       "MCU Type is wrong.",   "Erase application is failed.",
                       "Program is failure.",  "Operation is stop."};
    EXPECT_TRUE(std::any_of(told.begin(), told.end(), [&](const char* text) {
        return bench.log_has(text);
    })) << bench.demo_story();
}

TEST(DemoAnswers, OfAnyKindEndInAGoodChipOrAFailureThatIsTold) {
    for (const char* frame : {"connect", "version", "erase", "block", "any"})
        for (const char* kind :
             {"lose_frame",         "lose_reply",          "damage@=0",       "damage@=3",
              "damage@=6",          "damage@=7",           "delay@=40",       "delay@=300",
              "delay@=2010",        "delay@=4020",         "delay@=5500",     "twice",
              "cut_off@=1",         "cut_off@=4",          "cut_off@=7",      "noise@=00",
              "noise@=5A",          "noise@=5AA5",         "noise@=5AA50001", "noise@=5AA5FFFF",
              "noise@=5AA50835",    "noise@=5A5AA5A516",   "wrong_sum",       "wrong_data_sum",
              "other_code@=129",    "wrong_length@=0",     "wrong_length@=3", "wrong_length@=4",
              "wrong_length@=5",    "wrong_length@=7",     "wrong_length@=9", "wrong_length@=2101",
              "wrong_length@=2102", "wrong_length@=65535", "power_loss@=400"})
            for (const char* times : {"*1", ":2*1", ":2*2", "*0"}) {
                const std::string text(kind);
                const std::size_t at = text.find('@');
                const std::string value = at == std::string::npos ? "" : text.substr(at + 1);
                const std::string fault = text.substr(0, at) + "@" + frame + times + value;
                SCOPED_TRACE(fault);
                const bool good_at_last = std::string(times) == "*1" && text != "power_loss@=400";
                DemoBench bench(isp_target({fault}));
                bench.load(700);
                expect_right_or_told(bench);
                if (good_at_last) {
                    EXPECT_EQ(bench.frm.session.Result, Job_Result::done) << bench.demo_story();
                }
                if (HasFailure()) return;
            }
}

// Answers of any length field, in any batches, with good sums and with others.
class AnyTarget {
  public:
    explicit AnyTarget(unsigned seed) : random_(seed) {}

    sim::Target target() {
        return {[this](Instant at, std::uint8_t value, double baud) { hear(at, value, baud); },
                [] { return sim::never; }, [](Instant) {},
                [this] { return std::exchange(output_, {}); }};
    }

  private:
    unsigned pick(unsigned count) { return static_cast<unsigned>(random_()) % count; }

    void hear(Instant at, std::uint8_t value, double baud) {
        frame_.push_back(value);
        if (frame_.size() < 8 || frame_.size() < frame_[2] * 256U + frame_[3]) return;
        Bytes reply = answer_to(std::exchange(frame_, {}));
        Instant start = std::max(at + std::chrono::microseconds(300), free_at_);
        for (const std::uint8_t byte : reply) {
            output_.push_back({start, byte, baud});
            start += sim::wire_time(1, baud) + std::chrono::microseconds(pick(3) == 0 ? 700 : 0);
        }
        free_at_ = start;
    }

    Bytes answer_to(const Bytes& asked) {
        if (pick(4) != 0) return good_answer(asked);
        const unsigned lengths[] = {0,  1,  3,  4,  5,    6,    7,    8,
                                    11, 12, 13, 64, 2100, 2101, 2102, 65535};
        const unsigned length = pick(2) == 0 ? lengths[pick(16)] : pick(40);
        Bytes reply = {0x5A, 0xA5, static_cast<std::uint8_t>(length >> 8),
                       static_cast<std::uint8_t>(length)};
        while (reply.size() + 3 < std::min(length, 2200U))
            reply.push_back(static_cast<std::uint8_t>(random_()));
        reply = ended_with_sum(reply);
        if (pick(3) == 0) reply[pick(static_cast<unsigned>(reply.size()))] ^= 1;
        if (pick(4) == 0) reply.insert(reply.end(), reply.begin(), reply.end());
        if (pick(4) == 0) reply.resize(pick(static_cast<unsigned>(reply.size())) + 1);
        return reply;
    }

    static Bytes good_answer(const Bytes& asked) {
        if (asked[4] == 0xB5)
            return ended_with_sum({0x5A, 0xA5, 0x00, 0x0C, 0x80, 0x10, 0x40, 0x05, 0x5C});
        if (asked[4] != 0xB3 && asked[4] != 0xB4)
            return ended_with_sum({0x5A, 0xA5, 0x00, 0x08, 0x80});
        unsigned sum = 0;
        for (std::size_t i = 11; i + 3 < asked.size(); ++i) sum += asked[i];
        return ended_with_sum({0x5A, 0xA5, 0x00, 0x0A, 0x80, static_cast<std::uint8_t>(sum >> 8),
                               static_cast<std::uint8_t>(sum)});
    }

    std::mt19937 random_;
    Bytes frame_;
    Instant free_at_{};
    std::vector<sim::WireByte> output_;
};

TEST(DemoAnswers, OfAnyLengthNeverHangTheJob) {
    int done = 0;
    for (unsigned seed = 1; seed <= 400; ++seed) {
        SCOPED_TRACE(seed);
        DemoBench bench;
        AnyTarget any(seed);
        bench.line.connect(any.target());
        bench.click_demo_stop_in(200'000);
        bench.loop.time_limit = std::chrono::minutes(5) + bench.loop.elapsed();
        ASSERT_NO_THROW(bench.run()) << bench.demo_story();
        expect_demo_over(bench);
        done += bench.frm.session.Result == Job_Result::done;
        if (HasFailure()) return;
    }
    EXPECT_GT(done, 50);
}

// Two short answers together are as long as one that names a chip.
TEST(DemoAnswers, ThatAreTooShortNameNoChip) {
    for (const Bytes& payload : {Bytes{0x80}, Bytes{0x80, 0x10, 0x40, 0x05}}) {
        Bytes one = {0x5A, 0xA5, 0x00, static_cast<std::uint8_t>(payload.size() + 7)};
        one.insert(one.end(), payload.begin(), payload.end());
        const Bytes reply = ended_with_sum(one);
        DemoBench bench(isp_target({"lose_reply@version*0"}));
        for (int ms = 150; ms < 6500; ms += 300)
            bench.at(ms, [&] {
                if (!bench.log_has("Firmware Version")) return;
                bench.line.input.insert(bench.line.input.end(), reply.begin(), reply.end());
                bench.line.input.insert(bench.line.input.end(), reply.begin(), reply.end());
            });
        bench.run();
        expect_demo_failed(bench, "Identify model / 识别型号", "Read MCU Option is failed.");
    }
}

// ---- its end ------------------------------------------------------------------------------------

TEST(DemoEnd, IsToldToTheTargetTwiceInWholeFrames) {
    for (const int baud : {600, 1200, 115200}) {
        SCOPED_TRACE(baud);
        sim::IspConfig config = isp_target();
        config.baud = baud;
        config.leave_after = std::chrono::milliseconds(500);
        DemoBench bench(config);
        bench.load(600);
        bench.run();
        expect_demo_good(bench);
        EXPECT_EQ(bench.target.counters().ends, 2);
        bench.run_for(1000);
        EXPECT_EQ(bench.target.counters().leaves, 1);
    }
}

// ---- Stop ---------------------------------------------------------------------------------------

enum class How { demo_stop, stop, close };

void end_in(DemoBench& bench, std::int64_t ms, How how) {
    bench.at(ms, [&bench, how] {
        bench.start_ms = bench.elapsed_ms();
        if (how == How::demo_stop) com_Demo_Stop(bench.frm);
        if (how == How::stop) comStop_Download(bench.frm);
        if (how == How::close) QueryUnload(bench.frm);
    });
}

// Behind a Stop only what is blind to it: a pause, and the beeps of a failure.
void expect_ended_soon(const DemoBench& bench) {
    EXPECT_LE(bench.job_ms(), bench.sounder.beeps() > 1 ? 600 : 101);
    EXPECT_FALSE(bench.frm.link.demo_mode);
    expect_demo_over(bench);
}

TEST(DemoStop, EndsAJobAtOnceWhereverItComes) {
    sim::IspConfig slow = isp_target();
    slow.user_code = Bytes(20, 0x55);
    slow.user_code_baud = 1200;
    slow.baud = 9600;
    slow.erase_time = std::chrono::milliseconds(900);
    int stopped = 0, done = 0;
    for (const How how : {How::demo_stop, How::stop, How::close})
        for (int ms = 0; ms < 3200; ms += 7) {
            SCOPED_TRACE(std::to_string(ms) + " ms, " + std::to_string(static_cast<int>(how)));
            DemoBench bench(slow);
            bench.with_user_code("5555555555555555555555555555555555555555", "1200");
            end_in(bench, ms, how);
            bench.run();
            if (bench.frm.session.Result == Job_Result::done) {
                ++done;
                expect_demo_over(bench);
                continue;
            }
            ++stopped;
            expect_ended_soon(bench);
            EXPECT_TRUE(ends_with(bench.log(), "\r\nOperation is stop. / 操作被停止."))
                << bench.log();
            if (!bench.log_has("Programming...")) {
                EXPECT_EQ(bench.sounder.beeps(), 1);
            }
            if (HasFailure()) return;
        }
    EXPECT_GT(stopped, 3 * 350);
    EXPECT_GT(done, 0);
}

TEST(DemoStop, EndsEachWaitForATargetThatIsSilent) {
    for (const char* fault :
         {"lose_reply@connect*0", "lose_reply@connect:2*0", "lose_reply@version*0",
          "lose_reply@erase*0", "lose_reply@block*0", "lose_reply@block:3*0"})
        for (const How how : {How::demo_stop, How::stop, How::close})
            for (const int ms : {15, 95, 130, 480, 700, 1500, 1999, 2030, 3700}) {
                SCOPED_TRACE(std::string(fault) + " " + std::to_string(ms));
                DemoBench bench(isp_target({fault}));
                end_in(bench, ms, how);
                bench.run();
                if (bench.frm.session.Result == Job_Result::failed) continue;  // before the Stop
                expect_ended_soon(bench);
                EXPECT_EQ(bench.frm.session.Result, Job_Result::stopped);
            }
}

TEST(DemoStop, BeepsOnceAndIsTold) {
    for (const bool english : {false, true}) {
        DemoBench bench;
        bench.frm.screen.Show_English = english;
        bench.click_demo_stop_in(300);  // while it erases
        bench.run();
        EXPECT_EQ(bench.sounder.beeps(), 1);
        EXPECT_TRUE(ends_with(bench.log(), english ? "\r\nOperation is stop. "
                                                   : "\r\nOperation is stop. / 操作被停止."));
        EXPECT_EQ(bench.verdict(), english ? "■ Stopped" : "■ Stopped / 已停止");
        EXPECT_EQ(bench.written(0xB3), 0);
    }
}

TEST(DemoStop, ForgetsItselfBeforeTheNextJob) {
    DemoBench bench;
    bench.click_demo_stop_in(300);
    bench.run();
    EXPECT_TRUE(bench.frm.link.demo_stop_requested);
    bench.run();
    expect_demo_good(bench);
    // And a Stop while nothing runs.
    bench.target.replace(bench.loop.now());
    com_Demo_Stop(bench.frm);
    bench.run();
    expect_demo_good(bench);
}

TEST(DemoStop, EndsThePauseOfASeriesAtOnce) {
    for (const How how : {How::demo_stop, How::stop, How::close}) {
        DemoBench bench;
        ASSERT_TRUE(bench.choose(bench.frm.screen.comDalay_ReDownLoad, "9"));
        std::string pause;
        bench.at(2400, [&] { pause = bench.log(); });
        end_in(bench, 2500, how);
        bench.run_series();
        EXPECT_TRUE(ends_with(pause,
                              "\r\n\r\nAfter a few seconds re-connect will continue.  8"
                              "\r\n\r\nChinese:几秒钟后将继续下载下一个 MCU...  8"))
            << pause;
        expect_ended_soon(bench);
        EXPECT_LE(bench.job_ms(), 1);
        EXPECT_TRUE(bench.target_holds(bench.image));
        EXPECT_EQ(bench.log(), "\r\nOperation is stop. / 操作被停止.");
    }
}

// ---- one job at a time --------------------------------------------------------------------------

TEST(DemoJob, IsTheOnlyOne) {
    DemoBench bench;
    bench.files.add("/job/a.bin", random_bytes(100, 9));
    bench.frm.images.Program_File = "/job/a.bin";
    bench.frm.screen.cekReloadFileWhileFileChange.Value = 1;
    bench.at(1, [&] { bench.files.add("/job/a.bin", random_bytes(100, 9)); });
    sim::IspConfig config = isp_target();
    for (int ms = 10; ms < 640; ms += 90) {
        bench.at(ms, [&] { com_Demo_DownLoad(bench.frm); });
        bench.at(ms + 5, [&] { com_Demo_Re_DownLoad(bench.frm); });
        bench.at(ms + 10, [&] { comDownload(bench.frm, 0); });
    }
    bench.run();
    expect_demo_good(bench);
    EXPECT_EQ(bench.written(0xB2), 1);
    EXPECT_EQ(bench.target.counters().blocks, 8);
    EXPECT_EQ(bench.target.faults(), std::vector<std::string>{});
}

TEST(DemoJob, IsNotDisturbedByAFileThatChanges) {
    DemoBench bench(isp_target({"lose_frame@connect*100"}));  // 7 s
    bench.files.add("/job/a.bin", random_bytes(100, 9));
    bench.frm.images.Program_File = "/job/a.bin";
    bench.frm.screen.cekReloadFileWhileFileChange.Value = 1;
    bench.run_for(2500);  // seen
    bench.at(1500, [&] { bench.files.add("/job/a.bin", random_bytes(100, 8)); });
    bench.run();
    expect_demo_good(bench);
    EXPECT_EQ(bench.written(0x50), 0);
    // Behind it the file is taken.
    bench.click_stop_in(9000);
    bench.run_for(6000);
    EXPECT_EQ(bench.frm.images.AP_Buffer.Bytes[0], random_bytes(1, 8)[0]);
}

TEST(DemoJob, BehindADownloadAndBeforeOneIsAsAlone) {
    DemoBench bench;
    const auto download = [&] {
        bench.line.connect(bench.chip.target());
        bench.chip.power_cycle(bench.loop.now(), Milliseconds(50), true);
        comDownload(bench.frm, 0);
        EXPECT_EQ(bench.frm.session.Result, Job_Result::done) << bench.story();
        EXPECT_TRUE(bench.flash_holds(bench.image));
        EXPECT_FALSE(bench.frm.link.demo_mode);
    };
    const auto demo = [&] {
        bench.line.connect(bench.target.target());
        bench.target.replace(bench.loop.now());
        bench.run();
        EXPECT_EQ(bench.frm.session.Result, Job_Result::done) << bench.demo_story();
        EXPECT_TRUE(bench.target_holds(bench.image));
        EXPECT_EQ(bench.target.faults(), std::vector<std::string>{});
    };
    download();
    demo();
    EXPECT_EQ(bench.count(), "1");
    download();
    demo();
    demo();
    // And behind one that was stopped.
    bench.target.replace(bench.loop.now());
    bench.click_demo_stop_in(250);
    bench.run();
    EXPECT_EQ(bench.frm.session.Result, Job_Result::stopped);
    download();
    EXPECT_EQ(bench.count(), "3");
}

// ---- numbers
// --------------------------------------------------------------------------------------

struct NumberedDemoBench : DemoBench {
    NumberedDemoBench() {
        choose(frm.screen.comDalay_ReDownLoad, "1");
        auto& texts = frm.screen.texAuto_Increase;
        texts[0].Text = "1FF";
        texts[1].Text = "3";
        texts[2].Text = "000098";
        texts[3].Text = "1";
        for (std::size_t i = 0; i < 3; ++i) frm.screen.optAuto_Increase[i].Value = i == 1;
    }
    void tick() {
        frm.screen.cheAuto_Increase.Value = 1;
        click(frm.screen.cheAuto_Increase);
    }
    // Notes the number of each good chip and puts a fresh one in its place.
    void watch(std::size_t wanted) {
        if (frm.session.Result == Job_Result::done && log_has("Verify  OK") && !noted_) {
            noted_ = true;
            numbers.emplace_back(target.flash().begin() + 0x1FD, target.flash().begin() + 0x200);
            target.replace(loop.now());
            if (numbers.size() == wanted) com_Demo_Stop(frm);
        }
        if (frm.session.Result == Job_Result::running) noted_ = false;
        if (numbers.size() < wanted) at(15, [this, wanted] { watch(wanted); });
    }
    std::vector<Bytes> numbers;

  private:
    bool noted_ = false;
};

TEST(DemoNumber, IsAnotherInEachChipOfASeries) {
    NumberedDemoBench bench;
    bench.tick();
    bench.watch(3);
    bench.run_series();
    EXPECT_EQ(bench.numbers, (std::vector<Bytes>{{0, 0, 0x98}, {0, 0, 0x99}, {0, 1, 0}}))
        << bench.demo_story();
    EXPECT_EQ(bench.frm.screen.texAuto_Increase[2].Text, "000101");
    EXPECT_EQ(bench.settings.on_disk.at({"Auto_Increase", "next_value"}), "000101");
    EXPECT_EQ(bench.frm.images.AP_Buffer.Bytes[0x1FE], 0x01);
    EXPECT_EQ(bench.frm.images.AP_Buffer.Bytes[0x1FF], 0x01);
    EXPECT_EQ(bench.target.faults(), std::vector<std::string>{}) << bench.demo_story();
    expect_demo_over(bench);
}

TEST(DemoNumber, CountsUpFrom0AndLeavesTheDatas) {
    NumberedDemoBench bench;
    bench.frm.screen.texAuto_Increase[2].Text = "0";
    bench.load_data_bytes(random_bytes(0x80, 7));
    auto& data = bench.frm.screen.texData_Auto_Increase;
    data[0].Text = "3F";
    data[1].Text = "2";
    data[2].Text = "0007";
    bench.frm.screen.cheData_Auto_Increase.Value = 1;
    bench.click(bench.frm.screen.cheData_Auto_Increase);
    bench.tick();
    bench.run();
    expect_demo_over(bench);
    EXPECT_EQ(bench.frm.screen.texAuto_Increase[2].Text, "000001");
    EXPECT_EQ(bench.settings.on_disk.at({"Auto_Increase", "next_value"}), "000001");
    EXPECT_EQ(bench.frm.images.AP_Buffer.Bytes[0x1FF], 0x01);
    EXPECT_TRUE(bench.frm.increase.Auto_Increase.Active);
    EXPECT_EQ(data[2].Text, "0007");
    EXPECT_TRUE(bench.frm.increase.Data_Auto_Increase.Active);
}

TEST(DemoNumber, ThatWasTouchedIsPatchedFirst) {
    NumberedDemoBench bench;
    bench.tick();
    bench.frm.screen.texAuto_Increase[2].Text = "004321";
    handle_event(bench.frm, {&bench.frm.screen.texAuto_Increase[2], EventKind::Change, 0, {}});
    ASSERT_FALSE(bench.frm.increase.Auto_Increase.Active);
    bench.run();
    EXPECT_EQ(bench.target.flash()[0x1FE], 0x43);
    EXPECT_EQ(bench.target.flash()[0x1FF], 0x21);
    EXPECT_EQ(bench.frm.screen.texAuto_Increase[2].Text, "004322");
}

TEST(DemoNumber, StaysForAChipThatIsNotGood) {
    for (const bool stop : {false, true}) {
        NumberedDemoBench bench;
        bench.tick();
        bench.target.add_fault(sim::parse_fault_on<sim::IspFrame>("lose_reply@block:2*0").value());
        if (stop) bench.click_demo_stop_in(900);
        bench.run();
        EXPECT_EQ(bench.frm.screen.texAuto_Increase[2].Text, "000098");
        EXPECT_EQ(bench.settings.on_disk.at({"Auto_Increase", "next_value"}), "000098");
        EXPECT_EQ(bench.frm.images.AP_Buffer.Bytes[0x1FF], 0x98);
    }
}

// The chip is good and has its number.
TEST(DemoNumber, MovesOnForAJobThatIsStoppedAtItsEnd) {
    NumberedDemoBench bench;
    bench.tick();
    once(
        bench, [&] { return bench.written(0xB1) == 1; }, [&] { com_Demo_Stop(bench.frm); });
    bench.run();
    EXPECT_EQ(bench.written(0xB1), 1);
    EXPECT_EQ(bench.frm.screen.texAuto_Increase[2].Text, "000099");
    EXPECT_EQ(bench.settings.on_disk.at({"Auto_Increase", "next_value"}), "000099");
    EXPECT_TRUE(ends_with(bench.log(), "\r\nOperation is stop. / 操作被停止."));
}

// Nothing comes between the last block and the number behind it.
TEST(DemoNumber, IsOnTheDiskBeforeTheTargetLeaves) {
    NumberedDemoBench bench;
    bench.tick();
    bool looked = false;
    once(
        bench, [&] { return bench.written(0xB1) == 1; },
        [&] {
            looked = true;
            EXPECT_EQ(bench.settings.on_disk.at({"Auto_Increase", "next_value"}), "000099");
        });
    bench.run();
    EXPECT_TRUE(looked);
    EXPECT_EQ(bench.frm.session.Result, Job_Result::done);
}

TEST(DemoNumber, ThatTheDiskDoesNotTakeIsTold) {
    NumberedDemoBench bench;
    bench.tick();
    bench.settings.disk_full = true;
    bench.run();
    EXPECT_TRUE(bench.log_has("The counter and the next number can not be saved!"));
    EXPECT_EQ(bench.frm.session.Result, Job_Result::done);
}

TEST(DemoNumber, StaysWhereTheBoxIsNotTicked) {
    NumberedDemoBench bench;
    bench.run();
    expect_demo_good(bench);
    EXPECT_EQ(bench.frm.screen.texAuto_Increase[2].Text, "000098");
}

}  // namespace
}  // namespace vkm::test
