// The clock of the tests, and the fuses that keep a hanging program from hanging
// its test.
#include <gtest/gtest.h>

#include "support/virtual_world.h"
#include "waiting/waiting.h"

namespace vkm::test {
namespace {

using std::chrono::milliseconds;

TEST(VirtualLoopTest, AnHoursWaitTakesATurnAndNotAnHour) {
    VirtualWorld world;
    const auto turns = world.loop.turns;
    wait_ms(world.frm, 3'600'000);
    EXPECT_EQ(world.elapsed_ms(), 3'600'000);
    EXPECT_LT(world.loop.turns - turns, 5u);
}

TEST(VirtualLoopTest, ATurnThatMayNotSleepTakesNoTime) {
    VirtualWorld world;
    world.at(1, [] {});
    process_events(world.frm);
    EXPECT_EQ(world.elapsed_ms(), 0);
}

TEST(VirtualLoopTest, WhatIsDueAtTheSameTimeRunsInTheOrderOfTheCalls) {
    VirtualWorld world;
    std::string order;
    world.at(5, [&] { order += 'b'; });
    world.at(5, [&] { order += 'c'; });
    world.at(2, [&] { order += 'a'; });
    world.run_for(10);
    EXPECT_EQ(order, "abc");
}

TEST(VirtualLoopTest, ASleepEndsWithWhatTheOperatorDoes) {
    VirtualWorld world;
    world.at(300, [] {});
    world.loop.turn(never);
    EXPECT_EQ(world.elapsed_ms(), 300);
}

TEST(VirtualLoopTest, AMachineThatWakesLateOversleepsTimersAndNotTheOperator) {
    VirtualWorld world;
    world.loop.oversleep = milliseconds(15);
    wait_ms(world.frm, 100);
    EXPECT_EQ(world.elapsed_ms(), 115);
    world.at(50, [] {});
    world.loop.turn(world.loop.now() + milliseconds(100));
    EXPECT_EQ(world.elapsed_ms(), 165);
}

TEST(VirtualLoopTest, AnActionMayTurnTheLoopItself) {
    VirtualWorld world;
    std::string order;
    world.at(1, [&] {
        order += '(';
        wait_ms(world.frm, 10);
        order += ')';
    });
    world.at(5, [&] { order += 'x'; });
    world.run_for(50);
    EXPECT_EQ(order, "(x)");
}

TEST(VirtualLoopTest, ASleepThatNothingCanEndIsAFailureThatShowsTheLog) {
    VirtualWorld world;
    world.frm.screen.textMsg.Text = "waiting for a chip";
    try {
        wait_until(world.frm, [] { return false; });
        FAIL() << "the wait ended";
    } catch (const Hang& hang) {
        EXPECT_NE(std::string(hang.what()).find("waiting for a chip"), std::string::npos);
    }
}

TEST(VirtualLoopTest, AWaitThatNeverSleepsIsFound) {
    VirtualWorld world;
    world.loop.turn_limit = 1000;
    EXPECT_THROW(
        {
            for (;;) process_events(world.frm);
        },
        Hang);
}

TEST(VirtualLoopTest, AProgramThatGoesOnBeyondTheTestsTimeIsFound) {
    VirtualWorld world;
    world.loop.time_limit = std::chrono::minutes(10);
    EXPECT_THROW(
        {
            for (;;) wait_ms(world.frm, 1000);
        },
        Hang);
    EXPECT_NEAR(world.elapsed_ms(), 600'000, 1001);
}

TEST(VirtualLoopTest, TheClockOnTheWallGoesWithTheTime) {
    VirtualWorld world;
    world.wall_clock.start = 23 * 3600 + 59 * 60 + 58;
    EXPECT_EQ(world.wall_clock.time_of_day(), "23:59:58");
    const auto before = world.wall_clock.seconds();
    wait_ms(world.frm, 1999);
    EXPECT_EQ(world.wall_clock.time_of_day(), "23:59:59");
    wait_ms(world.frm, 1);
    EXPECT_EQ(world.wall_clock.time_of_day(), "00:00:00");
    EXPECT_EQ(world.wall_clock.seconds() - before, 2);
}

TEST(VirtualLoopTest, BeepsAreCountedWithTheirTimes) {
    VirtualWorld world;
    beep_times(world.frm, 3);
    EXPECT_EQ(world.sounder.beeps(), 3);
    EXPECT_EQ(world.sounder.at[2] - world.sounder.at[0], milliseconds(300));
}

TEST(ScriptedDialogsTest, ABoxWithoutAnAnswerIsLeftByItsDefault) {
    VirtualWorld world;
    EXPECT_FALSE(world.dialogs.ask_yes_no("Sure?", "Title"));
    EXPECT_EQ(world.dialogs.ask_file_to_open({}), "");
    EXPECT_EQ(world.dialogs.ask_file_to_save({}), "");
    ASSERT_EQ(world.boxes().size(), 3u);
    EXPECT_EQ(world.boxes()[0].text, "Sure?");
    EXPECT_EQ(world.boxes()[0].title, "Title");
    EXPECT_EQ(world.boxes()[2].kind, BoxKind::save_file);
}

TEST(ScriptedDialogsTest, AnswersComeInTheOrderInWhichTheyWereLaidOut) {
    VirtualWorld world;
    world.dialogs.answer_yes();
    world.dialogs.answer_no();
    world.dialogs.choose_file("/a.hex");
    EXPECT_TRUE(world.dialogs.ask_yes_no("1", ""));
    EXPECT_FALSE(world.dialogs.ask_yes_no("2", ""));
    EXPECT_EQ(
        world.dialogs.ask_file_to_open({.title = "t", .filter = {}, .folder = {}, .name = {}}),
        "/a.hex");
}

TEST(ScriptedDialogsTest, EventsRunWhileABoxStays) {
    VirtualWorld world;
    world.dialogs.stays = milliseconds(500);
    bool ran = false;
    world.at(200, [&] { ran = world.dialogs.open_boxes == 1; });
    world.dialogs.show_text("done");
    EXPECT_TRUE(ran);
    EXPECT_EQ(world.elapsed_ms(), 500);
    EXPECT_EQ(world.dialogs.open_boxes, 0);
}

}  // namespace
}  // namespace vkm::test
