// A simulated target that talks as a user's program does.
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>

#include "simulators/talking_target.h"
#include "target_driver.h"

namespace vkm::test {
namespace {

using sim::Instant;
using sim::TalkingConfig;
using sim::TalkingTarget;

constexpr Instant start{1s};

TalkingConfig config_with(std::vector<sim::Saying> sayings, double baud = 115200) {
    TalkingConfig config;
    config.baud = baud;
    config.started_at = start;
    config.sayings = std::move(sayings);
    return config;
}

std::string text_of(const Bytes& bytes) {
    return {bytes.begin(), bytes.end()};
}

TEST(TalkingTarget, GreetsOnceAndRepeatsWhatItSaysEveryNowAndThen) {
    TalkingTarget target(config_with({{{'H', 'i'}, 300ms, 0ms}, {{'.'}, 50ms, 200ms}}));
    TargetDriver driver(target.target());
    driver.advance_to(start + 299ms);
    EXPECT_EQ(text_of(driver.take_bytes()), "..");
    driver.advance_to(start + 1s);
    const auto said = driver.take();
    ASSERT_EQ(said.size(), 5U);
    EXPECT_EQ(said[0].value, 'H');
    EXPECT_EQ(said[0].start, start + 300ms);
    EXPECT_EQ(said[0].baud, 115200);
    EXPECT_EQ(said[1].value, 'i');
    EXPECT_EQ(said[2].start, start + 450ms);
    EXPECT_EQ(said[4].start, start + 850ms);
    EXPECT_EQ(target.sent(), 7U);
}

TEST(TalkingTarget, SaysEachThingToItsEndBeforeItSaysItAgain) {
    // 8.333 ms a byte, three bytes every 10 ms.
    TalkingTarget target(config_with({{{1, 2, 3}, 0ms, 10ms}}, 1200));
    TargetDriver driver(target.target(), 1200);
    driver.advance_to(start + 1s);
    const auto said = driver.take();
    EXPECT_NEAR(static_cast<double>(said.size()), 120, 2);
    for (std::size_t i = 0; i < said.size(); ++i) EXPECT_EQ(said[i].value, i % 3 + 1);
    // No more of it has been heaped up: something else has its turn soon.
    target.say(driver.now, Bytes{'!'});
    driver.advance(60ms);
    const Bytes later = driver.take_bytes();
    EXPECT_NE(std::find(later.begin(), later.end(), '!'), later.end());
}

TEST(TalkingTarget, SendsABurstWithoutAGapAtTheSpeedOfTheWire) {
    for (const double baud : {1200.0, 115200.0, 3e6}) {
        TalkingTarget target(config_with({{burst_bytes(sim::BurstKind::count, 1000)}}, baud));
        TargetDriver driver(target.target(), baud);
        driver.advance_to(start + 10s);
        const auto said = driver.take();
        ASSERT_EQ(said.size(), 1000U) << baud;
        for (std::size_t i = 0; i < said.size(); ++i) {
            EXPECT_EQ(said[i].value, static_cast<std::uint8_t>(i));
            EXPECT_EQ(said[i].start, start + sim::wire_time(i, baud));
        }
    }
}

TEST(TalkingTarget, KeepsTheSpeedOfTheWireThroughALongBurst) {
    TalkingTarget target(config_with({}, 3e6));
    TargetDriver driver(target.target(), 3e6);
    const Bytes bytes = burst_bytes(sim::BurstKind::count, 300'000);
    target.say(driver.now, bytes);
    target.say(driver.now, bytes);
    driver.advance_to(start + 2s - 10us);
    EXPECT_EQ(target.sent(), 600'000U);
    EXPECT_NEAR(static_cast<double>((driver.take().back().start - start).count()), 2e6, 15);
}

TEST(TalkingTarget, MakesBurstsOfNumberedLinesInWhichEachLossIsSeen) {
    const Bytes bytes = burst_bytes(sim::BurstKind::text, 6400 + 10);
    ASSERT_EQ(bytes.size(), 6410U);
    std::set<std::string> lines;
    for (std::size_t i = 0; i < 6400; i += 64) {
        const std::string line(bytes.begin() + static_cast<std::ptrdiff_t>(i),
                               bytes.begin() + static_cast<std::ptrdiff_t>(i) + 64);
        EXPECT_EQ(line.substr(62), "\r\n");
        EXPECT_EQ(std::stoul(line), i / 64);
        EXPECT_TRUE(std::all_of(line.begin(), line.end() - 2,
                                [](char each) { return each >= ' ' && each <= '~'; }));
        lines.insert(line);
    }
    EXPECT_EQ(lines.size(), 100U);
    EXPECT_EQ(text_of(bytes).substr(6400), "00000100 %");
    EXPECT_EQ(burst_bytes(sim::BurstKind::text, 6410), bytes);
}

TEST(TalkingTarget, EchoesEachByteWhenItHasHeardIt) {
    TalkingConfig config = config_with({});
    config.echo = true;
    TalkingTarget target(config);
    TargetDriver driver(target.target());
    driver.send({'a', 'b'});
    driver.advance(10ms);
    const auto said = driver.take();
    ASSERT_EQ(said.size(), 2U);
    EXPECT_EQ(said[0].value, 'a');
    EXPECT_EQ(said[0].start, start + sim::wire_time(1, 115200));
    EXPECT_EQ(said[1].value, 'b');

    TalkingTarget silent(config_with({}));
    TargetDriver other(silent.target());
    other.send({'a', 'b'});
    other.advance(10ms);
    EXPECT_TRUE(other.take().empty());
}

TEST(TalkingTarget, HearsEachByteWithItsTimeAndRate) {
    TalkingTarget target(config_with({}));
    TargetDriver driver(target.target());
    driver.send({0x41, 0x42});
    ASSERT_EQ(target.heard().size(), 2U);
    EXPECT_EQ(target.heard()[1].at, start + sim::wire_time(2, 115200));
    EXPECT_EQ(target.heard()[1].value, 0x42);
    EXPECT_EQ(target.heard()[1].baud, 115200);
    EXPECT_EQ(target.take_heard().size(), 2U);
    EXPECT_TRUE(target.heard().empty());
}

TEST(TalkingTarget, HearsAnotherByteOrNoneAtAnotherRate) {
    TalkingConfig config = config_with({});
    config.echo = true;
    TalkingTarget target(config);
    TargetDriver driver(target.target(), 57600);
    driver.send({0x0F, 0x33});
    ASSERT_EQ(target.heard().size(), 2U);
    EXPECT_EQ(target.heard()[0].baud, 57600);
    Bytes understood;
    for (const Bytes& sent : {Bytes{0x0F}, Bytes{0x33}})
        if (const auto heard = sim::as_heard(sent[0], 57600, 115200)) understood.push_back(*heard);
    EXPECT_LT(understood.size(), 2U);
    EXPECT_EQ(target.heard_bytes(), understood);
    driver.advance(10ms);
    EXPECT_EQ(driver.take_bytes(), understood);
}

TEST(TalkingTarget, SaysWhatItIsToldBehindWhatItIsSaying) {
    TalkingTarget target(config_with({{{'a', 'b', 'c'}}}));
    TargetDriver driver(target.target());
    driver.advance(100us);
    target.say(driver.now, Bytes{'d'});
    driver.advance(50ms);
    target.say(driver.now, Bytes{'e'});
    driver.advance(50ms);
    const auto said = driver.take();
    ASSERT_EQ(said.size(), 5U);
    EXPECT_EQ(said[3].start, start + sim::wire_time(3, 115200));
    EXPECT_EQ(said[4].start, start + 50100us);
    EXPECT_EQ(target.target().due(), sim::never);
}

}  // namespace
}  // namespace vkm::test
