// The exchanges that bring a chip to its final baud, whole and disturbed; the
// external watchdog, and the other way of connecting.
#include "link/baud.h"
#include "link/baud_exchange.h"
#include "link/isp_link.h"
#include "link_bench.h"

namespace vkm::test {
namespace {

using Bench = LinkBench;

// ---- the baud exchange alone
// ----------------------------------------------------------------------

TEST(BaudExchange, ATestEndsAtTheBaseBaudWhateverItsOutcome) {
    for (const bool answered : {true, false}) {
        Bench bench;
        ASSERT_EQ(bench.run(true), 0);
        if (!answered) bench.chip.add_fault(lose_reply(FrameKind::test_baud, always));
        EXPECT_EQ(test_new_baud(bench.frm, "115200", 0xFF, 0xFD), answered);
        EXPECT_TRUE(bench.port.is_open());
        EXPECT_EQ(bench.port.settings(), "1200,n,8,1");
    }
}

TEST(BaudExchange, ATestWaits950MillisecondsForItsAnswer) {
    Bench bench;
    ASSERT_EQ(bench.run(true), 0);
    bench.chip.add_fault(lose_reply(FrameKind::test_baud, always));
    const double before = bench.elapsed_ms();
    test_new_baud(bench.frm, "115200", 0xFF, 0xFD);
    // The frame's 14 bytes leave the wire before the rate changes, behind the
    // rest of a pulse.
    EXPECT_NEAR(bench.elapsed_ms() - before, 5 + 14 * 10 / 1.2 + 950, 9);
}

TEST(BaudExchange, ARateThatTheDeviceRefusesIsNotWaitedFor) {
    Bench bench;
    bench.port.refused_baud = {115200, 57600};
    bench.run();
    EXPECT_EQ(bench.result, 0);
    EXPECT_EQ(bench.newbaud, 38400);
    EXPECT_EQ(bench.port.settings(), "38400,n,8,1");
    Bench alone;
    ASSERT_EQ(alone.run(true), 0);
    alone.port.refused_baud = {115200};
    const double before = alone.elapsed_ms();
    EXPECT_FALSE(test_new_baud(alone.frm, "115200", 0xFF, 0xFD));
    EXPECT_LT(alone.elapsed_ms() - before, 200);
    EXPECT_EQ(alone.port.settings(), "1200,n,8,1");
}

TEST(BaudExchange, ATestOpensAClosedPortAndTurnsReceivingOn) {
    Bench bench;
    ASSERT_EQ(bench.run(true), 0);
    close_port(bench.frm);
    bench.frm.link.receive_enabled = false;
    EXPECT_TRUE(test_new_baud(bench.frm, "115200", 0xFF, 0xFD));
}

TEST(BaudExchange, DoubleSpeedHalvesTheClockOfTheWaitCode) {
    Bench bench({.model = "VKM47H58RK+", .clock_hz = 20e6});
    ASSERT_EQ(bench.run(true), 0);
    bench.frm.link.Chip_Double_Speed = true;
    test_new_baud(bench.frm, "1200", 0xFD, 0xF7);
    EXPECT_EQ(bench.last_heard(FrameKind::test_baud)[11], 130);
    bench.frm.link.Chip_Double_Speed = false;
    test_new_baud(bench.frm, "1200", 0xFD, 0xF7);
    EXPECT_EQ(bench.last_heard(FrameKind::test_baud)[11], 128);
}

TEST(BaudExchange, ASetStaysAtTheNewBaudWhateverItsOutcome) {
    Bench bench;
    ASSERT_EQ(bench.run(true), 0);
    ASSERT_TRUE(test_new_baud(bench.frm, "57600", 0xFF, 0xFA));
    bench.chip.add_fault(lose_reply(FrameKind::set_baud, 1));
    const double before = bench.elapsed_ms();
    EXPECT_FALSE(set_new_baud(bench.frm, "57600", 0xFF, 0xFA));
    EXPECT_NEAR(bench.elapsed_ms() - before, 1 + 13 * 10 / 1.2 + 800, 9);
    EXPECT_EQ(bench.port.settings(), "57600,n,8,1");
    EXPECT_TRUE(set_new_baud(bench.frm, "57600", 0xFF, 0xFA));
    EXPECT_EQ(bench.port.settings(), "57600,n,8,1");
}

TEST(BaudExchange, StopEndsATestEarlyAndThePortGoesBack) {
    Bench bench;
    ASSERT_EQ(bench.run(true), 0);
    bench.chip.add_fault(lose_reply(FrameKind::test_baud, always));
    bench.stop_in(300);
    const double before = bench.elapsed_ms();
    EXPECT_FALSE(test_new_baud(bench.frm, "115200", 0xFF, 0xFD));
    EXPECT_DOUBLE_EQ(bench.elapsed_ms() - before, 300);
    EXPECT_EQ(bench.port.settings(), "1200,n,8,1");
    EXPECT_TRUE(bench.port.is_open());
}

TEST(BaudPair, OfTheOtherModeIsKeptInTheLink) {
    Bench bench;
    LinkState& link = bench.frm.link;
    link.newBaud_H = 0xFF;
    link.newBaud_L = 0xFA;
    Keep_Baud_Pair(bench.frm);
    EXPECT_EQ(link.newBaud_L, 0xFA);
    EXPECT_EQ(link.other_Baud_H, 0xFF);
    EXPECT_EQ(link.other_Baud_L, 0xF4);
    link.Chip_Double_Speed = true;
    Keep_Baud_Pair(bench.frm);
    EXPECT_EQ(link.newBaud_L, 0xFD);
    EXPECT_EQ(link.other_Baud_L, 0xFA);
}

// ---- faults of the baud exchange ---------------------------------------------------------

int chosen_row(const Bench& bench) {
    for (std::size_t i = 0; i < baud_rates.size(); ++i)
        if (baud_rates[i] == bench.newbaud) return static_cast<int>(i);
    return -1;
}

TEST(Handshake, ATestThatFailsThreeTimesGivesTheNextLowerBaud) {
    Bench whole;
    whole.run();
    ASSERT_EQ(whole.newbaud, 115200);
    for (int lost = 0; lost <= 8; ++lost) {
        ChipConfig config;
        if (lost > 0) config.faults = {lose_reply(FrameKind::test_baud, lost)};
        Bench bench(config);
        bench.run();
        bench.expect_connected();
        EXPECT_EQ(chosen_row(bench), 11 - lost / 3) << lost;
        EXPECT_EQ(bench.heard(FrameKind::test_baud), lost + 1);
        EXPECT_EQ(bench.heard(FrameKind::set_baud), 1);
    }
}

TEST(Handshake, ASuccessInTheFourthAttemptStillFails) {
    for (const int lost : {9, 10, 11, 12, 0}) {
        ChipConfig config;
        config.faults = {lose_reply(FrameKind::test_baud, lost)};
        Bench bench(config);
        bench.run();
        bench.expect_failure_told();
        EXPECT_EQ(bench.heard(FrameKind::test_baud), lost == 0 ? 12 : std::min(lost + 1, 12));
        EXPECT_EQ(bench.heard(FrameKind::set_baud), 0);
    }
}

TEST(Handshake, NoLowerBaudIsTriedBelowTheLowestRow) {
    ChipConfig config;
    config.faults = {lose_reply(FrameKind::test_baud, always)};
    Bench bench(config);
    ASSERT_TRUE(bench.choose(bench.frm.screen.cobBaudMax, "1200"));
    bench.run();
    bench.expect_failure_told();
    EXPECT_EQ(bench.heard(FrameKind::test_baud), 3);
}

TEST(Handshake, ACountOfOneIsTheOnlyRateTried) {
    for (const char* model : {"VKM26H2052", "VKM26H5408", "VKM27J052"})
        for (const int lost : {2, 3}) {
            SCOPED_TRACE(std::string(model) + ", " + std::to_string(lost) + " lost");
            Bench bench({.model = model,
                         .clock_hz = 1843200,
                         .faults = {lose_reply(FrameKind::test_baud, lost)}});
            bench.run();
            EXPECT_EQ(bench.heard(FrameKind::test_baud), 3);
            if (lost == 2) {
                bench.expect_connected();
                EXPECT_EQ(bench.newbaud, 115200);
                EXPECT_EQ(bench.last_heard(FrameKind::set_baud)[7], 0xFF);
            } else {
                bench.expect_failure_told();
            }
        }
}

// No rate of the list lies within the limit: a pair that means nothing is offered
// three times, at a rate that no port takes, so that nothing is waited for.
TEST(Handshake, WithoutARateThatFitsItFailsSoon) {
    for (const char* model : {"VKM47H58RK+", "VKM26H2052", "VKM26H5408", "VKM27J052"}) {
        SCOPED_TRACE(model);
        Bench bench({.model = model});
        fill_list(bench.frm.screen.cobBaudMax, {"600"});
        ASSERT_TRUE(bench.choose(bench.frm.screen.cobBaudMax, "600"));
        bench.run();
        bench.expect_failure_told();
        const auto tests = std::count_if(bench.port.written.begin(), bench.port.written.end(),
                                         [](const Written& w) { return w.bytes.size() == 14; });
        EXPECT_EQ(tests, 3);
        EXPECT_LT(bench.took, 2'500);
        EXPECT_EQ(bench.port.settings(), "1200,n,8,1");
    }
}

TEST(Handshake, TheSetIsTriedThreeTimes) {
    for (const int lost : {1, 2}) {
        ChipConfig config;
        config.faults = {lose_reply(FrameKind::set_baud, lost)};
        Bench bench(config);
        bench.run();
        bench.expect_connected();
        EXPECT_EQ(bench.heard(FrameKind::set_baud), lost + 1);
    }
    ChipConfig config;
    config.faults = {lose_reply(FrameKind::set_baud, 3)};
    Bench bench(config);
    bench.run();
    bench.expect_failure_told();
    EXPECT_TRUE(bench.port.is_open());
}

TEST(Handshake, DamagedLateAndDoubledAnswersOfTheExchangeAreSurvived) {
    for (const FrameKind frame : {FrameKind::test_baud, FrameKind::set_baud}) {
        const std::vector<std::pair<FaultKind, int>> faults = {
            {FaultKind::damage, 3},      {FaultKind::damage, 5},  {FaultKind::damage, 6},
            {FaultKind::damage, 7},      {FaultKind::cut_off, 4}, {FaultKind::wrong_length, 0xFFFF},
            {FaultKind::twice, 0},       {FaultKind::delay, 400}, {FaultKind::lose_frame, 0},
            {FaultKind::wrong_length, 0}};
        for (const auto& [kind, value] : faults) {
            // A set that the chip didn't hear leaves it at the base baud, alone there.
            if (kind == FaultKind::lose_frame && frame == FrameKind::set_baud) continue;
            SCOPED_TRACE(std::string(name_of(kind)) + " of " + std::string(name_of(frame)));
            ChipConfig config;
            config.faults = {fault_of(kind, frame, value)};
            Bench bench(config);
            bench.run();
            EXPECT_EQ(bench.result, 0) << bench.story();
            EXPECT_EQ(bench.newbaud, 115200);
        }
    }
}

TEST(Handshake, ASetThatTheChipMissedFailsSinceTheHostHasGoneOn) {
    ChipConfig config;
    config.faults = {fault_of(FaultKind::lose_frame, FrameKind::set_baud, 0)};
    Bench bench(config);
    bench.run();
    bench.expect_failure_told();
}

// ---- the external watchdog
// -----------------------------------------------------------------------

TEST(Watchdog, IsToldBeforeTheBaudIsSought) {
    Bench bench;
    choose_watchdog(bench, "P3.5");
    bench.run();
    bench.expect_connected();
    EXPECT_EQ(bench.heard(FrameKind::watchdog), 1);
    EXPECT_EQ(bench.last_heard(FrameKind::watchdog)[6], 0x35);
    EXPECT_EQ(bench.chip.log()[1].kind, FrameKind::watchdog);
}

TEST(Watchdog, NothingIsSentWithoutOne) {
    Bench bench;
    bench.run();
    EXPECT_EQ(bench.heard(FrameKind::watchdog), 0);
}

TEST(Watchdog, AnEmptyChoiceOfThePinIsFF) {
    Bench bench;
    choose_watchdog(bench, "");
    bench.run();
    bench.expect_connected();
    EXPECT_EQ(bench.last_heard(FrameKind::watchdog)[6], 0xFF);
}

TEST(Watchdog, ARefusalClosesThePortAndIsTold) {
    ChipConfig config;
    config.faults = {lose_reply(FrameKind::watchdog, always)};
    Bench bench(config);
    choose_watchdog(bench, "P3.5");
    bench.run();
    EXPECT_EQ(bench.result, -1);
    EXPECT_EQ(bench.heard(FrameKind::watchdog), 3);
    EXPECT_EQ(bench.heard(FrameKind::test_baud), 0);
    EXPECT_EQ(bench.sounder.beeps(), 3);
    EXPECT_TRUE(bench.log().ends_with(std::string(programming_text) +
                                      "\r\nHandshake is failed. / 握手失败"))
        << bench.log();
    EXPECT_FALSE(bench.port.is_open());
}

TEST(Watchdog, TheThirdTryIsEnough) {
    ChipConfig config;
    config.faults = {lose_reply(FrameKind::watchdog, 2)};
    Bench bench(config);
    choose_watchdog(bench, "P4.3");
    bench.run();
    bench.expect_connected();
    EXPECT_EQ(bench.heard(FrameKind::watchdog), 3);
}

TEST(Watchdog, StopIsToldAsAStop) {
    ChipConfig config;
    config.faults = {lose_reply(FrameKind::watchdog, always)};
    Bench bench(config);
    choose_watchdog(bench, "P3.5");
    bench.stop_in(600);
    bench.run();
    bench.expect_stop_told();
    EXPECT_LT(bench.elapsed_ms() - bench.stopped_at, 150 + 3 * 120);
}

TEST(Watchdog, AChoiceTakenBackBetweenTriesSendsFF) {
    ChipConfig config;
    config.faults = {lose_reply(FrameKind::watchdog, 1)};
    Bench bench(config);
    choose_watchdog(bench, "P3.5");
    bench.at(500, [&] { bench.frm.screen.opt_ISP_DEMO_WDT[1].Value = 0; });
    bench.run();
    bench.expect_connected();
    EXPECT_EQ(bench.heard(FrameKind::watchdog), 2);
    EXPECT_EQ(bench.last_heard(FrameKind::watchdog)[6], 0xFF);
}

// ---- the other way of connecting
// --------------------------------------------------------------------

TEST(TriggerLink, ConnectsAndStaysAt115200Baud) {
    for (const double clock : {4e6, 11.0592e6, 16e6, 24e6, 33e6}) {
        SCOPED_TRACE(clock);
        Bench bench({.model = "VKM47H58RK+", .clock_hz = clock});
        bench.frm.screen.cheTL.Value = 1;
        bench.run();
        EXPECT_EQ(bench.result, 0) << bench.story();
        EXPECT_EQ(bench.newbaud, 115200);
        EXPECT_TRUE(bench.frm.link.TL_Link);
        EXPECT_EQ(bench.port.settings(), "115200,n,8,1");
        EXPECT_TRUE(bench.port.is_open());
        EXPECT_NEAR(bench.frm.link.crystal_frequency / clock, 1, 0.005);
        EXPECT_FALSE(bench.log_has("trying to program"));
        EXPECT_EQ(bench.heard(FrameKind::test_baud), 1);
        EXPECT_EQ(bench.heard(FrameKind::set_baud), 0);
        const Bytes test = bench.last_heard(FrameKind::test_baud);
        ASSERT_EQ(test.size(), 14U);
        EXPECT_EQ(test[6], 0);
        EXPECT_EQ(test[7], 0);
        EXPECT_EQ(test[8], 255);
        EXPECT_EQ(test[9], 254);
        EXPECT_EQ(test[10], test_delay_code_at_115200(bench.frm.link.crystal_frequency));
        EXPECT_TRUE(bench.chip.faults().empty()) << bench.story();
    }
}

TEST(TriggerLink, TriggersEvery100MillisecondsUntilTheChipAnswers) {
    Bench bench({.powered_at = sim::never});
    bench.frm.screen.cheTL.Value = 1;
    bench.power_on_in(2'000);
    bench.run();
    EXPECT_EQ(bench.result, 0) << bench.story();
    int triggers = 0;
    for (const Written& written : bench.port.written)
        if (written.bytes.size() == 12 && written.bytes[9] == 0x8A) ++triggers;
    EXPECT_NEAR(triggers, 21, 1);
}

// Held at the base baud nothing closes the port, whose rate is the trigger's.
TEST(TriggerLink, AHighestRateOf1200LeavesThePortAlone) {
    int openings[2] = {};
    for (const bool held : {false, true}) {
        Bench bench({.model = "VKM47H58RK+"});
        bench.frm.screen.cheTL.Value = 1;
        ASSERT_TRUE(bench.choose(bench.frm.screen.cobBaudMax, held ? "1200" : "2400"));
        bench.at(10, [&] { bench.port.openings = 0; });
        bench.run();
        EXPECT_EQ(bench.result, 0) << bench.story();
        EXPECT_EQ(bench.newbaud, 115200);
        EXPECT_EQ(bench.port.settings(), "115200,n,8,1");
        EXPECT_EQ(bench.heard(FrameKind::test_baud), 1);
        EXPECT_TRUE(bench.chip.faults().empty()) << bench.story();
        openings[held] = bench.port.openings;
    }
    EXPECT_EQ(openings[false], 1);  // behind the test
    EXPECT_EQ(openings[true], 0);
}

TEST(TriggerLink, ThreeFailedTestsAreAFailure) {
    for (const int lost : {2, 3}) {
        ChipConfig config;
        config.faults = {lose_reply(FrameKind::test_baud, lost)};
        Bench bench(config);
        bench.frm.screen.cheTL.Value = 1;
        bench.run();
        EXPECT_EQ(bench.heard(FrameKind::test_baud), 3);
        if (lost == 2)
            EXPECT_EQ(bench.result, 0);
        else
            bench.expect_failure_told();
    }
}

TEST(TriggerLink, StopIsToldAtTheTriggerAndAtTheTest) {
    for (const int ms : {250, 2'500}) {
        ChipConfig config;
        if (ms == 250) config.powered_at = sim::never;
        config.faults = {lose_reply(FrameKind::test_baud, always)};
        Bench bench(config);
        bench.frm.screen.cheTL.Value = 1;
        bench.stop_in(ms);
        bench.run();
        bench.expect_stop_told();
        EXPECT_LT(bench.elapsed_ms() - bench.stopped_at, 300);
    }
}

}  // namespace
}  // namespace vkm::test
