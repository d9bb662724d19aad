// Waiting: events first, then the test; timers; the waits that are blind to Stop.
#include "waiting/waiting.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "support/virtual_world.h"

namespace vkm {
namespace {

using test::VirtualWorld;

TEST(Waiting, ReturnsAtOnceForNothingToWaitFor) {
    VirtualWorld world;
    wait_ms(world.frm, 0);
    wait_ms(world.frm, -5);
    beep_times(world.frm, 0);
    EXPECT_EQ(world.elapsed_ms(), 0);
    EXPECT_TRUE(world.sounder.at.empty());
}

TEST(Waiting, WaitsThatAreBlindToStopRunToTheirEnd) {
    VirtualWorld world;
    world.at(10, [&] { world.frm.link.stop_requested = true; });
    wait_ms(world.frm, 100);
    EXPECT_EQ(world.elapsed_ms(), 100);
    beep_times(world.frm, 3);
    EXPECT_EQ(world.elapsed_ms(), 100 + 3 * 150);
    EXPECT_EQ(world.sounder.at.size(), 3u);
}

TEST(Waiting, LetsEventsRunBeforeItTests) {
    VirtualWorld world;
    int tested = 0;
    bool happened = false;
    world.at(0, [&] { happened = true; });
    wait_until(world.frm, [&] {
        ++tested;
        return happened;
    });
    EXPECT_EQ(tested, 1);
}

TEST(Waiting, EndsAtOnceWhenItsConditionHoldsAlready) {
    VirtualWorld world;
    restart_timer(world.frm, world.frm.timers.Timer7, 5000);
    wait_until(world.frm, [] { return true; });
    EXPECT_EQ(world.elapsed_ms(), 0);
}

TEST(Timers, WithoutATickStopThemselves) {
    VirtualWorld world;
    Timer& timer = world.frm.timers.Timer7;
    restart_timer(world.frm, timer, 200);
    EXPECT_TRUE(timer.Enabled);
    world.run_for(199);
    EXPECT_TRUE(timer.Enabled);
    world.run_for(2);
    EXPECT_FALSE(timer.Enabled);
}

TEST(Timers, WithAnIntervalOf0NeverFire) {
    VirtualWorld world;
    restart_timer(world.frm, world.frm.timers.Timer7, 0);
    EXPECT_FALSE(world.frm.timers.Timer7.Enabled);
}

TEST(Timers, StartAnewWhenRestarted) {
    VirtualWorld world;
    Timer& timer = world.frm.timers.Timer7;
    restart_timer(world.frm, timer, 100);
    world.run_for(90);
    restart_timer(world.frm, timer, 100);
    world.run_for(90);
    EXPECT_TRUE(timer.Enabled);
}

int ticks = 0;
int depth = 0;
int deepest = 0;

TEST(Timers, RepeatUntilTheirTickStopsThem) {
    VirtualWorld world;
    ticks = 0;
    Timer& timer = world.frm.timers.Timer12;
    timer.Tick = [](frmMain& frm) {
        if (++ticks == 3) stop_timer(frm.timers.Timer12);
    };
    restart_timer(world.frm, timer, 1000);
    world.run_for(10000);
    EXPECT_EQ(ticks, 3);
}

TEST(Timers, NeverTickInsideTheirOwnTick) {
    VirtualWorld world;
    ticks = depth = deepest = 0;
    Timer& timer = world.frm.timers.Timer12;
    timer.Tick = [](frmMain& frm) {
        deepest = std::max(deepest, ++depth);
        ++ticks;
        wait_ms(frm, 350);
        --depth;
    };
    restart_timer(world.frm, timer, 100);
    world.run_for(2000);
    EXPECT_GT(ticks, 2);
    EXPECT_EQ(deepest, 1);
}

TEST(GiveTurn, LetsEventsRunAtMostEvery10Milliseconds) {
    VirtualWorld world;
    int handed_in = 0;
    world.run_for(100);
    give_turn(world.frm);
    world.at(0, [&] { ++handed_in; });
    give_turn(world.frm);
    EXPECT_EQ(handed_in, 0) << "the last turn was just now";
    world.run_for(20);
    EXPECT_EQ(handed_in, 1);
}

}  // namespace
}  // namespace vkm
