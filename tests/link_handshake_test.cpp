// The handshake against a simulated chip, in virtual time: connecting, identifying,
// and the highest baud that fits.
#include <functional>

#include "link/baud.h"
#include "link/isp_link.h"
#include "link_bench.h"
#include "text/hexadecimal.h"

namespace vkm::test {
namespace {

using Bench = LinkBench;

// ---- a chip that answers --------------------------------------------------------

TEST(Handshake, EveryLetterAtEveryClockEndsAtTheHighestBaudThatFits) {
    for (const LetterRow& row : letter_rows)
        for (const double clock : {1e6, 4e6, 6e6, 8e6, 11.0592e6, 12e6, 16e6, 20e6, 24e6, 33e6}) {
            SCOPED_TRACE(std::string(row.model) + " at " + std::to_string(clock));
            Bench bench({.model = row.model, .letter = row.letter, .clock_hz = clock});
            bench.run();
            bench.expect_connected();
            const LinkState& link = bench.frm.link;
            EXPECT_EQ(link.Chip_Letter, std::string(1, row.letter));
            EXPECT_EQ(link.Chip_Version, row.version);
            EXPECT_EQ(link.Chip_Name, row.name);
            EXPECT_NEAR(link.crystal_frequency / clock, 1, 0.005);
            EXPECT_EQ(link.Chip_Clock, link.crystal_frequency);
            EXPECT_TRUE(link.Chip_Known);
            EXPECT_FALSE(link.TL_Link);
            EXPECT_TRUE(bench.log().ends_with(programming_text)) << bench.log();

            BaudChoice choice;
            const std::int16_t family = bench.frm.catalogue.MCU_Info.MCU_Family;
            const std::int16_t count = calculate_baud(
                static_cast<std::int32_t>(link.crystal_frequency), family, 115200, choice);
            EXPECT_EQ(bench.newbaud, choice.baud);
            EXPECT_EQ(bench.chip.state(), sim::ChipState::full_rate);
            const ReloadPair pair = reload_pair_of(count, family, choice);
            EXPECT_EQ(link.newBaud_H, pair.high);
            EXPECT_EQ(link.newBaud_L, pair.low);
            const ReloadPair twice = reload_pair(2 * (65536 - pair.high * 256 - pair.low));
            EXPECT_EQ(link.other_Baud_H, twice.high);
            EXPECT_EQ(link.other_Baud_L, twice.low);
        }
}

TEST(Handshake, EveryEntryOfTheBaudListIsTheLimit) {
    for (const char* model : {"VKM47H58RK+", "VKM26H2052"})
        for (const std::string limit : {"115200", "57600", "38400", "28800", "19200", "14400",
                                        "12800", "11520", "9600", "4800", "2400", "1200"}) {
            SCOPED_TRACE(std::string(model) + " " + limit);
            Bench bench({.model = model, .clock_hz = 11059200});
            ASSERT_TRUE(bench.choose(bench.frm.screen.cobBaudMax, limit));
            bench.run();
            bench.expect_connected();
            EXPECT_EQ(std::to_string(bench.newbaud), limit);
        }
}

TEST(Handshake, HeldAtTheBaseBaudNothingChangesTheRate) {
    Bench bench;
    ASSERT_TRUE(bench.choose(bench.frm.screen.cobBaudMax, "1200"));
    bench.run();
    bench.expect_connected();
    EXPECT_EQ(bench.newbaud, 1200);
    EXPECT_EQ(bench.heard(FrameKind::test_baud), 1);
    EXPECT_EQ(bench.heard(FrameKind::set_baud), 0);
    EXPECT_EQ(bench.chip.state(), sim::ChipState::base);
    // The first is that of whoever had the port before.
    for (std::size_t i = 1; i < bench.port.settings_in_force.size(); ++i)
        EXPECT_EQ(bench.port.settings_in_force[i], "1200,n,8,1");
}

TEST(Handshake, TestAndSetFramesCarryThePairTheDelayAndTheWaitCode) {
    Bench bench({.model = "VKM47H58RK+", .clock_hz = 11059200});
    bench.run();
    EXPECT_EQ(
        bench.last_heard(FrameKind::test_baud),
        (Bytes{0x46, 0xB9, 0x6A, 0x00, 0x0C, 0x8F, 0xFF, 0xFD, 0x00, 0x06, 40, 129, 0xB0, 0x16}));
    EXPECT_EQ(bench.last_heard(FrameKind::set_baud),
              (Bytes{0x46, 0xB9, 0x6A, 0x00, 0x0B, 0x8E, 0xFF, 0xFD, 0x00, 0x06, 23, 0x1C, 0x16}));
    Bench eight_bit({.model = "VKM26H2052", .clock_hz = 8e6});
    eight_bit.run();
    const Bytes frame = eight_bit.last_heard(FrameKind::test_baud);
    ASSERT_EQ(frame.size(), 14U);
    EXPECT_EQ(frame[11], 131);
}

TEST(Handshake, TheTestWaits150MillisecondsAndGoesBackToTheBaseBaud) {
    Bench bench;
    bench.run();
    std::vector<std::string> changes;
    for (const std::string& settings : bench.port.settings_in_force)
        if (changes.empty() || changes.back() != settings) changes.push_back(settings);
    // The rate that stood there before, pulses, test, back, set.
    EXPECT_EQ(changes, (std::vector<std::string>{"9600,n,8,1", "1200,n,8,1", "115200,n,8,1",
                                                 "1200,n,8,1", "115200,n,8,1"}));
    const Written* last_pulse = nullptr;
    for (const Written& written : bench.port.written)
        if (written.bytes == Bytes{0x7F, 0x7F}) last_pulse = &written;
    const auto test = std::find_if(bench.port.written.begin(), bench.port.written.end(),
                                   [](const Written& w) { return w.bytes.size() == 14; });
    ASSERT_NE(test, bench.port.written.end());
    EXPECT_GE(test->at - last_pulse->at, milliseconds(155));
}

TEST(Handshake, AChipOfSixtyNineMegahertzGetsDoubledDelays) {
    Bench bench({.model = "VKM26H2052", .clock_hz = 69e6});
    bench.run();
    bench.expect_connected();
    EXPECT_EQ(bench.last_heard(FrameKind::test_baud)[10], 80);
    EXPECT_EQ(bench.last_heard(FrameKind::set_baud)[10], 46);
}

// ---- the status frame's lengths -----------------------------------------------------

TEST(Handshake, Length24SkipsIdentificationAndKeepsTheLastChip) {
    Bench bench({.model = "VKM47H58RK+", .status_length = 24});
    LinkState& link = bench.frm.link;
    link.Chip_Letter = "Z";
    link.Chip_Version = "9.9";
    link.Chip_ID_High = "12";
    link.Chip_Name = "of the last chip";
    link.Check_Model = [](frmMain&) { return false; };
    bench.run();
    bench.expect_connected();
    EXPECT_EQ(link.Chip_Letter, "Z");
    EXPECT_EQ(link.Chip_Version, "9.9");
    EXPECT_EQ(link.Chip_ID_High, "12");
    EXPECT_EQ(link.Chip_Name, "");
    EXPECT_FALSE(link.Chip_Known);
    EXPECT_FALSE(link.Chip_Extended);
    EXPECT_FALSE(link.Status_Read_OK);
    EXPECT_TRUE(bench.log_has(programming_text));
}

TEST(Handshake, Length25ReadsLetterAndVersionButNoNameAndNoModelCheck) {
    Bench bench({.model = "VKM47H58RK+", .status_length = 25});
    LinkState& link = bench.frm.link;
    link.Check_Model = [](frmMain&) { return false; };
    bench.run();
    bench.expect_connected();
    EXPECT_TRUE(link.Chip_Known);
    // So short a frame has its sum where longer ones have the ID byte.
    const sim::LoggedFrame& status = bench.chip.log().front();
    ASSERT_EQ(status.bytes.size(), 2U + 25U);
    EXPECT_EQ(link.Chip_ID_High, hex_text(status.bytes[2 + 23], 2));
    EXPECT_EQ(link.Chip_Letter, "C");
    EXPECT_EQ(link.Chip_Version, "3.8");
    EXPECT_EQ(link.Chip_Name, "");
}

TEST(Handshake, Length26IsCheckedAgainstTheModel) {
    Bench bench({.model = "VKM47H58RK+", .status_length = 26});
    bench.frm.link.Check_Model = [](frmMain&) { return false; };
    EXPECT_EQ(bench.run(), -1);
    EXPECT_FALSE(bench.log_has("trying to program"));
    EXPECT_EQ(bench.sounder.beeps(), 0);
    EXPECT_EQ(bench.chip.counters().frames, 0);
    EXPECT_TRUE(bench.port.is_open());
}

TEST(Handshake, TheModelCheckSeesTheChipsRecord) {
    Bench bench({.model = "VKM26H2052"});
    bench.frm.link.Check_Model = [](frmMain& frm) {
        return frm.link.Chip_Name == "VKM26H2052" && frm.link.Chip_Letter == "D" &&
               frm.catalogue.Chip_Info.MCU_ID == "F202" && frm.link.Chip_ID_High == "F2" &&
               frm.link.Chip_ID_Low == "02";
    };
    bench.run();
    bench.expect_connected();
}

TEST(Handshake, ACodeOfOneByteLeavesTheLowByteOfTheLastChip) {
    Bench bench({.model = "VKM47H58RK+", .id = Bytes{223, 0x0A}});
    bench.frm.link.Chip_ID_Low = "77";
    bench.run();
    EXPECT_EQ(bench.frm.link.Chip_ID_High, "DF");
    EXPECT_EQ(bench.frm.link.Chip_ID_Low, "77");
    EXPECT_EQ(bench.frm.link.Chip_Name, "");
    EXPECT_EQ(bench.result, 0);
    Bench two({.model = "VKM47H58RK+", .id = Bytes{224, 0x0A}});
    two.run();
    EXPECT_EQ(two.frm.link.Chip_ID_Low, "0A");
}

TEST(Handshake, OptionBytesAreKeptByLetter) {
    sim::OptionBytes options;
    for (std::size_t i = 0; i < options.size(); ++i)
        options[i] = static_cast<std::uint8_t>(0x51 + 2 * i);  // odd: no double speed for C
    const std::vector<std::pair<const LetterRow*, std::vector<int>>> rows = {
        {&letter_rows[0], {0}},
        {&letter_rows[2], {1}},
        {&letter_rows[3], {2, 3, 8, 10, 11}},
        {&letter_rows[4], {2, 3, 8, 10, 11}},
        {&letter_rows[5], {2, 3, 8, 10, 11}},
        {&letter_rows[6], {0, 3, 4, 8, 10, 11}},
    };
    for (const auto& [row, words] : rows) {
        SCOPED_TRACE(row->model);
        Bench bench({.model = row->model, .letter = row->letter, .options = options});
        bench.frm.options.Chip_Bytes.fill(-7);
        bench.frm.options.Option_Bytes[0][16] = 0x33;
        bench.run();
        for (int word = 0; word < 16; ++word) {
            const bool stored = std::find(words.begin(), words.end(), word) != words.end();
            EXPECT_EQ(bench.frm.options.Chip_Bytes[static_cast<std::size_t>(word)],
                      stored ? 0x51 + 2 * word : -7)
                << word;
        }
        // Local, and untouched by the panel of a family that has no such choice.
        EXPECT_EQ(bench.frm.options.Chip_Bytes[16], row->letter == 'A' ? 0x33 : 255);
    }
}

TEST(Handshake, ReadsAndShowsTheOptionsBeforeTheModelIsChecked) {
    Bench bench({.model = "VKM47H58RK+"});  // reports FD: normal speed
    bench.frm.link.Check_Model = [](frmMain& frm) {
        EXPECT_EQ(frm.options.Panel_State.at("Double_speed_YES"), "1");
        EXPECT_EQ(frm.options.Read_State.at("Double_speed_YES"), "0");
        EXPECT_EQ(frm.options.Read_State.at("Double_speed_NO"), "1");
        EXPECT_NE(frm.screen.textMsg.Text.find("\r\nMCU Type is: VKM47H58RK+"
                                               "\r\nMCU Firmware Version: 3.8C"
                                               "\r\nChinese:MCU 固件版本号: 3.8C"
                                               "\r\nDouble speed / 双倍速:          12T/单倍速"),
                  std::string::npos)
            << frm.screen.textMsg.Text;
        EXPECT_EQ(frm.screen.LabLock[1].Caption, "MCU: VKM47H58RK+    固件版本号: 3.8C");
        return true;
    };
    bench.frm.screen.Option0[0].Value = 1;
    bench.run();
    bench.expect_connected();
}

TEST(Handshake, ShowsTheOneOptionByteOfTheOldestLettersOnThePage) {
    sim::OptionBytes options{};
    options[0] = 0x48;
    Bench bench({.model = "VKM47H516RK", .options = options});
    bench.run();
    EXPECT_EQ(bench.frm.screen.LabLock[3].Caption, "Double speed (6 clock) / 双倍速:       Yes");
    EXPECT_TRUE(bench.log_has("\r\nDouble speed: Yes")) << bench.log();
}

// ---- the feature byte -----------------------------------------------------------------

TEST(Handshake, TheFeatureByteTellsFirmwareSizeAndHeader) {
    for (const int features : {0x00, 0x01, 0x02, 0x03, 0x80, 0x83}) {
        Bench bench({.model = "VKM47H58RK+", .feature = static_cast<std::uint8_t>(features)});
        bench.frm.session.Firmware_Size = 77;
        bench.run();
        bench.expect_connected();
        EXPECT_TRUE(bench.frm.link.Chip_Extended);
        EXPECT_EQ(bench.frm.link.Chip_Flash_Info, 1024 + 512 * (features & 3));
        EXPECT_EQ(bench.frm.session.Firmware_Size, 1024 + 512 * (features & 3));
        EXPECT_TRUE(bench.frm.session.Firmware_Size_Known);
        EXPECT_EQ(bench.frm.link.hunt_header, features >= 0x80);
        EXPECT_EQ(bench.frm.link.Chip_Needs_Header, features >= 0x80);
    }
}

TEST(Handshake, FourModelsLeaveTheFirmwareSizeOpen) {
    for (const char* model : {"VKM47H55RK+", "VKM47W55RK+", "VKM47H61RK+", "VKM47W61RK+"})
        for (const int features : {0x00, 0x01, 0x02, 0x03, 0x80, 0x82, 0x83}) {
            SCOPED_TRACE(std::string(model) + " " + std::to_string(features));
            Bench bench({.model = model, .feature = static_cast<std::uint8_t>(features)});
            bench.frm.screen.txtDevice.Text = std::string(" ") + model + " ";
            bench.frm.link.Chip_Flash_Info = 77;
            bench.run();
            bench.expect_connected();
            EXPECT_TRUE(bench.frm.link.Chip_Extended);
            EXPECT_EQ(bench.frm.link.Chip_Flash_Info, 0);
            EXPECT_EQ(bench.frm.session.Firmware_Size, 0);
            EXPECT_TRUE(bench.frm.session.Firmware_Size_Known);
            EXPECT_EQ(bench.frm.link.hunt_header, features >= 0x80);
            EXPECT_EQ(bench.frm.link.Chip_Needs_Header, features >= 0x80);
        }
}

TEST(Handshake, FirmwareBelowNumber38HasNoFeatures) {
    Bench older({.model = "VKM47H58RK+", .version = 0x25, .status_length = 36, .feature = 0x83});
    older.frm.session.Firmware_Size = 2048;
    older.frm.session.Firmware_Size_Known = true;
    older.frm.link.Chip_Extended = true;
    older.run();
    older.expect_connected();
    EXPECT_FALSE(older.frm.link.hunt_header);
    EXPECT_FALSE(older.frm.link.Chip_Extended);
    EXPECT_FALSE(older.frm.session.Firmware_Size_Known);
    EXPECT_EQ(older.frm.session.Firmware_Size, 0);
    Bench newer({.model = "VKM47H58RK+", .version = 0x26, .status_length = 36, .feature = 0x83});
    newer.run();
    newer.expect_connected();
    EXPECT_TRUE(newer.frm.link.hunt_header);
    EXPECT_TRUE(newer.frm.link.Chip_Extended);
}

// ---- waiting for power --------------------------------------------------------------------

TEST(Handshake, PulsesFollowEachOtherWithoutAGapAndNeverPileUp) {
    Bench bench({.powered_at = sim::never});
    bench.power_on_in(5'000);
    bench.run();
    bench.expect_connected();
    std::vector<Instant> pulses;
    for (const Written& written : bench.port.written) {
        if (written.bytes != Bytes{0x7F, 0x7F}) continue;
        pulses.push_back(written.at);
        EXPECT_EQ(written.settings, "1200,n,8,1");
        EXPECT_LE(written.unsent, 2U);
    }
    // A pulse takes 16.7 ms; the line is never idle while it waits.
    ASSERT_GT(pulses.size(), 300U);
    const std::chrono::duration<double, std::milli> length = pulses.back() - pulses.front();
    EXPECT_NEAR(static_cast<double>(pulses.size()), length.count() / (20 / 1.2), 2);
}

TEST(Handshake, WaitingForTenMinutesSleepsAndAnswersStillTheFirstPowerUp) {
    Bench bench({.powered_at = sim::never});
    bench.power_on_in(600'000);
    bench.run();
    bench.expect_connected();
    EXPECT_GT(bench.took, 600'000);
    // At most six turns for each pulse of 16.7 ms.
    EXPECT_LT(bench.loop.turns, 6U * 36'700U);
    EXPECT_GT(bench.loop.sleeps, 36'000U);
    EXPECT_TRUE(bench.log().ends_with(programming_text)) << bench.log();
}

TEST(Handshake, TheAdviceTimerRunsUntilTheChipAnswers) {
    Bench bench({.powered_at = sim::never});
    static int ticks = 0;
    ticks = 0;
    bench.frm.timers.Timer9.Tick = [](frmMain& frm) {
        ++ticks;
        stop_timer(frm.timers.Timer9);
    };
    bench.power_on_in(4'500);
    bench.run();
    EXPECT_EQ(ticks, 1);
    EXPECT_EQ(bench.frm.timers.Timer9.Interval, 4000);
    Bench quick;
    quick.frm.timers.Timer9.Tick = bench.frm.timers.Timer9.Tick;
    quick.run();
    EXPECT_EQ(ticks, 1);
    quick.expect_connected();
}

TEST(Handshake, AStatusFrameThatWasLostDamagedOrCutComesAgain) {
    const FaultKind kinds[] = {FaultKind::lose_reply, FaultKind::damage, FaultKind::cut_off,
                               FaultKind::wrong_length};
    for (const FaultKind kind : kinds)
        for (const int value : {7, 13, 0xFFFF}) {
            ChipConfig config;
            config.faults = {fault_of(kind, FrameKind::status, value)};
            Bench bench(config);
            bench.stop_in(20'000);
            bench.run();
            // What was cut off or has too great a length swallows later frames, so
            // that not every fault ends well; but none hangs and none lies.
            if (kind == FaultKind::lose_reply || kind == FaultKind::damage ||
                (kind == FaultKind::wrong_length && value == 0xFFFF))
                bench.expect_connected();
            else if (bench.result != 0)
                bench.expect_stop_told();
        }
}

TEST(Handshake, ReceivingIsOnAndNoHeaderIsHuntedFromTheFirstPulse) {
    Bench bench;
    bench.frm.link.receive_enabled = false;
    bench.frm.link.hunt_header = true;
    bench.at(50, [&] { EXPECT_FALSE(bench.frm.link.hunt_header); });
    bench.run();
    bench.expect_connected();
}

// ---- the port ------------------------------------------------------------------------------

constexpr const char* refused_log =
    "\r\nOpen COM port failure! / 打开串口失败!"
    "\r\nThe COM port opened by another Program or no the COM port."
    "\r\nChinese:串口已被其它程序打开或该串口不存在。";

TEST(Handshake, AMissingBusyOrUnwillingPortIsTold) {
    const std::function<void(Bench&)> troubles[] = {
        [](Bench& bench) { bench.port.present.clear(); },
        [](Bench& bench) { bench.port.open_error[1] = error_busy; },
        [](Bench& bench) { bench.port.refused_baud = {1200}; },
        [](Bench& bench) { bench.frm.screen.combCommPort.ListIndex = -1; },
    };
    for (const auto& trouble : troubles) {
        Bench bench;
        trouble(bench);
        EXPECT_EQ(bench.run(), -1);
        EXPECT_EQ(bench.log(), refused_log);
        EXPECT_EQ(bench.sounder.beeps(), 3);
        EXPECT_TRUE(bench.port.written.empty());
        EXPECT_FALSE(bench.frm.timers.Timer9.Enabled);
    }
}

TEST(Handshake, ThePortOfTheListIsUsedAndShownOpen) {
    Bench bench({.powered_at = sim::never});
    bench.port.present = {5};
    bench.frm.screen.combCommPort.ListIndex = 4;
    bench.at(300, [&] {
        EXPECT_TRUE(bench.frm.screen.imgOpen_sys.Visible);
        EXPECT_FALSE(bench.frm.screen.imgNotOpen_sys.Visible);
    });
    bench.power_on_in(500);
    bench.run();
    bench.expect_connected();
    EXPECT_EQ(bench.port.port_number(), 5);
    EXPECT_TRUE(bench.frm.screen.imgOpen_sys.Visible);
}

TEST(Handshake, EnglishTextsAreSelectable) {
    Bench refused;
    refused.frm.screen.Show_English = true;
    refused.port.present.clear();
    refused.run();
    EXPECT_EQ(refused.log(),
              "\r\nOpen COM port failure!"
              "\r\nThe COM port opened by another Program or no the COM port.");
    ChipConfig config;
    config.faults = {lose_reply(FrameKind::test_baud, always)};
    Bench failing(config);
    failing.frm.screen.Show_English = true;
    failing.run();
    EXPECT_TRUE(failing.log_has("\r\nWe are trying to program ...\r\nHandshake is failed. (End: "))
        << failing.log();
    Bench stopped({.powered_at = sim::never});
    stopped.frm.screen.Show_English = true;
    stopped.stop_in(100);
    stopped.run();
    EXPECT_EQ(stopped.log(), "\r\nOperation is stop. ");
    config.faults = {lose_reply(FrameKind::watchdog, always)};
    Bench refusing(config);
    refusing.frm.screen.Show_English = true;
    choose_watchdog(refusing, "P3.5");
    refusing.run();
    EXPECT_TRUE(
        refusing.log().ends_with("\r\nWe are trying to program ...\r\nHandshake is failed."))
        << refusing.log();
    Bench reading({.model = "VKM47H58RK+", .status_length = 24});
    reading.frm.screen.Show_English = true;
    reading.run(true);
    EXPECT_TRUE(reading.log().starts_with("\r\nWe are Reading Chip Lock.\r\nMCU Firmware"))
        << reading.log();
}

TEST(Handshake, APortThatVanishesHangsNothingAndStopWorks) {
    for (std::int64_t ms = 50; ms < 900; ms += 50) {
        Bench bench;
        bench.at(ms, [&] { bench.port.unplug(); });
        bench.stop_in(30'000);
        bench.run();
        if (bench.result == 0) continue;  // it vanished behind the end
        EXPECT_EQ(bench.result, -1) << ms;
        EXPECT_GE(bench.sounder.beeps(), 1) << ms;
        EXPECT_LT(bench.took, 31'000) << ms;
    }
}

}  // namespace
}  // namespace vkm::test
