// The simulated ISP program of a user's target, byte for byte.
#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "board_frames.h"
#include "simulators/byte_values.h"
#include "simulators/simulated_isp_program.h"
#include "struck_frames.h"
#include "target_driver.h"

namespace vkm::test {
namespace {

using sim::IspConfig;
using sim::IspFrame;

const Bytes done = {0x5A, 0xA5, 0x00, 0x08, 0x80, 0x01, 0x87, 0x16};
const Bytes connect = isp_command(0xB0);
const Bytes end_job = isp_command(0xB1);
const Bytes erase = isp_command(0xB2);
const Bytes version = isp_command(0xB5);

struct Bench {
    explicit Bench(IspConfig config = {})
        : target(std::move(config)), driver(target.target(), target.config().baud) {}

    Bytes ask(const Bytes& bytes) { return driver.ask(bytes); }

    sim::SimulatedIspProgram target;
    TargetDriver driver;
};

constexpr auto with_fault = config_with_fault<IspConfig, IspFrame>;

Bytes connect_answered_with(const char* fault) {
    return Bench(with_fault(fault)).ask(connect);
}

// ---- answers ---------------------------------------------------------------------------

TEST(SimulatedIspProgram, AnswersItsCommands) {
    IspConfig config;
    config.chip_byte = 0x5C;
    Bench bench(config);
    EXPECT_EQ(connect, (Bytes{0x5A, 0xA5, 0x00, 0x08, 0xB0, 0x01, 0xB7, 0x16}));
    EXPECT_EQ(bench.ask(connect), done);
    EXPECT_EQ(bench.ask(version),
              (Bytes{0x5A, 0xA5, 0x00, 0x0C, 0x80, 0x10, 0x40, 0x05, 0x5C, 0x02, 0x3C, 0x16}));
    EXPECT_EQ(bench.ask(erase), done);
    EXPECT_EQ(bench.ask(isp_block(0x100, {0xFF, 0x2C, 0x01})),
              (Bytes{0x5A, 0xA5, 0x00, 0x0A, 0x80, 0x01, 0x2C, 0x01, 0xB6, 0x16}));
    EXPECT_EQ(bench.target.flash()[0x101], 0x2C);
    EXPECT_TRUE(bench.ask(end_job).empty());
    EXPECT_TRUE(bench.target.faults().empty());
    EXPECT_EQ(bench.target.counters().frames, 5);
    EXPECT_EQ(bench.target.counters().replies, 4);
    EXPECT_EQ(bench.target.log().size(), 9U);
}

TEST(SimulatedIspProgram, SpeaksAtItsOwnRateOnly) {
    IspConfig config;
    config.baud = 19200;
    Bench bench(config);
    EXPECT_EQ(bench.ask(connect), done);
    bench.driver.baud = 115200;
    EXPECT_TRUE(bench.ask(connect).empty());
    EXPECT_EQ(bench.target.counters().connects, 1);
    EXPECT_FALSE(bench.target.faults().empty());
}

TEST(SimulatedIspProgram, TakesItsTimeToEraseAndToAnswer) {
    IspConfig config;
    config.erase_time = 700ms;
    config.turnaround = 5ms;
    Bench bench(config);
    bench.driver.send(connect);
    bench.driver.advance(4ms);
    EXPECT_TRUE(bench.driver.take().empty());
    bench.driver.advance(10ms);
    EXPECT_EQ(bench.driver.take_bytes(), done);
    bench.driver.send(erase);
    bench.driver.advance(700ms);
    EXPECT_TRUE(bench.driver.take().empty());
    bench.driver.advance(10ms);
    EXPECT_EQ(bench.driver.take_bytes(), done);
}

TEST(SimulatedIspProgram, DoesAllInSilenceIfSo) {
    IspConfig config;
    config.silent = true;
    Bench bench(config);
    EXPECT_TRUE(bench.ask(erase).empty());
    EXPECT_TRUE(bench.ask(isp_block(0, {1})).empty());
    EXPECT_EQ(bench.target.flash()[0], 1);
    EXPECT_EQ(bench.target.counters().replies, 0);
}

// ---- coming and going --------------------------------------------------------------------

TEST(SimulatedIspProgram, IsDeafUntilItsUserCode) {
    IspConfig config;
    config.user_code = {0x12, 0x34, 0x12, 0x35};
    config.user_code_baud = 9600;
    Bench bench(config);
    EXPECT_TRUE(bench.ask(connect).empty());
    EXPECT_TRUE(bench.ask(config.user_code).empty());  // at another rate
    bench.driver.baud = 9600;
    bench.ask({0x12, 0x34, 0x12});
    EXPECT_FALSE(bench.target.awake());
    bench.ask({0x34, 0x12, 0x35});
    EXPECT_TRUE(bench.target.awake());
    bench.driver.baud = 115200;
    EXPECT_EQ(bench.ask(connect), done);
    EXPECT_EQ(bench.target.counters().user_codes, 1);
    EXPECT_TRUE(bench.target.faults().empty());
}

TEST(SimulatedIspProgram, LeavesBehindTheSecondEndOfTheJob) {
    Bench bench;
    bench.driver.send(end_job);
    bench.driver.advance(50ms);
    bench.driver.send(end_job);
    EXPECT_TRUE(bench.target.awake());
    bench.driver.advance(60ms);
    EXPECT_FALSE(bench.target.awake());
    EXPECT_EQ(bench.target.counters().ends, 2);
    EXPECT_EQ(bench.target.counters().leaves, 1);
    EXPECT_TRUE(bench.ask(connect).empty());
    EXPECT_TRUE(bench.driver.take().empty());
}

TEST(SimulatedIspProgram, AnswersTheEndOfTheJobIfSo) {
    IspConfig config;
    config.answers_end = true;
    Bench bench(config);
    EXPECT_EQ(bench.ask(end_job), done);
}

TEST(SimulatedIspProgram, GivesWayToAFreshOne) {
    Bench bench;
    bench.ask(erase);
    bench.ask(isp_block(0, {1, 2}));
    bench.ask(end_job);
    bench.target.replace(bench.driver.now);
    EXPECT_EQ(bench.target.flash()[0], 0xFF);
    EXPECT_EQ(bench.target.counters().chips, 2);
    EXPECT_EQ(bench.ask(connect), done);
    bench.ask(isp_block(0, {1}));
    EXPECT_EQ(bench.target.faults(),
              std::vector<std::string>{"block before an erase: 0000, 1 bytes"});
}

// ---- flash -------------------------------------------------------------------------------

TEST(SimulatedIspProgram, TellsWhatItsFlashReallyHolds) {
    Bench bench;
    bench.ask(erase);
    bench.ask(isp_block(0, {0x0F}));
    EXPECT_EQ(bench.ask(isp_block(0, {0x0F}, 0xB4)),
              ended_with_sum({0x5A, 0xA5, 0x00, 0x0A, 0x80, 0x00, 0x0F}));
    EXPECT_EQ(bench.target.counters().retried_blocks, 1);
    EXPECT_TRUE(bench.target.faults().empty());
    EXPECT_EQ(bench.ask(isp_block(0, {0xF1})),
              ended_with_sum({0x5A, 0xA5, 0x00, 0x0A, 0x80, 0x00, 0x01}));
    EXPECT_EQ(bench.target.take_faults(),
              std::vector<std::string>{"program over unerased byte at 0000, 1 bytes"});
    bench.ask(erase);
    EXPECT_EQ(bench.target.flash()[0], 0xFF);
}

TEST(SimulatedIspProgram, TakesBlocksUpToItsLastByte) {
    IspConfig config;
    config.flash_size = 0x1000;
    Bench bench(config);
    bench.ask(erase);
    EXPECT_FALSE(bench.ask(isp_block(0x0F80, counting(128))).empty());
    EXPECT_TRUE(bench.target.faults().empty());
    EXPECT_TRUE(bench.ask(isp_block(0x0FFF, {1, 2})).empty());
    EXPECT_TRUE(bench.ask(isp_block(0x10000, {1})).empty());
    EXPECT_EQ(bench.target.faults().size(), 2U);
}

TEST(SimulatedIspProgram, AnswersNoFrameThatIsWrong) {
    Bytes wrong_sum = connect;
    wrong_sum[6] ^= 1;
    Bytes wrong_mark = connect;
    wrong_mark.back() = 0x17;
    Bytes wrong_length = connect;
    wrong_length[3] = 7;
    Bytes wrong_count = isp_block(0, {1, 2});
    wrong_count[10] = 3;
    wrong_count.resize(wrong_count.size() - 3);
    wrong_count = ended_with_sum(wrong_count);
    for (const Bytes& frame :
         {wrong_sum, wrong_mark, wrong_length, wrong_count, isp_block(0, {}), isp_command(0xB6),
          ended_with_sum({0x5A, 0xA5, 0x00, 0x09, 0xB0, 0x00}), Bytes{0x5A, 0xA6}}) {
        Bench bench;
        EXPECT_TRUE(bench.ask(frame).empty()) << sim::hex_text(frame);
        EXPECT_EQ(bench.target.faults().size(), 1U) << sim::hex_text(frame);
        EXPECT_EQ(bench.ask(connect), done) << sim::hex_text(frame);
    }
}

// ---- what goes wrong ------------------------------------------------------------------------

TEST(IspFaults, SpoilAnswers) {
    EXPECT_EQ(connect_answered_with("damage@connect=4"),
              (Bytes{0x5A, 0xA5, 0x00, 0x08, 0x81, 0x01, 0x87, 0x16}));
    EXPECT_EQ(connect_answered_with("wrong_sum@connect"),
              (Bytes{0x5A, 0xA5, 0x00, 0x08, 0x80, 0x01, 0x78, 0x16}));
    EXPECT_EQ(connect_answered_with("cut_off@connect=2"), (Bytes{0x5A, 0xA5}));
    EXPECT_EQ(connect_answered_with("wrong_length@connect=9"),
              (Bytes{0x5A, 0xA5, 0x00, 0x09, 0x80, 0x01, 0x87, 0x16}));
    EXPECT_EQ(connect_answered_with("other_code@connect=3"),
              ended_with_sum({0x5A, 0xA5, 0x00, 0x08, 0x03}));
    EXPECT_EQ(connect_answered_with("noise@connect=00").size(), done.size() + 1);
    EXPECT_EQ(connect_answered_with("twice@connect").size(), 2 * done.size());
    EXPECT_TRUE(connect_answered_with("lose_reply@connect").empty());
}

TEST(IspFaults, LoseAFrameUndoneOrItsAnswerAlone) {
    for (const auto& [fault, blocks] :
         {std::pair{"lose_frame@block", 0}, {"lose_reply@block", 1}}) {
        Bench bench(with_fault(fault));
        bench.ask(erase);
        EXPECT_TRUE(bench.ask(isp_block(0, {1})).empty());
        EXPECT_EQ(bench.target.counters().blocks, blocks);
    }
}

TEST(IspFaults, StrikeEachKindOfFrame) {
    IspConfig config;
    config.answers_end = true;
    const NamedFrame frames[] = {{"connect", connect},
                                 {"version", version},
                                 {"erase", erase},
                                 {"block", isp_block(0, {1})},
                                 {"any", version}};
    expect_struck_by_name<Bench>(frames, with_fault);
    config.faults = {sim::parse_fault_on<IspFrame>("lose_reply@end").value()};
    EXPECT_TRUE(Bench(config).ask(end_job).empty());
}

TEST(IspFaults, DelayAnAnswerAndTellAWrongDataSum) {
    Bench late(with_fault("delay@connect=500"));
    late.driver.send(connect);
    late.driver.advance(490ms);
    EXPECT_TRUE(late.driver.take().empty());
    late.driver.advance(20ms);
    EXPECT_EQ(late.driver.take_bytes(), done);
    Bench wrong(with_fault("wrong_data_sum@block"));
    wrong.ask(erase);
    EXPECT_EQ(wrong.ask(isp_block(0, {1})),
              ended_with_sum({0x5A, 0xA5, 0x00, 0x0A, 0x80, 0x00, 0x02}));
}

TEST(IspFaults, KillThePowerForAWhileOrForGood) {
    Bench bench(with_fault("power_loss@block=300"));
    bench.ask(erase);
    bench.driver.send(isp_block(0, {1}));
    bench.driver.advance(290ms);
    bench.driver.send(connect);
    EXPECT_EQ(bench.target.counters().connects, 0);
    bench.driver.advance(100ms);
    EXPECT_EQ(bench.ask(connect), done);
    EXPECT_EQ(bench.target.flash()[0], 0xFF);
    Bench dead(with_fault("power_loss@connect"));
    dead.ask(connect);
    EXPECT_TRUE(dead.ask(connect).empty());
    dead.target.replace(dead.driver.now);
    EXPECT_EQ(dead.ask(connect), done);
}

}  // namespace
}  // namespace vkm::test
