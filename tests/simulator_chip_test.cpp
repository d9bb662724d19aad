// The boot firmware's side of the link, driven with frames written by hand.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <string>

#include "catalogue/model_table.h"
#include "simulator_driver.h"

namespace vkm::test {
namespace {

using sim::ChipConfig;
using sim::ChipState;

ChipConfig chip_of(const std::string& model, double clock = 11059200) {
    ChipConfig config;
    config.model = model;
    config.clock_hz = clock;
    return config;
}

Bytes bytes_of(std::uint32_t count, int seed = 1) {
    Bytes bytes(count);
    for (std::uint32_t i = 0; i < count; ++i)
        bytes[i] = static_cast<std::uint8_t>(static_cast<int>(i) * 7 + seed);
    return bytes;
}

// In the answer as the host stores it, from the 68 on.
int field(const Heard& heard, std::size_t index) {
    return index + 2 < heard.bytes.size() ? heard.bytes[index + 2] : -1;
}

double clock_told(const Heard& status) {
    int sum = 0;
    for (std::size_t i = 4; i < 20; i += 2) sum += field(status, i) * 256 + field(status, i + 1);
    return (std::nearbyint(sum / 8.0) + 6) * 2061;
}

void expect_sound(const Heard& heard) {
    ASSERT_GE(heard.bytes.size(), 8U);
    EXPECT_EQ(heard.bytes[0], 0x46);
    EXPECT_EQ(heard.bytes[1], 0xB9);
    EXPECT_EQ(heard.bytes[2], 0x68);
    EXPECT_EQ(heard.bytes[3] * 256 + heard.bytes[4], static_cast<int>(heard.bytes.size()) - 2);
    EXPECT_EQ(heard.bytes.back(), 0x16);
    const auto summed = std::span(heard.bytes).subspan(2, heard.bytes.size() - 4);
    EXPECT_EQ(heard.bytes[heard.bytes.size() - 2], sum(summed));
}

// Connected at 11.0592 MHz and moved to 115200 baud; letter C's reload pair.
void bring_to_full_rate(ChipDriver& driver) {
    driver.connect();
    driver.exchange(short_frame({0x8F, 0xFF, 0xFD, 0x00, 0x06, 40, 129}));
    driver.exchange(short_frame({0x8E, 0xFF, 0xFD, 0x00, 0x06, 23}));
    driver.baud = 115200;
}

// ---- power and sync -----------------------------------------------------------

TEST(SimulatedChip, AnswersEightSyncBytesWithItsStatusFrameAtTheirRate) {
    ChipDriver driver(chip_of("VKM47H58RK+"));
    driver.send({0x7F, 0x7F, 0x7F, 0x7F, 0x7F, 0x7F, 0x7F}, 1200);
    EXPECT_TRUE(driver.listen(50ms).bytes.empty());
    driver.send({0x7F}, 1200);
    driver.send({0x7F, 0x7F, 0x7F, 0x7F}, 1200);  // the host pulses on meanwhile
    const Heard heard = driver.listen();
    expect_sound(heard);
    EXPECT_NEAR(heard.baud, 1200, 1);
    EXPECT_EQ(driver.chip.state(), ChipState::base);
    EXPECT_EQ(driver.chip.counters().replies, 1);
    EXPECT_TRUE(driver.chip.faults().empty());
}

TEST(SimulatedChip, HearsNoPulseBeforeItHasPower) {
    ChipConfig config = chip_of("VKM47H58RK+");
    config.powered_at = sim::Instant{3s};
    ChipDriver driver(config);
    driver.send(Bytes(40, 0x7F), 1200);
    EXPECT_EQ(driver.chip.state(), ChipState::off);
    EXPECT_EQ(driver.chip.counters().pulses, 0);
    driver.advance_to(sim::Instant{3s});
    EXPECT_EQ(driver.chip.state(), ChipState::listening);
    expect_sound(driver.connect());
}

TEST(SimulatedChip, WantsItsPulsesWellFormedAndAt1200Baud) {
    ChipDriver driver(chip_of("VKM47H58RK+"));
    driver.send(Bytes(20, 0x7F), 9600);
    driver.send({0x7F, 0x7F, 0x7F, 0x7F, 0x7F, 0x7F, 0x7F, 0x3F, 0x7F}, 1200);
    driver.send(Bytes(20, 0xFF), 1200);
    driver.now += 1s;
    driver.send(Bytes(4, 0x7F), 1200);
    driver.now += 1s;  // too long a pause for one measurement
    driver.send(Bytes(4, 0x7F), 1200);
    EXPECT_TRUE(driver.listen().bytes.empty());
    EXPECT_EQ(driver.chip.state(), ChipState::listening);
}

TEST(SimulatedChip, TellsItsClockInEightCountsThatTheHostCanReckonBack) {
    for (const double clock : {1e6, 4e6, 7372800.0, 11059200.0, 12e6, 24e6, 33e6, 40e6, 72e6})
        for (const char* model : {"VKM47H58RK+", "VKM26H2052", "VKM27J060"}) {
            ChipDriver driver(chip_of(model, clock));
            const Heard status = driver.connect();
            EXPECT_NEAR(clock_told(status), clock, 2061 * 0.57) << model;
        }
}

TEST(SimulatedChip, AnswersThePulsesAgainAsLongAsNothingElseCame) {
    ChipConfig config = chip_of("VKM47H58RK+");
    config.faults = sim::answers_from(sim::FrameKind::status, 3);
    ChipDriver driver(config);
    for (int lost = 0; lost < 2; ++lost) {
        driver.send(Bytes(8, 0x7F), 1200);
        EXPECT_TRUE(driver.listen(1s).bytes.empty());
        EXPECT_EQ(driver.chip.state(), ChipState::base);
    }
    driver.send(Bytes(8, 0x7F), 1200);
    expect_sound(driver.listen(1s));
}

TEST(SimulatedChip, AnswersTheTriggerAt115200BaudWithCountsOfTheFinerUnit) {
    for (const double clock : {11059200.0, 22118400.0, 33e6}) {
        ChipDriver driver(chip_of("VKM47H58RK+", clock));
        driver.now += 1ms;
        driver.send(trigger_8A, 115200);
        const Heard status = driver.listen();
        expect_sound(status);
        EXPECT_NEAR(status.baud / 115200, 1, 0.01);
        int sum = 0;
        for (std::size_t i = 4; i < 20; i += 2)
            sum += field(status, i) * 256 + field(status, i + 1);
        EXPECT_NEAR((sum + 145) * 500.5, clock, 500.5);
        // Its waits are set without a change of rate.
        const int wait = clock > 20e6 ? 128 : 129;
        const Heard test = driver.exchange(short_frame({0x8F, 0, 0, 255, 254, 6, wait}), 115200);
        EXPECT_EQ(test.bytes, short_ack);
        EXPECT_NEAR(test.baud / 115200, 1, 0.01);
        EXPECT_TRUE(driver.chip.faults().empty());
    }
}

TEST(SimulatedChip, StartsTheUserProgramWhenNoPulsesComeInItsWindow) {
    ChipConfig config = chip_of("VKM47H58RK+");
    config.listen_window = 200ms;
    ChipDriver blank(config);
    blank.advance_to(sim::Instant{10s});
    EXPECT_EQ(blank.chip.state(), ChipState::listening);  // it has none

    ChipDriver programmed(config);
    programmed.chip.load_flash(bytes_of(10));
    programmed.chip.power_off(programmed.now);
    programmed.chip.power_on(programmed.now);
    programmed.advance_to(programmed.now + 199ms);
    EXPECT_EQ(programmed.chip.state(), ChipState::listening);
    programmed.advance_to(programmed.now + 1ms);
    EXPECT_EQ(programmed.chip.state(), ChipState::running);
    EXPECT_TRUE(programmed.connect().bytes.empty());
}

TEST(SimulatedChip, LeavesItsRunningProgramOnlyForTheWholeUserCodeAtTheProgramsRate) {
    ChipConfig config = chip_of("VKM47H58RK+");
    config.listen_window = 200ms;
    config.user_code = {0x55, 0xAA, 0x55};
    config.user_code_baud = 9600;
    ChipDriver driver(config);
    driver.chip.load_flash(bytes_of(10));
    driver.chip.power_off(driver.now);
    driver.chip.power_on(driver.now);
    driver.advance_to(driver.now + 200ms);
    ASSERT_EQ(driver.chip.state(), ChipState::running);

    driver.send({0x55, 0xAA, 0x55}, 19200);
    driver.send({0xAA, 0x55, 0x55, 0xAA}, 9600);
    EXPECT_EQ(driver.chip.state(), ChipState::running);
    driver.send({0x55}, 9600);
    EXPECT_EQ(driver.chip.state(), ChipState::listening);
    EXPECT_EQ(driver.chip.counters().user_codes, 1);
    EXPECT_EQ(driver.chip.counters().power_ups, 1);
    EXPECT_FALSE(driver.connect().bytes.empty());
}

TEST(SimulatedChip, GreetsAtEachStartOfItsUserProgramAtTheProgramsRate) {
    ChipConfig config = chip_of("VKM47H58RK+");
    config.greeting = {'H', 'i'};
    config.greeting_baud = 9600;
    config.greeting_after = 250ms;
    ChipDriver driver(config);
    for (int start = 1; start <= 2; ++start) {
        driver.connect();
        driver.send(trigger_82, 1200);
        const sim::Instant started = driver.now;
        EXPECT_EQ(driver.chip.state(), ChipState::running);
        const Heard greeting = driver.listen(10s);
        EXPECT_EQ(greeting.bytes, (Bytes{'H', 'i'}));
        EXPECT_EQ(greeting.baud, 9600);
        EXPECT_EQ(greeting.start, started + 250ms);
        EXPECT_EQ(driver.chip.counters().greetings, start);
        driver.chip.power_off(driver.now);
        driver.chip.power_on(driver.now);
    }
}

TEST(SimulatedChip, RepeatsItsGreetingUntilItHasNoPowerOrItsFirmwareRuns) {
    ChipConfig config = chip_of("VKM47H58RK+");
    config.greeting = {'.'};
    config.greeting_after = 100ms;
    config.greeting_every = 50ms;
    config.user_code = {0x55};
    ChipDriver driver(config);
    driver.connect();
    driver.send(trigger_82, 1200);
    driver.advance_to(driver.now + 99ms);
    EXPECT_EQ(driver.chip.counters().greetings, 0);
    driver.advance_to(driver.now + 110ms);
    EXPECT_EQ(driver.chip.counters().greetings, 3);
    driver.send({0x55}, 115200);
    EXPECT_EQ(driver.chip.state(), ChipState::listening);
    driver.advance_to(driver.now + 1s);
    EXPECT_EQ(driver.chip.counters().greetings, 3);

    driver.connect();
    driver.send(trigger_82, 1200);
    driver.advance_to(driver.now + 110ms);
    EXPECT_EQ(driver.chip.counters().greetings, 4);
    driver.chip.power_off(driver.now);
    driver.advance_to(driver.now + 1s);
    EXPECT_EQ(driver.chip.counters().greetings, 4);
}

TEST(SimulatedChip, SaysNoMoreOfItsGreetingOnceItHasNoPower) {
    ChipConfig config = chip_of("VKM47H58RK+");
    config.greeting = Bytes(100, 'g');
    config.greeting_baud = 1200;
    ChipDriver driver(config);
    driver.connect();
    driver.send(trigger_82, 1200);
    driver.advance_to(driver.now + 400ms);
    driver.chip.power_off(driver.now);
    EXPECT_NEAR(static_cast<double>(driver.listen().bytes.size()), 12, 2);
}

TEST(SimulatedChip, GreetsToTheEndBeforeItGreetsAgainAndIsSilentOnceItsFirmwareRuns) {
    ChipConfig config = chip_of("VKM47H58RK+");
    config.greeting = Bytes(10, 'g');  // 83 ms
    config.greeting_baud = 1200;
    config.greeting_after = 0ms;
    config.greeting_every = 20ms;
    config.user_code = {0x55};
    ChipDriver driver(config);
    driver.connect();
    driver.send(trigger_82, 1200);
    driver.advance_to(driver.now + 840ms);
    EXPECT_NEAR(driver.chip.counters().greetings, 11, 1);
    driver.send({0x55}, 115200);
    EXPECT_EQ(driver.chip.state(), ChipState::listening);
    // What had left the program before, and nothing more.
    const std::size_t said = driver.listen().bytes.size();
    EXPECT_LE(said, 103U);
    EXPECT_GE(said, 100U);
}

// ---- the status frame -----------------------------------------------------------

struct StatusCase {
    const char* model;
    int letter;
    int length;
    Bytes from_option;  // fields 22 on, up to the sum
};

class StatusFrame : public testing::TestWithParam<StatusCase> {};

TEST_P(StatusFrame, TellsVersionLetterIdFeaturesAndOptionsOfItsLetter) {
    ChipConfig config = chip_of(GetParam().model);
    config.version = 0x57;
    config.feature = 0x02;
    ChipDriver driver(config);
    const Heard status = driver.connect();
    expect_sound(status);
    EXPECT_EQ(field(status, 2), GetParam().length);
    EXPECT_EQ(field(status, 20), 0x57);
    EXPECT_EQ(field(status, 21), GetParam().letter);
    ASSERT_GE(status.bytes.size(), 26U);
    EXPECT_EQ(Bytes(status.bytes.begin() + 24, status.bytes.end() - 2), GetParam().from_option);
}

INSTANTIATE_TEST_SUITE_P(
    Letters, StatusFrame,
    testing::Values(
        StatusCase{"VKM47H516RK", 'A', 25, {0x40}},
        StatusCase{"VKM47W516AD", 'B', 26, {0xFF, 0x56}},
        StatusCase{"VKM47W58RK+", 'C', 28, {0xFD, 0xF1, 0x08, 0x02}},
        StatusCase{"VKM26H2052", 'D', 33, {0xFF, 0xF2, 0x02, 0x02, 0xFF, 0xFF, 0xF7, 0xFF, 0xFF}},
        StatusCase{"VKM26W5410AD", 'E', 33, {0xFF, 0xF3, 0x3A, 0x02, 0xFF, 0xFF, 0xF7, 0xFF, 0xFF}},
        StatusCase{"VKM26H5416", 'F', 33, {0xFF, 0xE0, 0x10, 0x02, 0xFF, 0xFF, 0xF7, 0xFF, 0xFF}},
        StatusCase{
            "26H/W54xx Series", 'F', 33, {0xFF, 0xE0, 0x1C, 0x02, 0xFF, 0xFF, 0xF7, 0xFF, 0xFF}},
        StatusCase{
            "VKM27J060U2", 'G', 34, {0xFF, 0xF4, 0x3F, 0x02, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}}),
    [](const auto& info) { return "Row" + std::to_string(info.index); });

TEST(SimulatedChip, ReportsTheOptionBytesThatItHolds) {
    sim::OptionBytes options{};
    for (std::size_t i = 0; i < options.size(); ++i)
        options[i] = static_cast<std::uint8_t>(0x30 + i);
    const auto reported = [&](const char* model, std::size_t at, std::size_t count) {
        ChipConfig config = chip_of(model);
        config.options = options;
        ChipDriver driver(config);
        const Heard status = driver.connect();
        Bytes fields;
        for (std::size_t i = at; i < at + count; ++i)
            fields.push_back(static_cast<std::uint8_t>(field(status, i)));
        return fields;
    };
    EXPECT_EQ(reported("VKM47H516RK", 22, 1), (Bytes{0x30}));
    EXPECT_EQ(reported("VKM47H58RK+", 22, 1), (Bytes{0x31}));
    EXPECT_EQ(reported("VKM26H2052", 26, 5), (Bytes{0x32, 0x33, 0x38, 0x3A, 0x3B}));
    EXPECT_EQ(reported("VKM26H5428", 26, 5), (Bytes{0x32, 0x33, 0x38, 0x3A, 0x3B}));
    EXPECT_EQ(reported("VKM27J008", 26, 6), (Bytes{0x30, 0x33, 0x34, 0x38, 0x3A, 0x3B}));
}

TEST(SimulatedChip, MakesItsStatusFrameAsLongAsItIsTold) {
    for (const int length : {6, 24, 25, 26, 27, 28, 33, 34, 60, 1000}) {
        ChipConfig config = chip_of("VKM47H58RK+");
        config.status_length = length;
        ChipDriver driver(config);
        const Heard status = driver.connect();
        expect_sound(status);
        EXPECT_EQ(status.bytes.size(), static_cast<std::size_t>(length) + 2);
    }
}

TEST(SimulatedChip, IsMadeOfEveryModelOfTheCatalogue) {
    int models = 0;
    for (const ModelGroup& group : MCU_AP_ISP_range)
        for (const ModelRow& row : group.rows) {
            ++models;
            ASSERT_TRUE(sim::known_model(row.MCU_Name));
            ChipDriver driver(chip_of(std::string(row.MCU_Name)));
            const Heard status = driver.connect();
            expect_sound(status);
            EXPECT_EQ(driver.chip.family(), group.MCU_Family);
            // All of the program area can be written, and the smallest download too.
            EXPECT_GT(static_cast<std::int32_t>(driver.chip.flash().size()), row.AP_End);
            EXPECT_GE(driver.chip.flash().size(), 1024U);
            EXPECT_EQ(driver.chip.flash().size() % 512, 0U);
            const Bytes data = bytes_of(128);
            const Heard ack = driver.exchange(block_frame(0x00, 0x0180, data));
            EXPECT_EQ(field(ack, 3), 0x80);
            EXPECT_EQ(field(ack, 4), sum(data));
            EXPECT_TRUE(driver.chip.faults().empty()) << driver.chip.faults().front();
        }
    EXPECT_EQ(models, 154);
}

TEST(SimulatedChip, OfAnUnknownModelOrLetterNeverGetsPower) {
    EXPECT_FALSE(sim::known_model("VKM47H99"));
    EXPECT_FALSE(sim::known_model(""));
    ChipConfig letter_x = chip_of("VKM47H58RK+");
    letter_x.letter = 'X';
    for (const ChipConfig& config : {chip_of("VKM47H99"), chip_of(""), letter_x}) {
        ChipDriver driver(config);
        driver.chip.power_on(driver.now);
        EXPECT_TRUE(driver.connect().bytes.empty());
        EXPECT_EQ(driver.chip.state(), ChipState::off);
        EXPECT_EQ(driver.chip.faults().size(), 1U);
    }
}

// ---- baud -----------------------------------------------------------------------

struct BaudCase {
    const char* model;
    double clock;
    int high, low;
    int doubled;
    int wait;
    double rate;
};

class BaudExchange : public testing::TestWithParam<BaudCase> {};

TEST_P(BaudExchange, AnswersTheTestAtTheNewRateAndStaysAtTheOldOne) {
    const BaudCase& row = GetParam();
    ChipDriver driver(chip_of(row.model, row.clock));
    driver.connect();
    const Heard test = driver.exchange(
        short_frame({0x8F, row.high, row.low, 255 - row.high, row.doubled, 40, row.wait}));
    EXPECT_EQ(test.bytes, short_ack);
    EXPECT_NEAR(test.baud, row.rate, row.rate * 1e-4);
    EXPECT_NEAR(driver.chip.rate(), 1200, 1);
    EXPECT_EQ(driver.exchange(short_frame({0x50}), 1200).bytes.empty(), false);

    const Heard set =
        driver.exchange(short_frame({0x8E, row.high, row.low, 255 - row.high, row.doubled, 23}));
    EXPECT_EQ(set.bytes, short_ack);
    EXPECT_NEAR(set.baud, row.rate, row.rate * 1e-4);
    EXPECT_EQ(driver.chip.state(), ChipState::full_rate);
    EXPECT_FALSE(driver.exchange(short_frame({0x50}), row.rate).bytes.empty());
    EXPECT_TRUE(driver.chip.faults().empty()) << driver.chip.faults().front();
    EXPECT_TRUE(driver.exchange(short_frame({0x50}), 1200).bytes.empty());
    EXPECT_FALSE(driver.chip.faults().empty());
}

INSTANTIATE_TEST_SUITE_P(Pairs, BaudExchange,
                         testing::Values(
                             // 16-bit reload: f / 32 / count
                             BaudCase{"VKM47H58RK+", 11059200, 0xFF, 0xFD, 6, 129, 115200},
                             BaudCase{"VKM47H58RK+", 12000000, 0xFF, 0xF6, 20, 129, 37500},
                             BaudCase{"VKM47W516AD", 4000000, 0xFF, 0xF6, 20, 131, 12500},
                             BaudCase{"VKM47H516RK", 24000000, 0xFF, 0xF3, 26, 128, 57692.3},
                             // 8-bit reload with its division: f/16, f/32, f/32/6, f/32/12
                             BaudCase{"VKM26H2052", 11059200, 0xC0, 0xFA, 12, 131, 115200},
                             BaudCase{"VKM26H5410", 12000000, 0xC0, 0xF3, 26, 131, 57692.3},
                             BaudCase{"VKM27J060", 24000000, 0x40, 0xF3, 26, 129, 57692.3},
                             BaudCase{"VKM26H2052", 11059200, 0x80, 0xFA, 12, 131, 9600},
                             BaudCase{"VKM26H2052", 11059200, 0x00, 0xFD, 6, 131, 9600}),
                         [](const auto& info) { return "Row" + std::to_string(info.index); });

TEST(SimulatedChip, WaitsWithTheAnswerOfABaudFrameAsLongAsItIsTold) {
    ChipDriver driver(chip_of("VKM47H58RK+"));
    driver.connect();
    driver.send(short_frame({0x8F, 0xFF, 0xFD, 0x00, 6, 80, 129}), 1200);
    const sim::Instant sent = driver.now;
    const Heard test = driver.listen();
    EXPECT_GE(test.start - sent, 80ms);
    EXPECT_LE(test.start - sent, 81ms);
}

TEST(SimulatedChip, GivesNoAnswerToABaudFrameThatDoesNotRepeatItsPair) {
    const Bytes wrong[] = {
        short_frame({0x8F, 0xFF, 0xFD, 0x01, 6, 40, 129}),    // not 255 - FF
        short_frame({0x8F, 0xFF, 0xFD, 0x00, 5, 40, 129}),    // not twice the count
        short_frame({0x8F, 0xFF, 0x00, 0x00, 255, 40, 129}),  // the test frame ends at 254
        short_frame({0x8E, 0xFF, 0x00, 0x00, 254, 23}),       // and the set frame at 255
        short_frame({0x8F, 0x00, 0x01, 0xFF, 254, 40, 129}),  // no rate of this clock
        short_frame({0x8F, 0xFF, 0xFD, 0x00, 6, 40}),         // too short
        short_frame({0x8E, 0xFF, 0xFD, 0x00, 6, 23, 129}),    // too long
    };
    ChipDriver driver(chip_of("VKM47H58RK+"));
    driver.connect();
    std::size_t objections = 0;
    for (const Bytes& frame : wrong) {
        EXPECT_TRUE(driver.exchange(frame).bytes.empty());
        EXPECT_EQ(driver.chip.faults().size(), ++objections);
    }
    ChipDriver eight_bit(chip_of("VKM26H2052"));
    eight_bit.connect();
    EXPECT_TRUE(
        eight_bit.exchange(short_frame({0x8F, 0xFF, 0xFD, 0x00, 6, 40, 131})).bytes.empty());
}

TEST(SimulatedChip, ObjectsToWaitsThatDoNotSuitItsClockButTakesThem) {
    const auto objections = [](const char* model, double clock, int delay, int wait) {
        ChipDriver driver(chip_of(model, clock));
        driver.connect();
        const bool eight_bit = driver.chip.family() >= 3;
        const int high = eight_bit ? 0xC0 : 0xFF;
        EXPECT_FALSE(driver.exchange(short_frame({0x8F, high, 0xE0, 255 - high, 64, delay, wait}))
                         .bytes.empty());
        return driver.chip.faults().size();
    };
    EXPECT_EQ(objections("VKM47H58RK+", 12e6, 40, 129), 0U);
    EXPECT_EQ(objections("VKM47H58RK+", 12e6, 39, 129), 1U);
    EXPECT_EQ(objections("VKM47H58RK+", 12e6, 40, 128), 1U);
    EXPECT_EQ(objections("VKM47H58RK+", 24e6, 40, 128), 0U);
    EXPECT_EQ(objections("VKM47H516RK", 12e6, 40, 128), 0U);
    EXPECT_EQ(objections("VKM47H516RK", 12e6, 40, 129), 1U);
    EXPECT_EQ(objections("VKM47W58AD", 12e6, 40, 130), 0U);
    EXPECT_EQ(objections("VKM26H2052", 8e6, 40, 131), 0U);
    EXPECT_EQ(objections("VKM26H2052", 33e6, 40, 128), 0U);
    EXPECT_EQ(objections("VKM26H2052", 33e6, 40, 129), 1U);
}

TEST(SimulatedChip, ObjectsToASetOfAPairThatWasNotTested) {
    ChipDriver driver(chip_of("VKM47H58RK+"));
    driver.connect();
    EXPECT_FALSE(driver.exchange(short_frame({0x8E, 0xFF, 0xFD, 0x00, 6, 23})).bytes.empty());
    EXPECT_EQ(driver.chip.faults().size(), 1U);
}

// ---- short commands -----------------------------------------------------------------

TEST(SimulatedChip, TakesTheWatchdogPinsThatItHas) {
    ChipDriver driver(chip_of("VKM47H58RK+"));
    driver.connect();
    for (const int pin : {0x00, 0x07, 0x35, 0x43, 0xFF})
        EXPECT_EQ(driver.exchange(short_frame({0x86, pin})).bytes, short_ack) << pin;
    EXPECT_TRUE(driver.chip.faults().empty());
    for (const int pin : {0x08, 0x44, 0x50, 0xF0})
        EXPECT_TRUE(driver.exchange(short_frame({0x86, pin})).bytes.empty()) << pin;
    EXPECT_EQ(driver.chip.faults().size(), 4U);
}

TEST(SimulatedChip, AnswersTheLinkCheckOfItsFamily) {
    ChipDriver driver(chip_of("VKM47H58RK+"));
    driver.connect();
    EXPECT_EQ(driver.exchange(short_frame({0x80, 2, 0, 0x36, 0x01})).bytes, short_ack);
    EXPECT_TRUE(driver.exchange(short_frame({0x80, 3, 0, 0x36, 0x01})).bytes.empty());
    EXPECT_TRUE(driver.exchange(short_frame({0x80, 2, 0, 0x36, 0x02})).bytes.empty());
    EXPECT_EQ(driver.chip.faults().size(), 2U);
}

TEST(SimulatedChip, ReadsItsStatusOut) {
    ChipDriver c(chip_of("VKM47H58RK+"));
    c.connect();
    const Heard status = c.exchange(short_frame({0x50}));
    expect_sound(status);
    EXPECT_EQ(field(status, 2), 16);
    EXPECT_EQ(field(status, 11), 0x38);
    EXPECT_EQ(field(status, 12), 'C');
    EXPECT_EQ(field(status, 13), 0xFD);

    ChipDriver g(chip_of("VKM27J008"));
    g.connect();
    const Heard longer = g.exchange(short_frame({0x50}));
    EXPECT_EQ(field(longer, 2), 21);
    EXPECT_EQ(field(longer, 12), 'G');
}

TEST(SimulatedChip, GivesNoAnswerToFramesThatAreNotWhole) {
    Bytes wrong_sum = short_frame({0x50});
    ++wrong_sum[6];
    Bytes wrong_end = short_frame({0x50});
    wrong_end[7] = 0x17;
    Bytes no_length = short_frame({0x50});
    no_length[4] = 0x05;
    Bytes endless = short_frame({0x50});
    endless[3] = 0xFF;
    Bytes not_a_host = short_frame({0x50});
    not_a_host[2] = 0x68;
    ChipDriver driver(chip_of("VKM47H58RK+"));
    driver.connect();
    std::size_t objections = 0;
    for (const Bytes& frame : {wrong_sum, wrong_end, no_length, endless, not_a_host}) {
        EXPECT_TRUE(driver.exchange(frame).bytes.empty());
        EXPECT_GT(driver.chip.faults().size(), objections);
        objections = driver.chip.faults().size();
    }
    EXPECT_FALSE(driver.exchange(short_frame({0x50})).bytes.empty());
    EXPECT_TRUE(driver.exchange(short_frame({0x77})).bytes.empty());
}

TEST(SimulatedChip, ForgetsAFrameThatBreaksOffInTheMiddle) {
    ChipDriver driver(chip_of("VKM47H58RK+"));
    driver.connect();
    driver.send({0x46, 0xB9, 0x6A, 0x00, 0x06}, 1200);
    driver.now += 1s;
    EXPECT_FALSE(driver.exchange(short_frame({0x50})).bytes.empty());
    EXPECT_EQ(driver.chip.faults(), std::vector<std::string>{"frame broken off: 46 B9 6A 00 06"});
}

TEST(SimulatedChip, HearsNothingWhileItWorks) {
    ChipConfig config = chip_of("VKM47H58RK+");
    config.erase_time = 500ms;
    ChipDriver driver(config);
    driver.connect();
    driver.send(short_frame({0x84, 1, 0x33, 0x33, 0x33, 0x33, 0x33, 0x33}), 1200);
    driver.now += 100ms;
    driver.send(short_frame({0x84, 1, 0x33, 0x33, 0x33, 0x33, 0x33, 0x33}), 1200);
    EXPECT_EQ(driver.listen().bytes, short_ack);
    EXPECT_EQ(driver.chip.counters().erases, 1);
    EXPECT_EQ(driver.chip.faults().size(), 1U);
}

// ---- flash -----------------------------------------------------------------------------

TEST(SimulatedChip, WritesBlocksAndEchoesTheirDataSum) {
    ChipDriver driver(chip_of("VKM47H58RK+"));
    bring_to_full_rate(driver);
    const Bytes data = bytes_of(128);
    const Heard ack = driver.exchange(block_frame(0x00, 0x1200, data));
    EXPECT_EQ(ack.bytes.size(), 9U);
    EXPECT_EQ(field(ack, 2), 7);
    EXPECT_EQ(field(ack, 3), 0x80);
    EXPECT_EQ(field(ack, 4), sum(data));
    EXPECT_TRUE(std::equal(data.begin(), data.end(), driver.chip.flash().begin() + 0x1200));
    EXPECT_EQ(driver.chip.flash()[0x11FF], 0xFF);
    EXPECT_EQ(driver.chip.flash()[0x1280], 0xFF);
    EXPECT_TRUE(driver.chip.faults().empty());
}

TEST(SimulatedChip, AnswersBlocksWithoutTheSumWhereTheFirmwareDoes) {
    ChipConfig config = chip_of("VKM47H58RK+");
    config.short_acks = true;
    ChipDriver driver(config);
    driver.connect();
    EXPECT_EQ(driver.exchange(block_frame(0x00, 0, bytes_of(16))).bytes, short_ack);
    EXPECT_NE(field(driver.exchange(block_frame(0x00, 0, bytes_of(16, 99))), 3), 0x80);
}

TEST(SimulatedChip, CanTurnBitsOfItsFlashToZeroOnlyUntilTheSectorIsErased) {
    for (const auto& [model, sector] : {std::pair{"VKM47H58RK+", 512}, {"VKM47H516RK", 128}}) {
        ChipDriver driver(chip_of(model));
        driver.connect();
        driver.exchange(block_frame(0x00, 0x0400, Bytes(64, 0x0F)));
        driver.exchange(block_frame(0x00, 0x03FF, {0x12}));
        driver.exchange(block_frame(0x00, 0x0800, {0x34}));

        const Heard refused = driver.exchange(block_frame(0x00, 0x0400, {0xF1}));
        EXPECT_NE(field(refused, 4), 0xF1);
        EXPECT_EQ(driver.chip.flash()[0x0400], 0x01);
        EXPECT_EQ(driver.chip.faults(),
                  std::vector<std::string>{"program over unerased byte at 0x0400"});

        const Heard retried = driver.exchange(block_frame(0x30, 0x0400, {0xF1}));
        EXPECT_EQ(field(retried, 4), 0xF1);
        EXPECT_EQ(driver.chip.flash()[0x0401], 0xFF);
        EXPECT_EQ(driver.chip.flash()[0x03FF], 0x12);
        EXPECT_EQ(driver.chip.flash()[0x0800], 0x34);
        EXPECT_EQ(driver.chip.counters().retried_blocks, 1);

        // A sector goes as a whole and no more of it.
        driver.exchange(block_frame(0x00, 0x0400 + static_cast<std::uint32_t>(sector), {0x55}));
        driver.exchange(block_frame(0x30, 0x0400 + static_cast<std::uint32_t>(sector) - 1, {0}));
        EXPECT_EQ(driver.chip.flash()[0x0400], 0xFF);
        EXPECT_EQ(driver.chip.flash()[static_cast<std::size_t>(0x0400 + sector)], 0x55);
    }
}

TEST(SimulatedChip, TellsAnUnerasedByteEvenWhereTheSumWouldHideIt) {
    ChipDriver driver(chip_of("VKM47H58RK+"));
    driver.connect();
    // The two bits that are missing make 256 together.
    driver.chip.load_flash(Bytes{0x00, 0x00});
    const Heard ack = driver.exchange(block_frame(0x00, 0, {0x80, 0x80}));
    EXPECT_EQ(field(ack, 3), 0x80);
    EXPECT_NE(field(ack, 4), 0x00);
}

TEST(SimulatedChip, RefusesBlocksThatDoNotFit) {
    ChipDriver driver(chip_of("VKM26H2052"));
    driver.connect();
    EXPECT_EQ(field(driver.exchange(block_frame(0x00, 0x13FF, {1})), 3), 0x80);
    EXPECT_NE(field(driver.exchange(block_frame(0x00, 0x13FF, {1, 2})), 3), 0x80);
    EXPECT_NE(field(driver.exchange(block_frame(0x00, 0x1400, {1})), 3), 0x80);
    EXPECT_NE(field(driver.exchange(block_frame(0x00, 0xFFFFFFFF, {1, 2})), 3), 0x80);
    EXPECT_NE(field(driver.exchange(block_frame(0x00, 0x0, Bytes(129, 0))), 3), 0x80);
    EXPECT_EQ(driver.chip.faults().size(), 4U);

    Bytes lying = block_frame(0x00, 0, {1, 2});
    lying[11] = 3;  // it tells three bytes and brings two
    lying[lying.size() - 2] = sum(std::span(lying).subspan(2, lying.size() - 4));
    EXPECT_TRUE(driver.exchange(lying).bytes.empty());
    EXPECT_TRUE(driver.exchange(block_frame(0x00, 0, {})).bytes.empty());
    EXPECT_TRUE(driver.exchange(short_frame({0x00, 1})).bytes.empty());
}

struct FlashEnd {
    const char* model;
    int version;
    int feature;
    std::uint32_t size;
};

TEST(SimulatedChip, HasAsMuchFlashAsItsModelAndFirmwareLeave) {
    const FlashEnd rows[] = {
        {"VKM47H516RK", -1, 0, 0x10000}, {"VKM47T58RK", -1, 0, 0x8000},
        {"VKM47W516AD", -1, 0, 0xFC00},  {"VKM47W52AD", -1, 0, 0x2000},
        {"VKM47H51RB", -1, 0, 0x3800},   {"VKM47H516RK+", -1, 0, 0xF800},
        {"VKM47H516RK+", -1, 1, 0xF600}, {"VKM47H516RK+", -1, 2, 0xF400},
        {"VKM47H516RK+", -1, 3, 0xF200}, {"VKM47H516RK+", 0x25, 3, 0xF800},
        {"VKM47W61RK+", -1, 0, 0xF400},  {"VKM47H55RK+", -1, 2, 0xF400},
        {"VKM26H0552", -1, 0, 0x1400},   {"VKM26H5401", 0x50, 0, 0x3000},
        {"VKM26H5401", 0x51, 0, 0x7000}, {"VKM26W5424AD", -1, 0, 0x7000},
        {"VKM27J008", -1, 0, 0xF000},
    };
    for (const FlashEnd& row : rows) {
        ChipConfig config = chip_of(row.model);
        config.version = row.version;
        config.feature = static_cast<std::uint8_t>(row.feature);
        EXPECT_EQ(sim::SimulatedChip(config).flash().size(), row.size)
            << row.model << ' ' << row.version << ' ' << row.feature;
    }
}

// What an erase leaves of a flash full of zeros: the first address that still holds one.
int erased_up_to(const ChipConfig& config, const Bytes& frame) {
    ChipDriver driver(config);
    driver.chip.load_flash(Bytes(0x10000, 0x00));
    driver.connect();
    const Heard ack = driver.exchange(frame);
    if (field(ack, 3) != 0x80) return -1;
    const auto flash = driver.chip.flash();
    const auto first = std::find(flash.begin(), flash.end(), 0x00);
    EXPECT_TRUE(std::none_of(first, flash.end(), [](auto byte) { return byte == 0xFF; }));
    return static_cast<int>(first - flash.begin());
}

Bytes erase_count(int count) {
    return short_frame({0x84, count, 0x33, 0x33, 0x33, 0x33, 0x33, 0x33});
}

Bytes erase_range(int low, int high, int count = 255) {
    return short_frame({0x84, count, low >> 16, low >> 8 & 255, low & 255, high >> 16,
                        high >> 8 & 255, high & 255});
}

TEST(SimulatedChip, ErasesAsManySectorsAsLettersAToCAreTold) {
    EXPECT_EQ(erased_up_to(chip_of("VKM47H58RK+"), erase_count(1)), 512);
    EXPECT_EQ(erased_up_to(chip_of("VKM47H58RK+"), erase_count(124)), 124 * 512);
    EXPECT_EQ(erased_up_to(chip_of("VKM47H58RK+"), erase_count(126)), 0xF800);  // firmware stays
    EXPECT_EQ(erased_up_to(chip_of("VKM47H58RK+"), erase_count(255)), 0xF800);
    EXPECT_EQ(erased_up_to(chip_of("VKM47H516RK"), erase_count(255)), 0x10000);
    EXPECT_EQ(erased_up_to(chip_of("VKM47W52AD"), erase_count(16)), 0x2000);
    EXPECT_EQ(erased_up_to(chip_of("VKM47H58RK+"), erase_count(0)), -1);
    EXPECT_EQ(erased_up_to(chip_of("VKM47H58RK+"), erase_range(0, 0x1000)), -1);
}

TEST(SimulatedChip, ErasesTheProgramAreaAndTheRangeThatLettersDToGAreTold) {
    EXPECT_EQ(erased_up_to(chip_of("VKM26H2052"), erase_range(0x1000, 0x1000)), 0x1000);
    EXPECT_EQ(erased_up_to(chip_of("VKM26H2052"), erase_range(0x0100, 0x0100)), 0x0800);
    EXPECT_EQ(erased_up_to(chip_of("VKM26H2052"), erase_range(0x0800, 0x13FF)), 0x1400);
    EXPECT_EQ(erased_up_to(chip_of("VKM26H2052"), erase_range(0x1201, 0x1201)), 0x1400);
    EXPECT_EQ(erased_up_to(chip_of("VKM27J008"), erase_range(0x2000, 0xEFFF)), 0xF000);
    EXPECT_EQ(erased_up_to(chip_of("VKM26H5428"), erase_range(0x7000, 0x7000)), 0x7000);
    EXPECT_EQ(erased_up_to(chip_of("VKM26H2052"), erase_range(0x1000, 0x0FFF)), -1);
    EXPECT_EQ(erased_up_to(chip_of("VKM26H2052"), erase_range(0x1000, 0x1401)), -1);
    EXPECT_EQ(erased_up_to(chip_of("VKM26H2052"), erase_range(0x1000, 0x1000, 254)), -1);
}

TEST(SimulatedChip, AnswersAnEraseWhenItIsDone) {
    ChipConfig config = chip_of("VKM47H58RK+");
    config.erase_time = 1234ms;
    ChipDriver driver(config);
    driver.connect();
    driver.send(erase_count(255), 1200);
    const sim::Instant sent = driver.now;
    const Heard ack = driver.listen();
    EXPECT_GE(ack.start - sent, 1234ms);
    EXPECT_LE(ack.start - sent, 1235ms);
}

TEST(SimulatedChip, OfTheOldestFirmwareErasesAsItWrites) {
    ChipConfig config = chip_of("VKM47H516RK");
    config.version = 0x02;
    ChipDriver driver(config);
    driver.chip.load_flash(Bytes(0x1000, 0x00));
    driver.connect();
    const Bytes data = bytes_of(128);
    for (std::uint32_t at = 0; at < 0x300; at += 64)
        driver.exchange(block_frame(0x00, at, Bytes(64, 0xAA)));
    EXPECT_EQ(field(driver.exchange(block_frame(0x00, 0x0180, data)), 4), sum(data));
    EXPECT_TRUE(driver.chip.faults().empty());
    EXPECT_EQ(driver.chip.flash()[0x02FF], 0xAA);
    EXPECT_EQ(driver.chip.flash()[0x0300], 0x00);
    // A frame that reaches into the next sector erases that one too.
    EXPECT_EQ(field(driver.exchange(block_frame(0x00, 0x0440, data)), 4), sum(data));
    EXPECT_EQ(driver.chip.flash()[0x04FF], 0xFF);
}

// ---- the end ------------------------------------------------------------------------------

TEST(SimulatedChip, LeavesForTheUserProgramAtTheTriggerAndIsDeafFromThenOn) {
    ChipDriver driver(chip_of("VKM47H58RK+"));
    bring_to_full_rate(driver);
    EXPECT_TRUE(driver.exchange(trigger_82).bytes.empty());
    EXPECT_EQ(driver.chip.state(), ChipState::running);
    EXPECT_TRUE(driver.chip.started());
    EXPECT_TRUE(driver.exchange(short_frame({0x50})).bytes.empty());
    EXPECT_TRUE(driver.connect().bytes.empty());
    EXPECT_TRUE(driver.chip.faults().empty());
}

TEST(SimulatedChip, LeavesAtTheLastCommandOfASessionToo) {
    ChipDriver driver(chip_of("VKM47H58RK+"));
    bring_to_full_rate(driver);
    EXPECT_TRUE(driver.exchange(short_frame({0x52, 2, 0, 0x36, 0x01})).bytes.empty());
    EXPECT_TRUE(driver.chip.started());
}

TEST(SimulatedChip, WantsFourFEInFrontOfATrigger) {
    ChipDriver driver(chip_of("VKM47H58RK+"));
    bring_to_full_rate(driver);
    driver.exchange(short_frame({0x82}));
    EXPECT_FALSE(driver.chip.started());
    EXPECT_EQ(driver.chip.faults().size(), 1U);
}

TEST(SimulatedChip, KeepsFlashAndOptionsThroughAPowerCycleAndLosesItsRate) {
    ChipDriver driver(chip_of("VKM47H58RK+"));
    bring_to_full_rate(driver);
    driver.exchange(block_frame(0x00, 0, {1, 2, 3}));
    driver.chip.power_cycle(driver.now, 100ms);
    EXPECT_EQ(driver.chip.state(), ChipState::off);
    EXPECT_TRUE(driver.exchange(short_frame({0x50})).bytes.empty());
    EXPECT_EQ(driver.chip.state(), ChipState::listening);
    expect_sound(driver.connect());
    EXPECT_EQ(driver.chip.flash()[2], 3);
    EXPECT_EQ(driver.chip.counters().power_ups, 2);
}

TEST(SimulatedChip, MakesPlaceForABlankOneOnceItsProgramRuns) {
    ChipConfig config = chip_of("VKM47H58RK+");
    config.after_start = {true, 300ms, 200ms, true};
    ChipDriver driver(config);
    bring_to_full_rate(driver);
    driver.exchange(block_frame(0x00, 0, {1, 2, 3}));
    driver.now += 1ms;
    driver.send(trigger_82, 115200);
    driver.advance_to(driver.now + 299ms);
    EXPECT_EQ(driver.chip.state(), ChipState::running);
    EXPECT_EQ(driver.chip.flash()[0], 1);
    driver.advance_to(driver.now + 2ms);
    EXPECT_EQ(driver.chip.state(), ChipState::off);
    driver.advance_to(driver.now + 200ms);
    EXPECT_EQ(driver.chip.state(), ChipState::listening);
    EXPECT_EQ(driver.chip.counters().chips, 2);
    EXPECT_EQ(driver.chip.flash()[0], 0xFF);
    expect_sound(driver.connect());
}

TEST(SimulatedChip, StaysOffWhenAHandHasSwitchedItOff) {
    ChipConfig config = chip_of("VKM47H58RK+");
    config.after_start = {true, 300ms, 200ms, false};
    ChipDriver driver(config);
    bring_to_full_rate(driver);
    driver.exchange(short_frame({0x52, 2, 0, 0x36, 0x01}));
    driver.chip.power_cycle(driver.now, 10ms);
    driver.chip.power_off(driver.now);
    driver.advance_to(driver.now + 10s);
    EXPECT_EQ(driver.chip.state(), ChipState::off);
}

TEST(SimulatedChip, StopsInTheMiddleOfAnAnswerWhenItLosesPower) {
    ChipDriver driver(chip_of("VKM47H58RK+"));
    driver.send(Bytes(8, 0x7F), 1200);
    driver.advance_to(driver.now + 100ms);
    driver.chip.power_off(driver.now);
    EXPECT_LT(driver.listen().bytes.size(), 16U);
}

TEST(SimulatedChip, KeepsARecordOfFramesAndAnswers) {
    ChipDriver driver(chip_of("VKM47H58RK+"));
    bring_to_full_rate(driver);
    const auto log = driver.chip.take_log();
    ASSERT_EQ(log.size(), 5U);
    EXPECT_EQ(log[0].kind, sim::FrameKind::status);
    EXPECT_TRUE(log[0].from_chip);
    EXPECT_EQ(log[1].kind, sim::FrameKind::test_baud);
    EXPECT_FALSE(log[1].from_chip);
    EXPECT_EQ(log[1].bytes, short_frame({0x8F, 0xFF, 0xFD, 0x00, 0x06, 40, 129}));
    EXPECT_EQ(log[2].bytes, short_ack);
    EXPECT_EQ(log[3].kind, sim::FrameKind::set_baud);
    EXPECT_TRUE(driver.chip.log().empty());
}

TEST(SimulatedChip, PutsNoiseBeforeItsAnswersWhenItAsksTheHostToHunt) {
    ChipConfig config = chip_of("VKM47H58RK+");
    config.feature = 0x80;
    ChipDriver driver(config);
    expect_sound(driver.connect());
    Bytes heard = driver.exchange(short_frame({0x86, 0xFF})).bytes;
    ASSERT_GT(heard.size(), short_ack.size());
    EXPECT_NE(heard[0], 0x46);
    heard.erase(heard.begin(), heard.end() - static_cast<std::ptrdiff_t>(short_ack.size()));
    EXPECT_EQ(heard, short_ack);
}

TEST(SimulatedChip, RunsAtTwiceItsCrystalWhenItsOptionSaysSo) {
    for (const char* model : {"VKM47H516RK", "VKM47H58RK+"}) {
        ChipConfig config = chip_of(model, 11059200);
        config.double_speed = true;
        ChipDriver driver(config);
        EXPECT_NEAR(clock_told(driver.connect()), 22118400, 2061) << model;
    }
}

// Nothing that a line can bring may hurt the chip.
TEST(SimulatedChip, SurvivesRandomBytes) {
    std::uint32_t random = 12345;
    const auto next = [&random] { return (random = random * 1664525 + 1013904223) >> 24; };
    for (const char* model : {"VKM47H516RK", "VKM47W516AD", "VKM47H58RK+", "VKM26H2052",
                              "VKM26H5401", "VKM26H5428", "VKM27J060"}) {
        ChipDriver driver(chip_of(model));
        driver.connect();
        for (int round = 0; round < 3000; ++round) {
            // Whole frames of every command with random bodies, so that they get through.
            Bytes frame = {0x46, 0xB9, 0x6A, 0x00, 0x00};
            const std::size_t body = 1 + next() % 40;
            for (std::size_t i = 0; i < body; ++i)
                frame.push_back(static_cast<std::uint8_t>(next()));
            if (next() % 2 == 0) {
                const int commands[] = {0x00, 0x30, 0x50, 0x80, 0x84, 0x86, 0x8A, 0x8D, 0x8F};
                frame[5] = static_cast<std::uint8_t>(commands[next() % std::size(commands)]);
            }
            frame[4] = static_cast<std::uint8_t>(frame.size());
            frame.push_back(sum(std::span(frame).subspan(2)));
            frame.push_back(0x16);
            driver.send(frame, driver.chip.rate() > 0 ? driver.chip.rate() : 1200);
            driver.listen(1ms);
            if (driver.chip.state() == ChipState::running) driver.chip.power_cycle(driver.now, 1ms);
        }
        EXPECT_FALSE(driver.chip.faults().empty());
        EXPECT_LE(driver.chip.faults().size(), 500U);
    }
}

}  // namespace
}  // namespace vkm::test
