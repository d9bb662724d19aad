// The line of the tests is itself tested: a fake that is kinder than a wire
// would let everything pass.
#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include <utility>

#include "support/virtual_platform.h"

namespace vkm::test {
namespace {

using std::chrono::microseconds;
using std::chrono::milliseconds;

struct HeardByte {
    Instant at;
    std::uint8_t value;
    double baud;
};

// A target that writes down what it hears and sends what it is given.
struct Recorder {
    std::vector<HeardByte> heard;
    std::vector<sim::WireByte> to_send;
    Instant acts_at = never;
    std::function<void(Instant)> action;

    sim::Target target() {
        return {.hear =
                    [this](Instant at, std::uint8_t value, double baud) {
                        heard.push_back({at, value, baud});
                    },
                .due = [this] { return acts_at; },
                .act =
                    [this](Instant now) {
                        acts_at = never;
                        if (action) action(now);
                    },
                .take_output = [this] { return std::exchange(to_send, {}); }};
    }

    // Bytes back to back from `start` on.
    void send(Instant start, double baud, std::initializer_list<int> bytes) {
        std::size_t n = 0;
        for (const int byte : bytes)
            to_send.push_back(
                {start + sim::wire_time(n++, baud), static_cast<std::uint8_t>(byte), baud});
    }

    std::vector<std::uint8_t> values() const {
        std::vector<std::uint8_t> bytes;
        for (const HeardByte& byte : heard) bytes.push_back(byte.value);
        return bytes;
    }
};

using Bytes = std::vector<std::uint8_t>;

class VirtualLineTest : public testing::Test {
  protected:
    VirtualLineTest() { world.line.connect(recorder.target()); }

    void open(const char* settings) {
        ASSERT_TRUE(world.port.set_settings(settings));
        ASSERT_EQ(world.port.open(), 0);
    }
    void write(const Bytes& bytes) { world.port.write(bytes); }
    void run_for(Microseconds time) {
        const Instant end = world.loop.now() + time;
        while (world.loop.now() < end) world.loop.turn(end);
    }

    VirtualPlatform world;
    Recorder recorder;
};

TEST_F(VirtualLineTest, AByteReachesTheTargetWhenItsStopBitHasEnded) {
    open("1200,n,8,1");
    const Instant start = world.loop.now();
    write({0x7F});
    run_for(microseconds(8332));
    EXPECT_TRUE(recorder.heard.empty());
    run_for(microseconds(2));
    ASSERT_EQ(recorder.heard.size(), 1u);
    EXPECT_EQ(recorder.heard[0].at - start, microseconds(8333));
    EXPECT_EQ(recorder.heard[0].value, 0x7F);
    EXPECT_EQ(recorder.heard[0].baud, 1200);
}

TEST_F(VirtualLineTest, BytesBackToBackTakeExactlyTenBitTimesEachOverALongFrame) {
    struct Row {
        int baud;
        std::int64_t micros;  // of 1000 bytes
    };
    for (const Row row : {Row{1200, 8333333}, {11520, 868055}, {12800, 781250}, {115200, 86805}}) {
        SCOPED_TRACE(row.baud);
        recorder.heard.clear();
        open((std::to_string(row.baud) + ",n,8,1").c_str());
        const Instant start = world.loop.now();
        write(Bytes(400, 0x55));
        write(Bytes(600, 0xAA));
        run_for(std::chrono::seconds(9));
        ASSERT_EQ(recorder.heard.size(), 1000u);
        EXPECT_EQ((recorder.heard.back().at - start).count(), row.micros);
        world.port.close();
    }
}

TEST_F(VirtualLineTest, TheOutputCountsWhatHasNotLeftTheWire) {
    open("1200,n,8,1");
    write({1, 2, 3});
    EXPECT_EQ(world.port.output_count(), 3u);
    run_for(microseconds(8334));
    EXPECT_EQ(world.port.output_count(), 2u);
    run_for(microseconds(20000));
    EXPECT_EQ(world.port.output_count(), 0u);
}

TEST_F(VirtualLineTest, AnAnswerIsInTheInputWhenItsStopBitsHaveEndedAndWakesTheLoop) {
    open("115200,n,8,1");
    const Instant start = world.loop.now();
    recorder.send(start + milliseconds(5), 115200, {0x46, 0xB9, 0x68});
    world.loop.turn(never);
    EXPECT_EQ(world.loop.now() - start, milliseconds(5) + microseconds(86));
    EXPECT_EQ(world.port.input_count(), 1u);
    run_for(milliseconds(1));
    EXPECT_EQ(world.port.read(), (Bytes{0x46, 0xB9, 0x68}));
    EXPECT_EQ(world.port.input_count(), 0u);
}

TEST_F(VirtualLineTest, AnAdapterHandsOnWhatItHasGathered) {
    world.line.latency = milliseconds(16);
    open("115200,n,8,1");
    const Instant start = world.loop.now();
    recorder.send(start + milliseconds(1), 115200, {1, 2, 3});
    recorder.send(start + milliseconds(20), 115200, {4});
    world.loop.turn(never);
    EXPECT_EQ(world.port.read(), (Bytes{1, 2, 3}));
    EXPECT_EQ(world.loop.now().time_since_epoch() % milliseconds(16), Microseconds(0));
    EXPECT_GT(world.loop.now() - start, milliseconds(1));
    world.loop.turn(never);
    EXPECT_EQ(world.port.read(), Bytes{4});
    EXPECT_GT(world.loop.now() - start, milliseconds(20));
}

TEST_F(VirtualLineTest, ReadLengthOneTakesASingleByte) {
    open("115200,n,8,1");
    recorder.send(world.loop.now(), 115200, {1, 2, 3});
    run_for(milliseconds(1));
    world.port.set_read_length(1);
    EXPECT_EQ(world.port.read(), Bytes{1});
    world.port.set_read_length(0);
    EXPECT_EQ(world.port.read(), (Bytes{2, 3}));
    EXPECT_EQ(world.port.read(), Bytes{});
}

TEST_F(VirtualLineTest, AReceiverAtAnotherRateHearsSomethingElse) {
    open("115200,n,8,1");
    recorder.send(world.loop.now(), 57600, {0x46, 0xB9, 0x68, 0x00});
    run_for(milliseconds(2));
    EXPECT_NE(world.port.read(), (Bytes{0x46, 0xB9, 0x68, 0x00}));
}

TEST_F(VirtualLineTest, ARateThatIsOffByThreePercentIsHeardAndOneOffBySevenIsNot) {
    open("115200,n,8,1");
    for (const double off : {0.97, 1.03}) {
        recorder.send(world.loop.now(), 115200 * off, {0x46, 0xB9, 0x68});
        run_for(milliseconds(1));
        EXPECT_EQ(world.port.read(), (Bytes{0x46, 0xB9, 0x68})) << off;
    }
    for (const double off : {0.93, 1.07}) {
        recorder.send(world.loop.now(), 115200 * off, {0x46, 0xB9, 0x68});
        run_for(milliseconds(1));
        EXPECT_NE(world.port.read(), (Bytes{0x46, 0xB9, 0x68})) << off;
    }
}

TEST_F(VirtualLineTest, WhatComesWhileThePortIsClosedIsLost) {
    recorder.send(world.loop.now(), 115200, {1});
    run_for(milliseconds(1));
    open("115200,n,8,1");
    EXPECT_EQ(world.port.input_count(), 0u);
    run_for(milliseconds(1));
    EXPECT_EQ(world.port.input_count(), 0u);
}

TEST_F(VirtualLineTest, AByteWhoseStartBitCameBeforeTheOpeningIsLost) {
    recorder.send(world.loop.now(), 1200, {1, 2});
    run_for(milliseconds(4));
    open("1200,n,8,1");
    run_for(milliseconds(20));
    EXPECT_EQ(world.port.read(), Bytes{2});
}

TEST_F(VirtualLineTest, ClosingWaitsUntilTheFrameHasLeftTheWire) {
    open("1200,n,8,1");
    const Instant start = world.loop.now();
    write(Bytes(14, 0x46));
    run_for(milliseconds(3));
    world.port.close();
    EXPECT_EQ(world.loop.now() - start, microseconds(116666));
    EXPECT_EQ(recorder.heard.size(), 14u);
    EXPECT_TRUE(world.line.violations.empty());
}

TEST_F(VirtualLineTest, AChangeOfRateWaitsUntilTheFrameHasLeftTheWire) {
    open("1200,n,8,1");
    write({1, 2});
    EXPECT_TRUE(world.port.set_settings("115200,n,8,1"));
    write({3});
    run_for(milliseconds(1));
    EXPECT_EQ(recorder.values(), (Bytes{1, 2, 3}));
    EXPECT_EQ(recorder.heard[1].baud, 1200);
    EXPECT_EQ(recorder.heard[2].baud, 115200);
    EXPECT_TRUE(world.line.violations.empty());
}

TEST_F(VirtualLineTest, TheSameSettingsAgainWaitForNothing) {
    open("1200,n,8,1");
    const Instant start = world.loop.now();
    write({1, 2});
    EXPECT_TRUE(world.port.set_settings("1200,n,8,1"));
    EXPECT_EQ(world.loop.now(), start);
}

TEST_F(VirtualLineTest, NothingOfTheOperatorsHappensWhileThePortWaits) {
    open("1200,n,8,1");
    bool clicked = false;
    world.loop.after(milliseconds(1), [&] { clicked = true; });
    write({1, 2});
    world.port.close();
    EXPECT_FALSE(clicked);
    world.loop.turn(world.loop.now());
    EXPECT_TRUE(clicked);
}

TEST_F(VirtualLineTest, ARateThatChangesUnderAByteIsAViolation) {
    world.port.waits_for_output = false;
    open("1200,n,8,1");
    write({1, 2});
    run_for(milliseconds(3));
    world.port.set_settings("115200,n,8,1");
    EXPECT_EQ(world.take_violations().size(), 1u);
    run_for(milliseconds(30));
    EXPECT_TRUE(recorder.heard.empty());
}

TEST_F(VirtualLineTest, APortThatClosesUnderAByteIsAViolation) {
    world.port.waits_for_output = false;
    open("1200,n,8,1");
    write({1});
    world.port.close();
    EXPECT_EQ(world.take_violations().size(), 1u);
}

TEST_F(VirtualLineTest, AViolationFailsTheTest) {
    world.line.violations.push_back("a byte was on the wire");
    std::vector<std::string> failures;
    {
        testing::TestPartResultArray results;
        testing::ScopedFakeTestPartResultReporter reporter(
            testing::ScopedFakeTestPartResultReporter::INTERCEPT_ONLY_CURRENT_THREAD, &results);
        world.check();
        for (int i = 0; i < results.size(); ++i)
            failures.push_back(results.GetTestPartResult(i).message());
    }
    ASSERT_EQ(failures.size(), 1u);
    EXPECT_NE(failures[0].find("a byte was on the wire"), std::string::npos);
}

TEST_F(VirtualLineTest, ClearingTheOutputDropsAllButTheByteThatIsOnTheWire) {
    open("1200,n,8,1");
    const Instant start = world.loop.now();
    write({1, 2, 3});
    run_for(milliseconds(10));  // in the middle of the second byte
    world.port.clear_output();
    EXPECT_EQ(world.port.output_count(), 0u);
    world.port.close();  // waits for that byte alone
    EXPECT_EQ(world.loop.now() - start, microseconds(16666));
    EXPECT_EQ(recorder.values(), (Bytes{1, 2}));
}

TEST_F(VirtualLineTest, ClearingTheOutputDropsAFrameWrittenAtTheSameInstantWhole) {
    open("1200,n,8,1");
    write({1, 2, 3});
    world.port.clear_output();
    run_for(milliseconds(50));
    EXPECT_TRUE(recorder.heard.empty());
}

TEST_F(VirtualLineTest, WhatIsWrittenBehindADroppedByteFollowsIt) {
    open("1200,n,8,1");
    const Instant start = world.loop.now();
    write({1, 2, 3});
    run_for(milliseconds(4));
    world.port.clear_output();
    write({9});
    run_for(milliseconds(50));
    EXPECT_EQ(recorder.values(), (Bytes{1, 9}));
    EXPECT_EQ(recorder.heard[1].at - start, microseconds(16666));
}

TEST_F(VirtualLineTest, ATargetThatTalksOverItselfIsAViolation) {
    open("1200,n,8,1");
    recorder.to_send = {{world.loop.now(), 1, 1200},
                        {world.loop.now() + microseconds(100), 2, 1200}};
    run_for(milliseconds(1));
    EXPECT_EQ(world.take_violations().size(), 1u);
}

TEST_F(VirtualLineTest, TheTargetActsAtTheTimeItNamed) {
    open("115200,n,8,1");
    const Instant start = world.loop.now();
    Instant acted{};
    recorder.acts_at = start + milliseconds(7);
    recorder.action = [&](Instant now) { acted = now; };
    run_for(milliseconds(20));
    EXPECT_EQ(acted - start, milliseconds(7));
}

TEST_F(VirtualLineTest, ATargetThatActsWithoutEndIsFound) {
    open("115200,n,8,1");
    recorder.acts_at = world.loop.now();
    recorder.action = [&](Instant now) { recorder.acts_at = now; };
    EXPECT_THROW(world.loop.turn(world.loop.now()), std::logic_error);
}

TEST_F(VirtualLineTest, ADeviceThatIsPulledReadsAsClosedAndTakesTheBytesOnTheWireAlong) {
    open("1200,n,8,1");
    write({1, 2});
    run_for(milliseconds(1));
    world.port.unplug();
    EXPECT_FALSE(world.port.is_open());
    EXPECT_EQ(world.port.input_count(), 0u);
    EXPECT_EQ(world.port.output_count(), 0u);
    world.port.write(Bytes{3});
    world.port.close();
    run_for(milliseconds(50));
    EXPECT_TRUE(recorder.heard.empty());
    EXPECT_EQ(world.port.open(), error_missing);
    world.port.plug(1);
    EXPECT_EQ(world.port.open(), 0);
}

TEST_F(VirtualLineTest, OpeningFailsAsItIsToldTo) {
    world.port.present = {1, 2, 3};
    world.port.open_error = {{2, error_busy}, {3, error_denied}};
    struct Row {
        int number, error;
    };
    for (const Row row : {Row{2, error_busy}, {3, error_denied}, {4, error_missing}}) {
        world.port.set_port_number(row.number);
        EXPECT_EQ(world.port.open(), row.error);
        EXPECT_FALSE(world.port.is_open());
    }
    world.port.set_port_number(1);
    world.port.nth_open_error = {{world.port.opens + 2, error_busy}};
    EXPECT_EQ(world.port.open(), 0);
    world.port.close();
    EXPECT_EQ(world.port.open(), error_busy);
    EXPECT_EQ(world.port.open(), 0);
}

TEST_F(VirtualLineTest, EveryWriteIsKeptWithWhatWasUnsentBeforeIt) {
    open("1200,n,8,1");
    write({0x7F, 0x7F});
    run_for(milliseconds(10));
    write({0x7F, 0x7F});
    ASSERT_EQ(world.port.written.size(), 2u);
    EXPECT_EQ(world.port.written[0].unsent, 0u);
    EXPECT_EQ(world.port.written[1].unsent, 1u);
    EXPECT_EQ(world.port.written[1].settings, "1200,n,8,1");
    run_for(milliseconds(50));
}

}  // namespace
}  // namespace vkm::test
