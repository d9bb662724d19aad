// A handshake that is stopped, or whose bytes, frames or power fail, at any moment.
#include "link/isp_link.h"
#include "link_bench.h"

namespace vkm::test {
namespace {

using Bench = LinkBench;

// ---- Stop -------------------------------------------------------------------------------------

TEST(Handshake, StopDuringThePulsesLeavesPortAndAdviceTimer) {
    Bench bench({.powered_at = sim::never});
    bench.stop_in(1'234);
    bench.run();
    bench.expect_stop_told();
    EXPECT_TRUE(bench.port.is_open());
    EXPECT_EQ(bench.port.settings(), "1200,n,8,1");
    EXPECT_TRUE(bench.frm.timers.Timer9.Enabled);
    // The beep of a stop has no pause behind it.
    EXPECT_DOUBLE_EQ(bench.elapsed_ms() - bench.stopped_at, 0);
}

TEST(Handshake, StopAtAnyMomentIsToldOnceAndEndsSoon) {
    Bench whole;
    whole.run();
    const auto end = static_cast<std::int64_t>(whole.took);
    int stopped = 0;
    for (std::int64_t ms = 0; ms < end + 20; ms += 7) {
        Bench bench;
        bench.stop_in(ms);
        bench.run();
        if (bench.result == 0) {
            EXPECT_GT(ms, end - 40);  // behind the last wait
            continue;
        }
        ++stopped;
        bench.expect_stop_told();
        EXPECT_LT(bench.elapsed_ms() - bench.stopped_at, 1'400) << ms;
    }
    EXPECT_GT(stopped, 100);
}

TEST(Handshake, StopWhileTheChipDoesNotAnswerTheTest) {
    ChipConfig config;
    config.faults = {lose_reply(FrameKind::test_baud, always)};
    for (std::int64_t ms = 300; ms < 12'000; ms += 371) {
        Bench bench(config);
        bench.stop_in(ms);
        bench.run();
        bench.expect_stop_told();
        EXPECT_EQ(bench.port.settings(), "1200,n,8,1") << ms;
        EXPECT_LT(bench.elapsed_ms() - bench.stopped_at, 1'400) << ms;
    }
}

// The operator presses Stop between two polls, and the answer comes between the
// same two: the stop counts.
TEST(Handshake, StopWinsOverAnAnswerOfTheSameMoment) {
    static int answers = 0;
    for (const bool trigger : {false, true})
        for (int nth = 1; nth <= (trigger ? 3 : 4); ++nth) {
            SCOPED_TRACE(std::to_string(nth) + (trigger ? " over the trigger" : " over pulses"));
            Bench bench;
            choose_watchdog(bench, "P3.5");
            bench.frm.screen.cheTL.Value = trigger;
            answers = nth;  // status, watchdog, test, set
            bench.frm.link.Receive_Event = [](frmMain& frm) {
                on_port_event(frm);
                if (frm.link.frame_ok && --answers == 0) frm.link.stop_requested = true;
            };
            bench.run();
            EXPECT_LE(answers, 0);
            bench.expect_stop_told();
            EXPECT_EQ(bench.heard(FrameKind::watchdog), nth > 1);
            EXPECT_EQ(bench.heard(FrameKind::set_baud), nth > 3);
            EXPECT_EQ(bench.log_has(programming_text), nth > 1 && !trigger);
        }
}

// Stop as the operator's button does it: the port is closed under the handshake.
TEST(Handshake, AStopThatClosesThePortIsSurvivedAtAnyMoment) {
    for (std::int64_t ms = 0; ms < 700; ms += 3) {
        Bench bench;
        bench.at(ms, [&] {
            bench.frm.link.stop_requested = true;
            bench.frm.platform.port.clear_input();
            bench.frm.platform.port.clear_output();
            close_port(bench.frm);
        });
        bench.run();
        if (bench.result != 0) bench.expect_stop_told();
    }
}

// ---- whatever the line does
// --------------------------------------------------------------------------

// A run ends connected, or with a told failure or stop, whatever happens to the
// Nth byte received or the Nth frame sent.
void expect_told_outcome(Bench& bench) {
    if (bench.result == 0) {
        EXPECT_NEAR(bench.chip.rate() / bench.newbaud, 1, 0.045) << bench.story();
        EXPECT_EQ(bench.sounder.beeps(), 0);
        return;
    }
    EXPECT_EQ(bench.result, -1);
    EXPECT_GE(bench.sounder.beeps(), 1);
    EXPECT_TRUE(bench.log_has(failed_text) || bench.log().ends_with(stop_text)) << bench.log();
    EXPECT_LT(bench.took, 62'000);
}

TEST(HandshakeFaults, AnyByteMayBeLostDamagedLateDoubledOrCutOff) {
    for (const PortFault fault : {PortFault::lose, PortFault::damage, PortFault::twice,
                                  PortFault::late, PortFault::cut_off}) {
        int connected = 0;
        int nth = 1;
        for (;; ++nth) {
            Bench bench;
            bench.faults.reset();
            bench.faults.fault_byte(nth, fault);
            bench.stop_in(60'000);
            bench.run();
            SCOPED_TRACE("byte " + std::to_string(nth) + " fault " +
                         std::to_string(static_cast<int>(fault)));
            expect_told_outcome(bench);
            connected += bench.result == 0;
            if (bench.faults.struck == 0) break;
        }
        EXPECT_GT(nth, 40);
        EXPECT_GT(connected, nth / 2) << static_cast<int>(fault);
    }
}

TEST(HandshakeFaults, AnyFrameMayBeLostDamagedLateDoubledOrCutOff) {
    for (const PortFault fault : {PortFault::lose, PortFault::damage, PortFault::twice,
                                  PortFault::late, PortFault::cut_off}) {
        for (int nth = 1;; ++nth) {
            Bench bench;
            choose_watchdog(bench, "P3.5");
            bench.faults.reset();
            bench.faults.fault_frame(nth, fault);
            bench.stop_in(60'000);
            bench.run();
            SCOPED_TRACE("frame " + std::to_string(nth) + " fault " +
                         std::to_string(static_cast<int>(fault)));
            expect_told_outcome(bench);
            if (bench.faults.struck == 0) break;
        }
    }
}

TEST(HandshakeFaults, PowerMayFailAtEachExchange) {
    for (const FrameKind frame :
         {FrameKind::status, FrameKind::watchdog, FrameKind::test_baud, FrameKind::set_baud})
        for (const int returns : {0, 300}) {
            ChipConfig config;
            config.faults = {fault_of(FaultKind::power_loss, frame, returns)};
            Bench bench(config);
            choose_watchdog(bench, "P3.5");
            bench.stop_in(60'000);
            bench.run();
            SCOPED_TRACE(std::string(name_of(frame)) + " back in " + std::to_string(returns));
            if (frame == FrameKind::watchdog && bench.result != 0)
                EXPECT_TRUE(bench.log_has("Handshake is failed. / 握手失败"));
            else
                expect_told_outcome(bench);
        }
}

}  // namespace
}  // namespace vkm::test
