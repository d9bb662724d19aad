// The link with the download board: waking, the checks, the versions, erasing and sectors,
// how often each is tried, and whatever a line can do to the answers.
#include <gtest/gtest.h>

#include <numeric>
#include <string>
#include <vector>

#include "board_bench.h"
#include "board_frames.h"
#include "support/holding_line.h"

namespace vkm::test {
namespace {

using sim::BoardFrame;

constexpr std::size_t file_size = 0x1234;

struct LinkRun : BoardBench {
    explicit LinkRun(const std::vector<std::string>& faults, sim::BoardConfig config = {})
        : BoardBench(board_with(faults, std::move(config))) {
        load(file_size);
        load_board();
    }

    // Times (ms) of the writes of frames with this command and parameter.
    std::vector<double> times(int command, int parameter = 0) const {
        std::vector<double> all;
        for (const Written& write : port.written)
            if (write.bytes.size() == 13 && write.bytes[5] == command &&
                write.bytes[7] == parameter)
                all.push_back(ms_of(write));
        return all;
    }
    static double ms_of(const Written& write) {
        return std::chrono::duration<double, std::milli>(write.at.time_since_epoch()).count();
    }
};

void expect_loaded(const LinkRun& run, bool second = true) {
    expect_flow_over(run);
    EXPECT_EQ(run.frm.session.Result, Job_Result::done) << run.tale();
    EXPECT_TRUE(run.stored(0x4000, 0xF7FF));
    if (second) {
        EXPECT_TRUE(run.stored(0x2000, 0x3FFF));
    }
    EXPECT_TRUE(ends_with(run.log(), board_done)) << run.tale();
}

// ---- waking ------------------------------------------------------------------------------------

std::vector<Written> wakes_of(const BoardBench& bench) {
    std::vector<Written> wakes;
    for (const Written& write : bench.port.written)
        if (write.bytes == Bytes{0xAA}) wakes.push_back(write);
    return wakes;
}

TEST(BoardWake, GoesOutEveryThreeMillisecondsUntilTheBoardHasPower) {
    const LinkRun run({}, {.powered_at = sim::never, .powered_after_wakes = 1000});
    expect_loaded(run);
    const auto wakes = wakes_of(run);
    EXPECT_EQ(wakes.size(), 1001U);
    for (std::size_t i = 1; i < wakes.size(); ++i) {
        EXPECT_EQ(wakes[i].unsent, 0U);
        EXPECT_NEAR(LinkRun::ms_of(wakes[i]) - LinkRun::ms_of(wakes[i - 1]), 3, 0.5);
    }
    EXPECT_EQ(run.port.settings(), "115200,n,8,1");
    EXPECT_TRUE(run.board.faults().empty()) << run.tale();
}

TEST(BoardWake, EndsAfterSomeFiveMinutes) {
    const LinkRun run({}, {.powered_at = sim::never});
    expect_board_failed(run, board_not_connected, connect_step);
    EXPECT_EQ(wakes_of(run).size(), 100001U);
    EXPECT_NEAR(run.job_took, 300'003, 50);
}

TEST(BoardWake, AnAnswerAtTheLastTryIsTaken) {
    const LinkRun run({}, {.powered_at = sim::never, .powered_after_wakes = 100000});
    expect_loaded(run);
    const LinkRun late({}, {.powered_at = sim::never, .powered_after_wakes = 100001});
    expect_board_failed(late, board_not_connected, connect_step);
}

TEST(BoardWake, SendsNothingWhileTheOutputIsFull) {
    BoardBench bench({.powered_at = sim::never});
    bench.load(100);
    bench.at(200, [&] {
        // Another 20 ms of bytes that the device has not sent yet.
        bench.port.write(Bytes(230, 0x55));
    });
    bench.click_in(400, bench.s.comStop_Download);
    bench.load_board();
    for (const Written& write : wakes_of(bench)) EXPECT_EQ(write.unsent, 0U);
}

// A spoilt answer doesn't stand in the way of a good one.
TEST(BoardWake, SpoiltAnswersAreForgotten) {
    for (const char* fault :
         {"wrong_sum@wake:1*5", "cut_off@wake:1*5=4", "wrong_length@wake:1*5=200",
          "wrong_length@wake:1*5=0", "noise@wake:1*5=00004600", "twice@wake:1*5", "delay@wake=10",
          "power_loss@wake:1*3=100", "damage@wake:1*4=8"}) {
        const LinkRun run({fault});
        SCOPED_TRACE(fault);
        expect_loaded(run);
    }
}

// Noise with the start byte of an answer in it costs no try.
TEST(BoardWake, NoiseBeforeTheHeaderIsPassedOver) {
    const LinkRun run({"noise@wake:1=680020"});
    expect_loaded(run);
    EXPECT_EQ(wakes_of(run).size(), 1U) << run.tale();
}

// What a job that failed was still owed is not waited for in the next one.
TEST(BoardWake, BeginsAnewBehindAJobThatFailed) {
    BoardBench bench;
    bench.load(file_size);
    bench.load_board();
    const double whole = bench.job_took;
    bench.board.add_fault(board_faults({"lose_frame@capacity:1*0"})[0]);
    bench.load_board();
    EXPECT_EQ(bench.frm.session.Result, Job_Result::failed) << bench.tale();
    bench.board.forget_faults();
    bench.load_board();
    EXPECT_EQ(bench.frm.session.Result, Job_Result::done) << bench.tale();
    EXPECT_NEAR(bench.job_took, whole, 5);
}

// ---- the checks ------------------------------------------------------------------------

TEST(BoardChecks, AreElevenBehindTheWaking) {
    const LinkRun run({});
    expect_loaded(run);
    const auto checks = run.frames(BoardFrame::link_check);
    ASSERT_EQ(checks.size(), 12U);
    for (std::size_t i = 0; i < 11; ++i) EXPECT_EQ(checks[i], board_command(0x80, 2));
    EXPECT_EQ(checks[11], board_command(0x80, 2, 0xF1));
    EXPECT_EQ(run.frames(BoardFrame::version), std::vector<Bytes>(2, board_command(0x0C, 2)));
    EXPECT_EQ(run.frames(BoardFrame::capacity), std::vector<Bytes>{board_command(0x0E, 2)});
    EXPECT_EQ(run.frames(BoardFrame::erase), std::vector<Bytes>{board_command(0x84, 2)});
    EXPECT_EQ(run.frames(BoardFrame::erase_second), std::vector<Bytes>{board_command(0x86, 2)});
    EXPECT_TRUE(run.board.faults().empty()) << run.tale();
}

// A command that isn't answered: what is lost, which frames go out in vain, how often,
// and what comes of one more.
struct Tries {
    BoardFrame frame;
    int nth;  // the first frame that is lost
    int tries;
    double wait_ms;
    int command;
    int parameter;
    std::string text;
    std::string step;
};

class BoardTries : public testing::TestWithParam<Tries> {};

TEST_P(BoardTries, AreMadeSoOftenAndSoLong) {
    const Tries& p = GetParam();
    const std::string lost = "lose_frame@" + std::string(sim::name_of_frame(p.frame)) + ":" +
                             std::to_string(p.nth) + "*";
    const LinkRun good({lost + std::to_string(p.tries - 1)});
    expect_loaded(good);

    const LinkRun bad({lost + std::to_string(p.tries)});
    expect_board_failed(bad, p.text, p.step);
    const auto times = bad.times(p.command, p.parameter);
    const std::size_t first = p.parameter == 0 ? static_cast<std::size_t>(p.nth) - 1 : 0;
    ASSERT_EQ(times.size(), first + static_cast<std::size_t>(p.tries));
    for (std::size_t i = first + 1; i < times.size(); ++i)
        EXPECT_NEAR(times[i] - times[i - 1], p.wait_ms, 0.5) << i;
}

const std::string second_stage_lost = "Erase application is failed.\r\n下载失败。";

INSTANTIATE_TEST_SUITE_P(
    OfCommands, BoardTries,
    testing::Values(
        Tries{BoardFrame::link_check, 1, 201, 200, 0x80, 0, board_not_connected, connect_step},
        Tries{BoardFrame::link_check, 11, 201, 200, 0x80, 0, board_not_connected, connect_step},
        Tries{BoardFrame::version, 1, 4, 3000, 0x0C, 0, board_not_connected, connect_step},
        Tries{BoardFrame::capacity, 1, 4, 300, 0x0E, 0, board_not_connected, connect_step},
        Tries{BoardFrame::version, 2, 4, 300, 0x0C, 0, board_not_connected, connect_step},
        Tries{BoardFrame::erase, 1, 6, 4000, 0x84, 0, "Erase application is failed.\r\n擦除失败",
              erase_step},
        Tries{BoardFrame::erase_second, 1, 6, 600, 0x86, 0, second_stage_lost, program_step},
        Tries{BoardFrame::link_check, 12, 36, 50, 0x80, 0xF1, second_stage_lost, program_step}));

// ---- what the board says of itself ------------------------------------------------------------

TEST(BoardVersion, IsToldTwice) {
    const LinkRun run({}, {.version = 0x0A, .flag = 1});
    EXPECT_EQ(run.frm.board.Board_Version, "0A");
    EXPECT_TRUE(told(run, "Version: 0A")) << run.tale();
    EXPECT_TRUE(told(run, "脱机下载固件版本号: 0A")) << run.tale();
    EXPECT_TRUE(told(run, "Connect OK. / 连接成功。"));
    EXPECT_TRUE(run.frm.board.Board_Flag);
}

TEST(BoardVersion, IsAskedAgainUntilItsOwnCodeAnswers) {
    for (int wrong = 0; wrong <= 3; ++wrong) {
        const LinkRun run({"other_code@version:1*" + std::to_string(wrong + 1) + "=128"});
        expect_loaded(run);
        EXPECT_EQ(run.number_of(BoardFrame::version), std::min(wrong + 2, 4) + 1);
        EXPECT_EQ(run.frm.board.Board_Version, "17");
    }
}

TEST(BoardCapacity, IsInKilobytesAndWithAFlag) {
    const LinkRun run({}, {.flag = 0x80, .capacity_kb = 62});
    EXPECT_EQ(run.frm.board.Board_Capacity, 62 * 1024);
    EXPECT_TRUE(run.frm.board.Board_Flag);
    const LinkRun other({}, {.flag = 0, .capacity_kb = 255});
    EXPECT_EQ(other.frm.board.Board_Capacity, 255 * 1024);
    EXPECT_FALSE(other.frm.board.Board_Flag);
}

// ---- stages -----------------------------------------------------------------------------------

struct Stages {
    int version;
    int flag;
    std::uint32_t last;
    bool second;
};

TEST(BoardStages, GoByVersionAndFlag) {
    const Stages all[] = {{0x14, 0, 0xF3FF, false}, {0x15, 0, 0xF3FF, true},
                          {0x15, 1, 0xF3FF, false}, {0x16, 0, 0xF3FF, false},
                          {0x16, 1, 0xF3FF, false}, {0x17, 0, 0xF7FF, true},
                          {0x17, 1, 0xF7FF, false}, {0x18, 0, 0xF7FF, true},
                          {0x20, 1, 0xF7FF, false}, {0x99, 0, 0xF7FF, true}};
    for (const auto& [version, flag, last, second] : all) {
        const LinkRun run({}, {.version = static_cast<std::uint8_t>(version),
                               .flag = static_cast<std::uint8_t>(flag)});
        SCOPED_TRACE(version);
        expect_flow_over(run);
        EXPECT_EQ(run.frm.session.Result, Job_Result::done);
        EXPECT_EQ(run.board.first_stage(), (std::vector<sim::WrittenRange>{{0x4000, last}}));
        EXPECT_EQ(run.board.second_stage(), second
                                                ? (std::vector<sim::WrittenRange>{{0x2000, 0x3FFF}})
                                                : std::vector<sim::WrittenRange>{});
        EXPECT_TRUE(run.stored(0x4000, last));
        if (second) {
            EXPECT_TRUE(run.stored(0x2000, 0x3FFF));
        }
        EXPECT_EQ(run.board.counters().second_erases, second ? 1 : 0);
        EXPECT_EQ(times_told(run, board_done), second ? 2 : 1);
        EXPECT_EQ(run.sounder.beeps(), 0);
        EXPECT_TRUE(run.board.faults().empty()) << run.tale();
    }
}

// ---- sectors ----------------------------------------------------------------------------------

TEST(BoardSector, IsRepeatedAsAWholeWithItsMarkInTheFirstBlock) {
    // The third block of the first sector, twice.
    const LinkRun run({"lose_frame@block:3", "lose_frame@block:6"});
    expect_loaded(run);
    const auto blocks = run.frames(BoardFrame::block);
    ASSERT_GT(blocks.size(), 12U);
    const int addresses[] = {0x4000, 0x4080, 0x4100, 0x4000, 0x4080, 0x4100,
                             0x4000, 0x4080, 0x4100, 0x4180, 0x4200};
    const int marks[] = {0, 0, 0, 0x30, 0, 0, 0x30, 0, 0, 0, 0};
    for (std::size_t i = 0; i < std::size(marks); ++i) {
        EXPECT_EQ(blocks[i][5], marks[i]) << i;
        EXPECT_EQ(blocks[i][8] * 256 + blocks[i][9], addresses[i]) << i;
        EXPECT_EQ(blocks[i].size(), 128U + 15);
    }
}

TEST(BoardSector, IsTriedSixTimes) {
    const int last_block_of_first = (0xF800 - 0x4000) / 128;
    for (const int nth : {1, 4, last_block_of_first, last_block_of_first + 1}) {
        const std::string fault = "lose_frame@block:" + std::to_string(nth) + "*";
        SCOPED_TRACE(nth);
        // The blocks before it in the sector are sent again each time.
        const int before = (nth - 1) % 4;
        std::vector<std::string> five;
        for (int i = 0; i < 5; ++i)
            five.push_back("lose_frame@block:" + std::to_string(nth + i * (before + 1)));
        expect_loaded(LinkRun(five));
        five.push_back("lose_frame@block:" + std::to_string(nth + 5 * (before + 1)));
        const LinkRun bad(five);
        expect_board_failed(bad, board_not_loaded, program_step);
        EXPECT_EQ(bad.number_of(BoardFrame::block), nth + 5 * (before + 1));
        EXPECT_EQ(bad.sounder.beeps(), nth > last_block_of_first ? 3 : 0);
    }
}

TEST(BoardSector, WaitsSixHundredMillisecondsForABlock) {
    const LinkRun run({"lose_frame@block:1*6"});
    std::vector<double> times;
    for (const Written& write : run.port.written)
        if (write.bytes.size() == 143) times.push_back(LinkRun::ms_of(write));
    ASSERT_EQ(times.size(), 6U);
    EXPECT_NEAR(times[1] - times[0], 1200, 2);  // and as long for a late answer
}

TEST(BoardSector, AnotherCodeIsNoAcknowledgement) {
    const LinkRun run({"other_code@block:7=129"});
    expect_loaded(run);
    EXPECT_EQ(run.board.counters().retried_sectors, 1);
}

// ---- whatever a line does ----------------------------------------------------------------

bool log_tells_failure(const std::string& log) {
    return ends_with(log, board_not_connected) || ends_with(log, board_not_loaded) ||
           ends_with(log, "\r\n擦除失败") || ends_with(log, second_stage_lost);
}

// An adapter that stalls hands an answer on when the tool has asked again: it answers the
// first try, and what came meanwhile is left over.
struct HeldRun : BoardBench {
    HeldRun(int nth, int ms, const std::vector<std::string>& faults = {})
        : BoardBench(board_with(faults, {.version = 0x18, .flag = 0, .capacity_kb = 44})),
          held(board.target(), nth, Milliseconds(ms)) {
        line.connect(held.target());
        load(file_size);
        load_board();
    }
    void expect_right(bool may_fail = false) const {
        expect_flow_over(*this);
        if (may_fail && frm.session.Result == Job_Result::failed) return;
        EXPECT_EQ(frm.session.Result, Job_Result::done) << tale();
        EXPECT_EQ(frm.board.Board_Version, "18");
        EXPECT_EQ(frm.board.Board_Capacity, 44 * 1024);
        EXPECT_FALSE(frm.board.Board_Flag);
        EXPECT_TRUE(stored(0x4000, 0xF7FF));
        EXPECT_TRUE(stored(0x2000, 0x3FFF));
    }

    HoldingLine held;
};

TEST(BoardHeldAnswers, PassForNoOtherAnswer) {
    // All up to the first blocks, and what stands between the stages.
    std::vector<int> answers(24);
    std::iota(answers.begin(), answers.end(), 1);
    answers.insert(answers.end(), {384, 385, 386, 387});
    for (const int nth : answers)
        for (const int ms : {40, 205, 310, 620, 1700, 3010, 4020}) {
            // The last ones come when the tries of some commands are over.
            SCOPED_TRACE(std::to_string(nth) + " " + std::to_string(ms));
            HeldRun(nth, ms).expect_right(ms > 1200);
            if (testing::Test::HasFailure()) return;
        }
}

// The block behind it is lost: a left-over acknowledgement would stand for it.
TEST(BoardHeldAnswers, StandForNoLostBlock) {
    const int first_block = 17;  // among the answers
    for (int nth = first_block; nth < first_block + 5; ++nth)
        for (int lost = 2; lost <= 12; ++lost)
            for (const int ms : {605, 1190}) {
                SCOPED_TRACE(std::to_string(nth) + " " + std::to_string(lost));
                HeldRun(nth, ms, {"lose_frame@block:" + std::to_string(lost)}).expect_right();
                if (testing::Test::HasFailure()) return;
            }
}

// The job is right, or it is told to have failed; it always ends.
void expect_right_or_failed(const LinkRun& run) {
    expect_flow_over(run);
    if (run.frm.session.Result == Job_Result::done) {
        EXPECT_TRUE(run.stored(0x4000, 0xF7FF));
        EXPECT_TRUE(run.stored(0x2000, 0x3FFF));
        EXPECT_TRUE(ends_with(run.log(), board_done)) << run.tale();
    } else {
        EXPECT_EQ(run.frm.session.Result, Job_Result::failed);
        EXPECT_TRUE(log_tells_failure(run.log())) << run.tale();
    }
}

class BoardDisturbed : public testing::TestWithParam<const char*> {};

TEST_P(BoardDisturbed, IsRightOrReportedAsFailed) {
    const std::string at = std::string("@") + GetParam();
    const std::vector<std::string> kinds[] = {{"lose_frame", ""},     {"lose_reply", ""},
                                              {"damage", "=0"},       {"damage", "=3"},
                                              {"damage", "=4"},       {"damage", "=7"},
                                              {"delay", "=45"},       {"delay", "=100"},
                                              {"delay", "=250"},      {"delay", "=650"},
                                              {"delay", "=1500"},     {"delay", "=4500"},
                                              {"twice", ""},          {"cut_off", "=1"},
                                              {"cut_off", "=6"},      {"noise", "=46B968000010"},
                                              {"noise", "=00FF46"},   {"noise", "=68FFFF16"},
                                              {"other_code", "=12"},  {"other_code", "=143"},
                                              {"wrong_length", "=6"}, {"wrong_length", "=2000"},
                                              {"wrong_sum", ""},      {"power_loss", "=100"},
                                              {"power_loss", "=0"}};
    for (const auto& kind : kinds)
        for (const char* times : {"", "*2"}) {
            const std::string fault = kind[0] + at + times + kind[1];
            SCOPED_TRACE(fault);
            const LinkRun run({fault});
            expect_right_or_failed(run);
            if (HasFailure()) return;
        }
}

INSTANTIATE_TEST_SUITE_P(AtEveryStep, BoardDisturbed,
                         testing::Values("link_check:1", "link_check:11", "version:1", "capacity:1",
                                         "version:2", "erase:1", "block:1", "block:6",
                                         "erase_second:1", "link_check:12", "block:377"));

}  // namespace
}  // namespace vkm::test
