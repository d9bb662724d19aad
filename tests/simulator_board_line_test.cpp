// The simulated download board on its line, byte for byte.
#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "board_frames.h"
#include "simulators/byte_values.h"
#include "simulators/simulated_board.h"
#include "struck_frames.h"
#include "target_driver.h"

namespace vkm::test {
namespace {

using sim::BoardConfig;
using sim::BoardFrame;
using sim::SimulatedBoard;
using sim::WrittenRange;

const Bytes wake = {0xAA};
const Bytes done = {0x46, 0xB9, 0x68, 0x00, 0x07, 0x80, 0x1F, 0xD4, 0x16};
const Bytes check = board_command(0x80);
const Bytes erase_all = board_command(0x84);
const Bytes erase_second = board_command(0x86);

struct Bench {
    explicit Bench(BoardConfig config = {}) : board(std::move(config)), driver(board.target()) {}

    Bytes ask(const Bytes& bytes) { return driver.ask(bytes); }
    std::uint8_t at(std::size_t address) { return std::as_const(board).storage()[address]; }

    SimulatedBoard board;
    TargetDriver driver;
};

constexpr auto with_fault = config_with_fault<BoardConfig, BoardFrame>;

Bytes check_answered_with(const char* fault) {
    return Bench(with_fault(fault)).ask(check);
}

// ---- answers ---------------------------------------------------------------------------

TEST(BoardFrames, HaveTheCrcOfTheLine) {
    const std::string digits = "123456789";
    EXPECT_EQ(sim::crc_of(Bytes(digits.begin(), digits.end())), 0x4B37);
    EXPECT_EQ(board_command(0x80, 1, 2), (Bytes{0x46, 0xB9, 0x6A, 0x00, 0x0B, 0x80, 0x01, 0x02,
                                                0x36, 0x01, 0xB0, 0xA5, 0x16}));
}

TEST(SimulatedBoard, AnswersItsCommands) {
    BoardConfig config;
    config.flag = 0x5A;
    Bench bench(config);
    EXPECT_EQ(bench.ask(wake), done);
    EXPECT_EQ(bench.ask(check), done);
    EXPECT_EQ(bench.ask(board_command(0x0C)),
              (Bytes{0x46, 0xB9, 0x68, 0x00, 0x08, 0x0C, 0x17, 0x81, 0x05, 0x16}));
    EXPECT_EQ(bench.ask(board_command(0x0E)),
              (Bytes{0x46, 0xB9, 0x68, 0x00, 0x09, 0x0E, 0x5A, 0x40, 0x51, 0xFC, 0x16}));
    EXPECT_EQ(bench.ask(erase_all), done);
    EXPECT_EQ(bench.ask(erase_second), done);
    EXPECT_EQ(bench.ask(board_block(0x2000, {1, 2, 3})), done);
    Bytes read = {0x46, 0xB9, 0x68, 0x00, 0x89, 0x53, 0x20, 0x00, 1, 2, 3};
    read.resize(read.size() + 125, 0xFF);
    read.insert(read.end(), {0x8C, 0xB1, 0x16});
    EXPECT_EQ(bench.ask(board_read(0x2000)), read);
    EXPECT_TRUE(bench.board.faults().empty());
    const auto& counters = bench.board.counters();
    EXPECT_EQ(counters.wakes, 1);
    EXPECT_EQ(counters.link_checks, 1);
    EXPECT_EQ(counters.versions, 1);
    EXPECT_EQ(counters.capacities, 1);
    EXPECT_EQ(counters.erases, 1);
    EXPECT_EQ(counters.second_erases, 1);
    EXPECT_EQ(counters.blocks, 1);
    EXPECT_EQ(counters.reads, 1);
    EXPECT_EQ(counters.frames, 7);
    EXPECT_EQ(counters.replies, 8);
}

TEST(SimulatedBoard, TakesItsTimeForAnErase) {
    BoardConfig config;
    config.erase_time = 700ms;
    Bench bench(config);
    bench.driver.send(erase_all);
    bench.driver.advance(699ms);
    EXPECT_TRUE(bench.driver.take_bytes().empty());
    bench.driver.advance(10ms);
    EXPECT_EQ(bench.driver.take_bytes(), done);
}

TEST(SimulatedBoard, KeepsALogOfFramesAndAnswers) {
    Bench bench;
    bench.ask(check);
    ASSERT_EQ(bench.board.log().size(), 2U);
    EXPECT_EQ(bench.board.log()[0].kind, BoardFrame::link_check);
    EXPECT_FALSE(bench.board.log()[0].answer);
    EXPECT_EQ(bench.board.log()[0].bytes, check);
    EXPECT_TRUE(bench.board.log()[1].answer);
    EXPECT_EQ(bench.board.log()[1].bytes, done);
    EXPECT_GT(bench.board.log()[1].at, bench.board.log()[0].at);
}

// ---- power -----------------------------------------------------------------------------

TEST(SimulatedBoard, IsDeafWithoutPower) {
    BoardConfig config;
    config.powered_at = sim::never;
    Bench bench(config);
    for (int i = 0; i < 50; ++i) EXPECT_TRUE(bench.ask(wake).empty());
    EXPECT_TRUE(bench.ask(check).empty());
    EXPECT_EQ(bench.board.counters().wakes, 50);
    EXPECT_EQ(bench.board.counters().frames, 0);
    EXPECT_TRUE(bench.board.faults().empty());
    bench.board.power_on(bench.driver.now);
    EXPECT_EQ(bench.ask(wake), done);
    bench.board.power_off(bench.driver.now);
    EXPECT_TRUE(bench.ask(wake).empty());
}

TEST(SimulatedBoard, GetsPowerAtItsInstant) {
    BoardConfig config;
    config.powered_at = sim::Instant{5s};
    Bench bench(config);
    bench.driver.advance_to(sim::Instant{4900ms});
    bench.driver.send(wake);
    bench.driver.advance_to(sim::Instant{5010ms});
    EXPECT_TRUE(bench.driver.take_bytes().empty());
    EXPECT_EQ(bench.ask(wake), done);
}

TEST(SimulatedBoard, GetsPowerAfterSoManyWakeBytes) {
    BoardConfig config;
    config.powered_at = sim::never;
    config.powered_after_wakes = 3;
    Bench bench(config);
    for (int i = 0; i < 3; ++i) EXPECT_TRUE(bench.ask(wake).empty());
    EXPECT_EQ(bench.ask(wake), done);
    EXPECT_EQ(bench.board.counters().power_ups, 1);
}

TEST(SimulatedBoard, PassesOverWakeBytesWhileItAnswersOne) {
    Bench bench;
    bench.driver.send({0xAA, 0xAA, 0xAA});
    bench.driver.advance(1s);
    EXPECT_EQ(bench.driver.take_bytes(), done);
    EXPECT_TRUE(bench.board.faults().empty());
}

TEST(SimulatedBoard, TakesAnAAInsideAFrameForData) {
    Bench bench;
    bench.ask(erase_all);
    EXPECT_EQ(bench.ask(board_block(0x4000, Bytes(128, 0xAA))), done);
    EXPECT_EQ(bench.at(0x407F), 0xAA);
    EXPECT_EQ(bench.board.counters().wakes, 0);
}

// ---- storage ---------------------------------------------------------------------------

TEST(SimulatedBoard, ErasesAllOrItsSecondStage) {
    BoardConfig config;
    config.storage = Bytes(0x10000, 0x11);
    Bench bench(config);
    bench.ask(erase_second);
    EXPECT_EQ(bench.at(0x1FFF), 0x11);
    EXPECT_EQ(bench.at(0x2000), 0xFF);
    EXPECT_EQ(bench.at(0x3FFF), 0xFF);
    EXPECT_EQ(bench.at(0x4000), 0x11);
    bench.ask(erase_all);
    EXPECT_EQ(bench.at(0x0000), 0xFF);
    EXPECT_EQ(bench.at(0xFFFF), 0xFF);
}

TEST(SimulatedBoard, TellsWhichAddressesWereWrittenInEachStage) {
    Bench bench;
    bench.ask(erase_all);
    for (const unsigned address : {0x4000U, 0x4080U, 0x4080U, 0xEC00U, 0x4100U})
        bench.ask(board_block(address, counting(128)));
    bench.ask(erase_second);
    bench.ask(board_block(0x2000, counting(128)));
    EXPECT_EQ(bench.board.first_stage(),
              (std::vector<WrittenRange>{{0x4000, 0x40FF}, {0xEC00, 0xEC7F}, {0x4100, 0x417F}}));
    EXPECT_EQ(bench.board.second_stage(), (std::vector<WrittenRange>{{0x2000, 0x207F}}));
    bench.ask(erase_all);
    EXPECT_TRUE(bench.board.first_stage().empty());
    EXPECT_TRUE(bench.board.second_stage().empty());
}

TEST(SimulatedBoard, ErasesASectorThatIsTriedAgain) {
    BoardConfig config;
    config.storage = Bytes(0x10000, 0x11);
    Bench bench(config);
    bench.ask(erase_second);
    EXPECT_EQ(bench.ask(board_block(0x4280, counting(128), 0x30)), done);
    EXPECT_EQ(bench.at(0x41FF), 0x11);
    EXPECT_EQ(bench.at(0x4200), 0xFF);
    EXPECT_EQ(bench.at(0x4281), 0x01);
    EXPECT_EQ(bench.at(0x43FF), 0xFF);
    EXPECT_EQ(bench.at(0x4400), 0x11);
    EXPECT_EQ(bench.board.counters().retried_sectors, 1);
    EXPECT_TRUE(bench.board.faults().empty());
}

TEST(SimulatedBoard, ObjectsToABlockOverOtherBytesAndStoresIt) {
    Bench bench;
    bench.ask(erase_all);
    bench.ask(board_block(0x4000, {1, 2, 3}));
    bench.ask(board_block(0x4000, {1, 2, 3}));
    EXPECT_TRUE(bench.board.faults().empty());
    EXPECT_EQ(bench.ask(board_block(0x4000, {1, 2, 4})), done);
    EXPECT_EQ(bench.at(0x4002), 4);
    EXPECT_EQ(bench.board.faults(),
              std::vector<std::string>{"block over other bytes: 4000, 3 bytes"});
}

TEST(SimulatedBoard, ObjectsToABlockBeforeAnErase) {
    Bench bench;
    bench.ask(board_block(0x4000, {1, 2, 3}));
    EXPECT_EQ(bench.board.take_faults(),
              std::vector<std::string>{"block before an erase: 4000, 3 bytes"});
    bench.ask(erase_second);
    bench.ask(board_block(0x4010, {1}));
    EXPECT_TRUE(bench.board.faults().empty());
    bench.board.power_off(bench.driver.now);
    bench.board.power_on(bench.driver.now);
    bench.ask(board_block(0x4020, {1}));
    EXPECT_EQ(bench.board.faults().size(), 1U);
}

// ---- what it doesn't take ----------------------------------------------------------------

TEST(SimulatedBoard, AnswersNoFrameThatIsWrong) {
    Bytes wrong_crc = check;
    wrong_crc[10] ^= 1;
    Bytes crc_high_first = check;
    std::swap(crc_high_first[10], crc_high_first[11]);
    Bytes wrong_mark = check;
    wrong_mark.back() = 0x17;
    Bytes wrong_length = check;
    wrong_length[4] = 3;
    const Bytes other_length = ended_with_crc({0x46, 0xB9, 0x6A, 0, 0x0C, 0x80, 1, 0, 0x36, 1, 0});
    const Bytes no_mark = ended_with_crc({0x46, 0xB9, 0x6A, 0, 0x0B, 0x80, 1, 0, 0x36, 2});
    const Bytes short_read = ended_with_crc({0x46, 0xB9, 0x6A, 0, 0x08, 0x53, 0});
    Bytes wrong_count = board_block(0x4000, {1, 2, 3});
    wrong_count = [](Bytes frame) {
        frame[11] = 4;
        frame.resize(frame.size() - 3);
        return ended_with_crc(std::move(frame));
    }(wrong_count);
    for (const Bytes& frame : {wrong_crc, crc_high_first, wrong_mark, wrong_length, other_length,
                               no_mark, short_read, wrong_count, board_block(0xFFFF, {1, 2}),
                               board_read(0xFF81), board_command(0x99), Bytes{0x46, 0xB9, 0x68}}) {
        Bench bench;
        EXPECT_TRUE(bench.ask(frame).empty()) << sim::hex_text(frame);
        EXPECT_EQ(bench.board.faults().size(), 1U) << sim::hex_text(frame);
        EXPECT_EQ(bench.ask(check), done) << sim::hex_text(frame);
    }
}

TEST(SimulatedBoard, ReadsAndStoresUpToItsLastByte) {
    Bench bench;
    bench.ask(erase_all);
    EXPECT_EQ(bench.ask(board_block(0xFF80, counting(128))), done);
    EXPECT_EQ(bench.ask(board_read(0xFF80)).size(), 139U);
    EXPECT_TRUE(bench.board.faults().empty());
}

TEST(SimulatedBoard, ObjectsToFramesThatBreakOffAndToOtherRates) {
    Bench bench;
    bench.driver.send({0x46, 0xB9, 0x6A, 0x00});
    bench.driver.advance(100ms);
    EXPECT_EQ(bench.ask(check), done);
    EXPECT_EQ(bench.board.take_faults(), std::vector<std::string>{"frame broken off: 46 B9 6A 00"});
    bench.driver.baud = 9600;
    EXPECT_TRUE(bench.ask(check).empty());
    EXPECT_EQ(bench.board.take_faults().size(), 1U);
}

TEST(SimulatedBoard, HearsNothingWhileItWorks) {
    Bench bench;
    bench.driver.send(erase_all);
    bench.driver.advance(10ms);
    bench.driver.send(check);
    bench.driver.advance(1s);
    EXPECT_EQ(bench.driver.take_bytes(), done);
    EXPECT_EQ(bench.board.faults().size(), 1U);
    EXPECT_EQ(bench.board.counters().link_checks, 0);
}

// ---- what goes wrong ----------------------------------------------------------------------

TEST(BoardFaults, SpoilAnswers) {
    EXPECT_EQ(check_answered_with("damage@link_check=5"),
              (Bytes{0x46, 0xB9, 0x68, 0x00, 0x07, 0x81, 0x1F, 0xD4, 0x16}));
    EXPECT_EQ(check_answered_with("wrong_sum@link_check"),
              (Bytes{0x46, 0xB9, 0x68, 0x00, 0x07, 0x80, 0x1F, 0x2B, 0x16}));
    EXPECT_EQ(check_answered_with("cut_off@link_check=3"), (Bytes{0x46, 0xB9, 0x68}));
    EXPECT_EQ(check_answered_with("wrong_length@link_check=9"),
              (Bytes{0x46, 0xB9, 0x68, 0x00, 0x09, 0x80, 0x1F, 0xD4, 0x16}));
    EXPECT_EQ(check_answered_with("other_code@link_check=3"),
              ended_with_crc({0x46, 0xB9, 0x68, 0x00, 0x07, 0x03}));
    EXPECT_EQ(check_answered_with("noise@link_check=0068").size(), done.size() + 2);
    EXPECT_EQ(check_answered_with("twice@link_check").size(), 2 * done.size());
    EXPECT_TRUE(check_answered_with("cut_off@link_check=0").empty());
}

TEST(BoardFaults, LoseAFrameUndoneOrItsAnswerAlone) {
    for (const auto& [fault, erases] :
         {std::pair{"lose_frame@erase", 0}, {"lose_reply@erase", 1}}) {
        Bench bench(with_fault(fault));
        EXPECT_TRUE(bench.ask(erase_all).empty());
        EXPECT_EQ(bench.board.counters().erases, erases);
        EXPECT_EQ(bench.ask(erase_all), done);
    }
}

TEST(BoardFaults, StrikeEachKindOfFrame) {
    const NamedFrame frames[] = {{"wake", wake},
                                 {"link_check", check},
                                 {"version", board_command(0x0C)},
                                 {"capacity", board_command(0x0E)},
                                 {"erase", erase_all},
                                 {"erase_second", erase_second},
                                 {"block", board_block(0x4000, {1})},
                                 {"read", board_read(0)},
                                 {"any", check}};
    expect_struck_by_name<Bench>(frames, with_fault);
    EXPECT_FALSE(sim::parse_fault_on<BoardFrame>("lose_reply@status"));
    EXPECT_FALSE(sim::parse_fault_on<BoardFrame>("lose_reply@"));
    EXPECT_FALSE(sim::parse_fault_on<BoardFrame>("nonsense@wake"));
}

TEST(BoardFaults, DelayAnAnswer) {
    Bench bench(with_fault("delay@link_check=500"));
    bench.driver.send(check);
    bench.driver.advance(490ms);
    EXPECT_TRUE(bench.driver.take_bytes().empty());
    bench.driver.advance(20ms);
    EXPECT_EQ(bench.driver.take_bytes(), done);
}

TEST(BoardFaults, TellAnotherByteThanWasStored) {
    Bench bench(with_fault("wrong_data_sum@read"));
    const Bytes wrong = bench.ask(board_read(0x1234));
    ASSERT_EQ(wrong.size(), 139U);
    EXPECT_EQ(wrong[8], 0x00);
    EXPECT_EQ(wrong[9], 0xFF);
    EXPECT_EQ(wrong, ended_with_crc(Bytes(wrong.begin(), wrong.end() - 3)));
    EXPECT_EQ(bench.ask(board_read(0x1234))[8], 0xFF);
}

TEST(BoardFaults, KillThePowerForAWhileOrForGood) {
    Bench bench(with_fault("power_loss@block:2=300"));
    bench.ask(erase_all);
    bench.ask(board_block(0x4000, {1}));
    bench.driver.send(board_block(0x4001, {2}));
    bench.driver.advance(299ms);
    EXPECT_FALSE(bench.board.powered());
    EXPECT_EQ(bench.at(0x4000), 1);
    EXPECT_EQ(bench.at(0x4001), 0xFF);
    bench.driver.advance(10ms);
    EXPECT_EQ(bench.ask(wake), done);
    Bench dead(with_fault("power_loss@wake"));
    dead.ask(wake);
    EXPECT_TRUE(dead.ask(wake).empty());
    dead.board.forget_faults();
    dead.board.power_on(dead.driver.now);
    EXPECT_EQ(dead.ask(wake), done);
}

}  // namespace
}  // namespace vkm::test
