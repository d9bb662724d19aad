// A simulated target that stops at break points and dumps its state.
#include <gtest/gtest.h>

#include <numeric>
#include <span>
#include <string>

#include "simulators/stopped_target.h"
#include "support/agent_commands.h"
#include "target_driver.h"

namespace vkm::test {
namespace {

using sim::DebugCode;
using sim::DumpType;
using sim::Instant;
using sim::Memory;
using sim::StoppedConfig;
using sim::StoppedTarget;

constexpr Instant start{1s};

StoppedConfig small_config() {
    StoppedConfig config;
    config.started_at = start;
    config.run_time = 100ms;
    config.dumps = {sim::registers_dump(), sim::xram_dump(8)};
    return config;
}

bool sum_is_right(std::span<const std::uint8_t> frame) {
    const int sum = std::accumulate(frame.begin(), frame.end() - 1, 0);
    return frame.back() == sum % 256;
}

// A frame that was taken off the wire, without its mark.
Bytes frame_of(const Bytes& bytes) {
    EXPECT_GE(bytes.size(), 19U);
    if (bytes.size() < 19) return Bytes(17);
    EXPECT_EQ(bytes[0], 0xA5);
    EXPECT_EQ(bytes[1], 0x5A);
    return Bytes(bytes.begin() + 2, bytes.end());
}

struct Bench {
    explicit Bench(const StoppedConfig& config) : target(config), driver(target.target()) {}

    // It runs for 100 ms, and 2000 bytes take 174 ms.
    Bytes listen() {
        driver.advance(300ms);
        return driver.take_bytes();
    }
    Bytes exchange(const Bytes& bytes) {
        driver.send(bytes);
        return listen();
    }

    StoppedTarget target;
    TargetDriver driver;
};

// ---- frames -------------------------------------------------------------------------

TEST(DumpFrame, HoldsTheRegistersWithThoseThatTheAgentSaved) {
    sim::CpuState state;
    const std::pair<unsigned, int> saved[] = {{0xD0, 0x11}, {0xE0, 0x22}, {0x88, 0x55},
                                              {0xC8, 0x44}, {0xD8, 0x45}, {0xA8, 0x86},
                                              {0x81, 0x30}};
    for (const auto& [address, value] : saved)
        EXPECT_TRUE(state.set(Memory::sfr, address, static_cast<std::uint8_t>(value)));
    state.set(Memory::sfr, 0x82, 0x77);
    state.set(Memory::sfr, 0xFF, 0x78);
    state.set(Memory::ram, 0, 0xA0);
    state.set(Memory::ram, 1, 0xA1);
    const Bytes frame = dump_frame(state, sim::registers_dump());
    ASSERT_EQ(frame.size(), 145U);
    EXPECT_EQ(Bytes(frame.begin(), frame.begin() + 16),
              (Bytes{0xAA, 0x00, 145, 0x00, 0x00, 0x00, 0x80, 0x11, 0x22, 0x55, 0x44, 0x45, 0x86,
                     0x30, 0xA1, 0xA0}));
    EXPECT_EQ(frame[16 + 0x02], 0x77);
    EXPECT_EQ(frame[16 + 0x7F], 0x78);
    EXPECT_TRUE(sum_is_right(frame));
    // What the agent uses itself can't be taken from the dump of the registers.
    for (const auto& [address, value] : saved) EXPECT_NE(frame[16 + address - 0x80], value);
}

TEST(DumpFrame, HoldsTheRamWithoutTheTwoCellsThatTheAgentUses) {
    sim::CpuState state;
    for (unsigned i = 0; i < 256; ++i)
        state.set(Memory::ram, i, static_cast<std::uint8_t>(i ^ 0x5A));
    const Bytes frame = dump_frame(state, sim::ram_dump());
    ASSERT_EQ(frame.size(), 273U);
    EXPECT_EQ(frame[1] * 256 + frame[2], 273);
    EXPECT_EQ(frame[3], 1);
    EXPECT_EQ(frame[14], 0x5B);
    EXPECT_EQ(frame[15], 0x5A);
    EXPECT_NE(frame[16], 0x5A);
    EXPECT_NE(frame[17], 0x5B);
    for (unsigned i = 2; i < 256; ++i) EXPECT_EQ(frame[16 + i], i ^ 0x5A);
    EXPECT_TRUE(sum_is_right(frame));
}

TEST(DumpFrame, HoldsAsMuchXramAsWantedAndTheWindowInWhichAnAddressLies) {
    sim::CpuState state;
    for (unsigned i = 0; i < 0x10000; ++i)
        state.set(Memory::xram, i, static_cast<std::uint8_t>(i * 7 + i / 256));
    const Bytes long_one = dump_frame(state, sim::xram_dump(5000));
    ASSERT_EQ(long_one.size(), 1024U + 17);
    EXPECT_EQ(long_one[1] * 256 + long_one[2], 1041);
    EXPECT_EQ(long_one[3], 2);
    EXPECT_EQ(long_one[16 + 1000], state.get(Memory::xram, 1000));
    EXPECT_EQ(dump_frame(state, sim::xram_dump(3)).size(), 20U);

    const Bytes window = dump_frame(state, sim::window_dump(0x1234));
    ASSERT_EQ(window.size(), 512U + 17);
    EXPECT_EQ(Bytes(window.begin() + 3, window.begin() + 7), (Bytes{3, 0, 0x12, 0x34}));
    EXPECT_EQ(window[16], state.get(Memory::xram, 0x1200));
    EXPECT_EQ(window[16 + 511], state.get(Memory::xram, 0x13FF));
    EXPECT_TRUE(sum_is_right(window));
}

TEST(CpuState, HasNoCellsBeyondItsMemories) {
    sim::CpuState state;
    for (const auto& [memory, address] : {std::pair{Memory::sfr, 0x7FU},
                                          {Memory::sfr, 0x100U},
                                          {Memory::ram, 0x100U},
                                          {Memory::xram, 0x10000U}}) {
        EXPECT_FALSE(state.set(memory, address, 1));
        EXPECT_EQ(state.get(memory, address), 0);
    }
    EXPECT_EQ(state.get(Memory::sfr, 0x81), 7);
    EXPECT_EQ(state.get(Memory::sfr, 0x90), 0xFF);
}

// ---- a stop ---------------------------------------------------------------------------

TEST(StoppedTarget, RunsThenTellsOneDumpAfterTheOther) {
    Bench bench(small_config());
    bench.driver.advance(99ms);
    EXPECT_TRUE(bench.driver.take().empty());
    EXPECT_FALSE(bench.target.stopped());
    const Bytes first = bench.listen();
    EXPECT_EQ(frame_of(first), dump_frame(bench.target.state(), sim::registers_dump()));
    EXPECT_TRUE(bench.target.stopped());
    EXPECT_TRUE(bench.target.awaits_ack());
    EXPECT_TRUE(bench.listen().empty());  // it waits

    const Bytes second = bench.exchange(acknowledge);
    EXPECT_EQ(frame_of(second), dump_frame(bench.target.state(), sim::xram_dump(8)));
    EXPECT_TRUE(bench.exchange(acknowledge).empty());
    EXPECT_FALSE(bench.target.awaits_ack());
    EXPECT_TRUE(bench.target.stopped());
    EXPECT_TRUE(bench.target.faults().empty());
    EXPECT_EQ(bench.target.sent(), first.size() + second.size());
}

TEST(StoppedTarget, AnswersACommandAfterItsTurnaround) {
    StoppedConfig config = small_config();
    config.turnaround = 3ms;
    Bench bench(config);
    bench.listen();
    bench.driver.send(acknowledge);
    const Instant sent = bench.driver.now;
    bench.driver.advance(100ms);
    EXPECT_EQ(bench.driver.take().front().start, sent + 3ms);
}

TEST(StoppedTarget, SendsTheSameFrameAgainAsOftenAsItIsAsked) {
    Bench bench(small_config());
    const Bytes first = bench.listen();
    EXPECT_EQ(bench.exchange(again), first);
    EXPECT_EQ(bench.exchange(again), first);
    EXPECT_EQ(bench.exchange(acknowledge)[5], 2);  // the type
    EXPECT_TRUE(bench.exchange(acknowledge).empty());
    EXPECT_TRUE(bench.target.faults().empty());
    ASSERT_EQ(bench.target.dumps().size(), 4U);
    EXPECT_FALSE(bench.target.dumps()[0].again);
    EXPECT_TRUE(bench.target.dumps()[2].again);
    EXPECT_EQ(bench.target.dumps()[3].type, DumpType::xram);
}

TEST(StoppedTarget, GoesOnWhenItIsToldAndStopsAgainWithWhatHasChanged) {
    StoppedConfig config = small_config();
    config.changes = {{}, {{Memory::xram, 2, 0x99}, {Memory::sfr, 0xE0, 0x12}}};
    Bench bench(config);
    bench.listen();
    EXPECT_EQ(frame_of(bench.exchange(acknowledge))[16 + 2], 0);
    bench.exchange(acknowledge);
    bench.driver.send(go_on);
    EXPECT_FALSE(bench.target.stopped());
    bench.driver.advance(99ms);
    EXPECT_TRUE(bench.driver.take().empty());
    EXPECT_TRUE(bench.target.set(Memory::xram, 3, 0x77));
    EXPECT_FALSE(bench.target.set(Memory::ram, 256, 1));
    EXPECT_EQ(frame_of(bench.listen())[8], 0x12);
    const Bytes xram = frame_of(bench.exchange(acknowledge));
    EXPECT_EQ(xram[16 + 2], 0x99);
    EXPECT_EQ(xram[16 + 3], 0x77);
    EXPECT_EQ(bench.target.stops(), 2);
    EXPECT_EQ(bench.target.dumps().back().stop, 2);
    EXPECT_TRUE(bench.target.faults().empty());
}

TEST(StoppedTarget, GoesOnFromTheMidstOfItsDumps) {
    Bench bench(small_config());
    bench.listen();
    bench.driver.send(go_on);
    EXPECT_FALSE(bench.target.stopped());
    EXPECT_FALSE(bench.target.awaits_ack());
    EXPECT_EQ(bench.listen()[5], 0);  // the second stop begins with the registers again
    EXPECT_EQ(bench.target.stops(), 2);
    EXPECT_TRUE(bench.target.faults().empty());
}

TEST(StoppedTarget, HasAsManyBreakPointsAsWantedAndStopsByHand) {
    StoppedConfig config = small_config();
    config.most_stops = 1;
    Bench bench(config);
    bench.listen();
    EXPECT_FALSE(bench.target.stop(bench.driver.now));  // it stands
    bench.driver.send(go_on);
    bench.driver.advance(10s);
    EXPECT_EQ(bench.target.stops(), 1);
    EXPECT_TRUE(bench.target.stop(bench.driver.now));
    EXPECT_FALSE(bench.listen().empty());
    EXPECT_EQ(bench.target.stops(), 2);

    config.most_stops = 0;
    Bench by_hand(config);
    by_hand.driver.advance(10s);
    EXPECT_FALSE(by_hand.target.stopped());
}

TEST(StoppedTarget, SendsAllInARowWhenItWaitsForNothing) {
    StoppedConfig config = small_config();
    config.waits_for_ack = false;
    config.gap = 7ms;
    Bench bench(config);
    bench.driver.advance(115ms);
    bench.driver.send(acknowledge);  // in the midst of the second
    bench.driver.advance(100ms);
    const auto said = bench.driver.take();
    ASSERT_EQ(said.size(), 147U + 27);
    EXPECT_EQ(said[147].start, start + 100ms + sim::wire_time(147, 115200) + 7ms);
    EXPECT_EQ(said[147].value, 0xA5);
    EXPECT_TRUE(bench.exchange(acknowledge).empty());
    EXPECT_TRUE(bench.target.faults().empty());
    EXPECT_TRUE(bench.exchange(acknowledge).empty());  // one too many
    EXPECT_EQ(bench.target.faults().size(), 1U);
    bench.driver.send(go_on);
    EXPECT_FALSE(bench.target.stopped());
}

TEST(StoppedTarget, SaysTextDirectlyBeforeAndBehindItsDumps) {
    StoppedConfig config = small_config();
    config.text_before = {'x', 'y'};
    config.text_behind = {'z'};
    Bench bench(config);
    const Bytes first = bench.listen();
    ASSERT_EQ(first.size(), 2 + 147U);
    EXPECT_EQ(Bytes(first.begin(), first.begin() + 3), (Bytes{'x', 'y', 0xA5}));
    bench.driver.send(acknowledge);
    bench.driver.advance(500us + sim::wire_time(27, 115200));
    bench.driver.send(acknowledge);  // while the text is still on the wire
    const Bytes second = bench.listen();
    ASSERT_EQ(second.size(), 27U + 1);
    EXPECT_EQ(second.back(), 'z');
    EXPECT_FALSE(bench.target.awaits_ack());
    EXPECT_TRUE(bench.target.faults().empty());
    bench.target.say(bench.driver.now, Bytes{'!'});
    EXPECT_EQ(bench.listen(), Bytes{'!'});
}

TEST(StoppedTarget, DoesntSayItsTextOnceMoreWhenAFrameIsWantedAgain) {
    StoppedConfig config = small_config();
    config.dumps = {sim::xram_dump(8)};
    config.text_before = {'x'};
    config.text_behind = {'z'};
    Bench bench(config);
    const Bytes first = bench.listen();
    EXPECT_EQ(bench.exchange(again), Bytes(first.begin() + 1, first.end() - 1));
}

// ---- what it objects to ----------------------------------------------------------------

TEST(StoppedTarget, TakesACommandByteByByteAndKeepsALogOfCommandsAndFrames) {
    Bench bench(small_config());
    bench.listen();
    for (const std::uint8_t byte : again) {
        bench.driver.send({byte});
        bench.driver.advance(700ms);
    }
    bench.driver.advance(1s);
    bench.exchange(acknowledge);
    EXPECT_TRUE(bench.target.faults().empty());
    ASSERT_EQ(bench.target.commands().size(), 2U);
    EXPECT_EQ(bench.target.commands()[0].code, DebugCode::again);
    EXPECT_EQ(bench.target.commands()[1].code, DebugCode::acknowledge);
    EXPECT_EQ(bench.target.dumps()[1].start,
              bench.target.commands()[0].at + bench.target.config().turnaround);
    EXPECT_EQ(bench.target.dumps()[1].bytes.size(), 147U);
}

TEST(StoppedTarget, ObjectsToWhatIsNoCommandAndTakesTheNextOneAllTheSame) {
    for (const Bytes& wrong :
         {Bytes{0x00}, Bytes{0xFE, 0x50}, Bytes{0xFE, 0xAA, 0x51}, Bytes{0xFE, 0xAA, 0x50, 0xFB},
          Bytes{0xFE}, Bytes{0xFE, 0xAA}, Bytes{0xFE, 0xAA, 0x50}}) {
        Bench bench(small_config());
        bench.listen();
        bench.driver.send(wrong);
        bench.driver.send(again);
        EXPECT_EQ(bench.target.faults().size(), 1U) << wrong.size();
        EXPECT_EQ(bench.listen().size(), 147U) << wrong.size();
    }
}

TEST(StoppedTarget, ObjectsToCommandsThatDontFitAndToBytesWhileItSends) {
    Bench bench(small_config());
    bench.driver.send(acknowledge);
    EXPECT_EQ(bench.target.take_faults(),
              std::vector<std::string>{"command FE AA 50 FA while the program ran"});
    EXPECT_EQ(bench.target.heard_by_program(), acknowledge);
    bench.driver.advance_to(start + 101ms);
    bench.driver.send({0xFE});
    EXPECT_EQ(bench.target.take_faults(),
              std::vector<std::string>{"byte FE while the agent was sending"});
    bench.listen();
    bench.exchange(acknowledge);
    bench.exchange(acknowledge);
    EXPECT_TRUE(bench.target.faults().empty());
    bench.exchange(acknowledge);
    bench.exchange(again);
    EXPECT_EQ(bench.target.take_faults(),
              (std::vector<std::string>{"acknowledgement of nothing",
                                        "a frame is wanted again that was acknowledged"}));
}

TEST(StoppedTarget, DoesntUnderstandAnotherRate) {
    Bench bench(small_config());
    bench.listen();
    bench.driver.baud = 9600;
    bench.driver.send({0xFE});
    EXPECT_EQ(bench.target.take_faults(),
              std::vector<std::string>{"byte at 9600 baud, the target being at 115200"});
    EXPECT_TRUE(bench.target.commands().empty());
}

TEST(StoppedTarget, LeavesToTheProgramWhatComesWhileItRuns) {
    Bench bench(small_config());
    bench.driver.send({'h', 0xFE, 'i'});
    EXPECT_TRUE(bench.target.faults().empty());
    EXPECT_EQ(bench.target.heard_by_program(), (Bytes{'h', 0xFE, 'i'}));
}

TEST(StoppedTarget, CountsAFrameThatWasSentAgainAsOne) {
    Bench bench(small_config());
    bench.listen();
    bench.exchange(again);
    bench.exchange(acknowledge);
    bench.exchange(again);
    bench.exchange(acknowledge);
    EXPECT_TRUE(bench.target.faults().empty());
    bench.exchange(acknowledge);
    EXPECT_EQ(bench.target.faults().size(), 1U);
}

TEST(StoppedTarget, ForgetsAtAStopWhatWasBefore) {
    StoppedConfig config = small_config();
    config.dumps = {sim::registers_dump()};
    Bench bench(config);
    bench.listen();
    bench.driver.send(go_on);   // the frame is not acknowledged
    bench.driver.send({0xFE});  // for the program
    bench.listen();
    bench.driver.send({0xAA, 0x50, 0xFA});
    EXPECT_TRUE(bench.target.commands().size() == 1 && bench.target.awaits_ack());
    EXPECT_FALSE(bench.target.take_faults().empty());
    bench.driver.send(acknowledge);
    EXPECT_TRUE(bench.target.faults().empty());
    bench.driver.send(acknowledge);
    EXPECT_EQ(bench.target.faults().size(), 1U);
}

TEST(StoppedTarget, ObjectsToOtherCommandsThanAcknowledgementsInTheMidstOfARow) {
    StoppedConfig config = small_config();
    config.waits_for_ack = false;
    Bench bench(config);
    bench.driver.advance(101ms);
    bench.driver.send(go_on);
    EXPECT_TRUE(bench.target.stopped());
    bench.driver.send(again);
    EXPECT_EQ(bench.target.take_faults(),
              (std::vector<std::string>{"command go_on while the agent was sending",
                                        "command again while the agent was sending"}));
    EXPECT_EQ(bench.target.dumps().size(), 2U);
}

// ---- faults ------------------------------------------------------------------------------

// The first frame, and what it is on the second try.
std::pair<Bytes, Bytes> told_with(const char* fault) {
    StoppedConfig config = small_config();
    config.faults = {sim::parse_dump_fault(fault).value()};
    Bench bench(config);
    const Bytes first = bench.listen();
    return {first, bench.exchange(again)};
}

TEST(DumpFaults, SpoilTheFrameAndNotTheNextTry) {
    const Bytes good = Bench(small_config()).listen();
    Bytes expected = good;
    ++expected.back();
    EXPECT_EQ(told_with("wrong_sum"), std::pair(expected, good));

    EXPECT_EQ(told_with("cut_off=5"), std::pair(Bytes(good.begin(), good.begin() + 5), good));
    EXPECT_EQ(told_with("cut_off=0"), std::pair(Bytes{}, good));
    EXPECT_EQ(told_with("cut_off=999"), std::pair(good, good));

    expected = good;
    expected.insert(expected.begin(), {0x01, 0xA5});
    EXPECT_EQ(told_with("noise=01A5"), std::pair(expected, good));

    const Bytes long_one = told_with("other_length=1100").first;
    EXPECT_EQ(long_one.size(), good.size());
    EXPECT_EQ(long_one[3] * 256 + long_one[4], 1100);
    EXPECT_TRUE(sum_is_right(frame_of(long_one)));

    const Bytes typed = told_with("other_type=200").first;
    EXPECT_EQ(typed[5], 200);
    EXPECT_TRUE(sum_is_right(frame_of(typed)));

    const Bytes larger = told_with("other_size=2000").first;
    EXPECT_EQ(larger.size(), 2019U);
    EXPECT_EQ(larger[3] * 256 + larger[4], 2017);
    EXPECT_TRUE(sum_is_right(frame_of(larger)));
    EXPECT_EQ(told_with("other_size=0").first.size(), 19U);
}

TEST(DumpFaults, SplitTheMark) {
    StoppedConfig config = small_config();
    config.text_before = {'t'};
    config.faults = {sim::parse_dump_fault("split_mark=30").value(),
                     sim::parse_dump_fault("noise=41").value()};
    Bench bench(config);
    bench.driver.advance(200ms);
    const auto said = bench.driver.take();
    ASSERT_EQ(said.size(), 2 + 147U);
    EXPECT_EQ(said[2].value, 0xA5);
    EXPECT_EQ(said[3].value, 0x5A);
    EXPECT_EQ(said[2].start, start + 100ms + sim::wire_time(2, 115200));
    EXPECT_EQ(said[3].start, start + 130ms + sim::wire_time(3, 115200));
    EXPECT_EQ(said[4].start, said[3].start + sim::wire_time(1, 115200));
}

TEST(DumpFaults, StrikeTheFramesThatTheyName) {
    StoppedConfig config = small_config();
    config.faults = {sim::parse_dump_fault("wrong_sum:2*3").value()};
    Bench bench(config);
    std::string good;
    for (int i = 0; i < 6; ++i) {
        const Bytes bytes = i == 0 ? bench.listen() : bench.exchange(again);
        good += sum_is_right(frame_of(bytes)) ? '+' : '-';
    }
    EXPECT_EQ(good, "+---++");
    bench.target.add_fault(sim::parse_dump_fault("wrong_sum:2*0").value());
    good.clear();
    for (int i = 0; i < 4; ++i) good += sum_is_right(frame_of(bench.exchange(again))) ? '+' : '-';
    EXPECT_EQ(good, "+---");
    bench.target.forget_faults();
    EXPECT_TRUE(sum_is_right(frame_of(bench.exchange(again))));
}

TEST(DumpFaultText, IsReadWholeOrNotAtAll) {
    const auto fault = sim::parse_dump_fault("noise:3*4=A55A");
    ASSERT_TRUE(fault);
    EXPECT_EQ(fault->kind, sim::DumpFaultKind::noise);
    EXPECT_EQ(fault->nth, 3);
    EXPECT_EQ(fault->times, 4);
    EXPECT_EQ(fault->bytes, (Bytes{0xA5, 0x5A}));
    using Kind = sim::DumpFaultKind;
    const std::pair<const char*, Kind> kinds[] = {{"wrong_sum", Kind::wrong_sum},
                                                  {"cut_off", Kind::cut_off},
                                                  {"split_mark", Kind::split_mark},
                                                  {"other_length", Kind::other_length},
                                                  {"other_type", Kind::other_type},
                                                  {"other_size", Kind::other_size},
                                                  {"noise", Kind::noise}};
    for (const auto& [name, kind] : kinds) {
        const auto plain = sim::parse_dump_fault(name);
        ASSERT_TRUE(plain) << name;
        EXPECT_EQ(plain->kind, kind) << name;
        EXPECT_EQ(plain->nth, 1);
        EXPECT_EQ(plain->times, 1);
    }
    for (const char* text :
         {"", "x", "wrong_sum:0", "wrong_sum:", "wrong_sum*-1", "cut_off=", "cut_off=-1",
          "other_length=65536", "other_type=256", "noise=A", "other_size=65519"})
        EXPECT_FALSE(sim::parse_dump_fault(text)) << text;
}

}  // namespace
}  // namespace vkm::test
