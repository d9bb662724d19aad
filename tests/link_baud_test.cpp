// The choice of a baud and the figures that go with it.
#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "link/baud.h"

namespace vkm {
namespace {

const std::vector<std::int32_t> rates = {1200,  2400,  4800,  9600,  11520, 12800,
                                         14400, 19200, 28800, 38400, 57600, 115200};

const std::vector<std::int16_t> families = {0, 1, 2, 3, 4, 6};

struct Row {
    std::int32_t clock;
    std::int16_t family;
    std::int32_t limit;
    int count;
    int MaxNo;
    int baud;
    double error;
    int double_baud;  // -1: unchanged
    int high, low;
};

const Row rows[] = {
    {11059200, 2, 115200, 3, 11, 115200, 0, -1, 0xFF, 0xFD},
    {11059200, 3, 115200, 6, 11, 115200, 0, 192, 0xC0, 0xFA},
    {12000000, 2, 115200, 10, 9, 38400, -2.344, -1, 0xFF, 0xF6},
    {12000000, 3, 115200, 13, 10, 57600, 0.16, 192, 0xC0, 0xF3},
    {12000000, 2, 19200, 20, 7, 19200, -2.344, -1, 0xFF, 0xEC},
    {24000000, 2, 115200, 13, 10, 57600, 0.16, -1, 0xFF, 0xF3},
    {4000000, 2, 115200, 10, 5, 12800, -2.344, -1, 0xFF, 0xF6},
    {7372800, 2, 115200, 4, 10, 57600, 0, -1, 0xFF, 0xFC},
};

TEST(CalculateBaud, WorkedValues) {
    for (const Row& row : rows) {
        SCOPED_TRACE(std::to_string(row.clock) + " Hz, family " + std::to_string(row.family));
        BaudChoice choice;
        choice.double_baud = 77;
        EXPECT_EQ(calculate_baud(row.clock, row.family, row.limit, choice), row.count);
        EXPECT_EQ(choice.MaxNo, row.MaxNo);
        EXPECT_EQ(choice.baud, row.baud);
        EXPECT_NEAR(choice.errNumb, row.error, 0.0005);
        EXPECT_EQ(choice.double_baud, row.double_baud < 0 ? 77 : row.double_baud);
        const ReloadPair pair = reload_pair_of(row.count, row.family, choice);
        EXPECT_EQ(pair.high, row.high);
        EXPECT_EQ(pair.low, row.low);
    }
}

TEST(CalculateBaud, StartsAtTheRowGivenAndTrimsItToTheTable) {
    BaudChoice choice{100, 0, 0, 0};
    EXPECT_EQ(calculate_baud(1, 2, 115200, choice), -1);
    EXPECT_EQ(choice.MaxNo, 11);
    choice = {10, 0, 0, 0};
    EXPECT_EQ(calculate_baud(11059200, 2, 115200, choice), 6);
    EXPECT_EQ(choice.baud, 57600);
}

TEST(CalculateBaud, RowZeroIsReachedFromAboveOnly) {
    BaudChoice choice{0, 5, 0, 0};
    EXPECT_EQ(calculate_baud(11059200, 2, 115200, choice), -1);
    EXPECT_EQ(choice.MaxNo, 0);
    EXPECT_EQ(choice.baud, 5);
    choice = {1, 0, 0, 0};
    EXPECT_EQ(calculate_baud(11059200, 2, 1200, choice), 288);
    EXPECT_EQ(choice.MaxNo, 0);
    EXPECT_EQ(choice.baud, 1200);
}

TEST(CalculateBaud, WhatDoesNotFitChangesNothing) {
    for (const std::int16_t family : {std::int16_t{0}, std::int16_t{3}}) {
        BaudChoice choice{7, 123, 4.5F, 9};
        EXPECT_EQ(calculate_baud(11059200, family, 1199, choice), -1);
        EXPECT_EQ(calculate_baud(0, family, 115200, choice), -1);
        EXPECT_EQ(calculate_baud(-1, family, 115200, choice), -1);
        EXPECT_EQ(calculate_baud(30, family, 115200, choice), -1);
        EXPECT_EQ(choice.MaxNo, 7);
        EXPECT_EQ(choice.baud, 123);
        EXPECT_EQ(choice.errNumb, 4.5F);
        EXPECT_EQ(choice.double_baud, 9);
    }
}

// Clocks whose error at a rate is exactly the limit.
TEST(CalculateBaud, LimitsOfTheErrorAreExclusive) {
    BaudChoice choice;
    // 57600 * 1.04 * 32 * 5: 4.0 percent fast at 57600, and 3 or less at 115200.
    EXPECT_EQ(calculate_baud(9584640, 2, 57600, choice), 8);
    EXPECT_EQ(choice.baud, 38400);
    choice = {};
    EXPECT_EQ(calculate_baud(9584639, 2, 57600, choice), 5);
    EXPECT_EQ(choice.baud, 57600);
    // 3.2 percent slow at 57600 for a 16-bit timer.
    choice = {};
    EXPECT_NE(calculate_baud(8921000, 2, 57600, choice), 5);
    choice = {};
    EXPECT_EQ(calculate_baud(8922000, 2, 57600, choice), 5);
    // 3.0 percent slow at 115200 for an 8-bit timer, and at 57600 and 38400 too,
    // where the next division is 3.9 percent fast.
    choice = {};
    EXPECT_EQ(calculate_baud(8939520, 3, 115200, choice), 7);
    EXPECT_EQ(choice.baud, 38400);
    EXPECT_EQ(choice.double_baud, 64);
    choice = {};
    EXPECT_EQ(calculate_baud(8939600, 3, 115200, choice), 5);
    EXPECT_EQ(choice.baud, 115200);
    // 4.0 percent fast at 115200 and 57600 for an 8-bit timer.
    choice = {};
    EXPECT_EQ(calculate_baud(9584640, 6, 115200, choice), 16);
    EXPECT_EQ(choice.baud, 38400);
    choice = {};
    EXPECT_EQ(calculate_baud(9584560, 6, 115200, choice), 5);
    EXPECT_EQ(choice.baud, 115200);
}

// The arithmetic once more in plain double precision, for all clocks that a
// target can have.
struct Made {
    double count, error;
};
Made made_of(double base, double baud) {
    const double count = std::floor(base / baud + 0.5);
    if (count <= 0) return {0, 100};
    return {count, (base / count - baud) / baud * 100};
}

bool allowed(std::int16_t family, const Made& made, double slack) {
    const bool eight_bits = family == 3 || family == 4 || family == 6;
    const double slow = eight_bits ? -3.0 : -3.2;
    const bool count_good = eight_bits ? made.count > 0 && made.count < 256 : made.count > 2;
    return count_good && made.error > slow - slack && made.error < 4.0 + slack;
}

TEST(CalculateBaud, TakesTheHighestRateWithinToleranceForEveryClockAndLimit) {
    const std::vector<std::pair<double, int>> eight_bit_ways = {
        {16, 192}, {32, 64}, {32 * 6, 128}, {32 * 12, 0}};
    const std::vector<std::pair<double, int>> sixteen_bit_ways = {{32, -1}};
    constexpr double near = 1e-4;  // percent; single precision may decide these either way
    int chosen = 0;
    for (std::int32_t clock = 1'000'000; clock <= 40'000'000; clock += 9'973) {
        for (const std::int16_t family : families) {
            const bool eight_bits = family == 3 || family == 4 || family == 6;
            const auto& ways = eight_bits ? eight_bit_ways : sixteen_bit_ways;
            for (const std::int32_t limit : rates) {
                BaudChoice choice;
                const int count = calculate_baud(clock, family, limit, choice);
                bool higher_fits = false;
                bool fits = false;
                for (const std::int32_t rate : rates) {
                    if (rate > limit) break;
                    for (const auto& [divisor, code] : ways) {
                        const Made made = made_of(clock / divisor, rate);
                        if ((count < 0 || rate > choice.baud) && allowed(family, made, -near))
                            higher_fits = true;
                        if (count > 0 && rate == choice.baud && made.count == count &&
                            (!eight_bits || code == choice.double_baud) &&
                            allowed(family, made, near) &&
                            std::abs(made.error - choice.errNumb) < 1e-3)
                            fits = true;
                    }
                }
                ASSERT_FALSE(higher_fits) << clock << " " << family << " " << limit;
                ASSERT_EQ(fits, count > 0) << clock << " " << family << " " << limit;
                if (count > 0) {
                    ASSERT_EQ(rates[static_cast<std::size_t>(choice.MaxNo)], choice.baud);
                    ++chosen;
                }
            }
        }
    }
    EXPECT_GT(chosen, 200'000);
}

TEST(CalculateBaud, EightBitWaysAreTriedFromTheFinestClockOn) {
    // 1200 baud at 11.0592 MHz: 576 and 288 don't fit 8 bits, 48 does.
    BaudChoice choice{1, 0, 0, 0};
    EXPECT_EQ(calculate_baud(11059200, 6, 1200, choice), 48);
    EXPECT_EQ(choice.double_baud, 128);
    // At 36.864 MHz it takes the coarser divisions, one after the other.
    choice = {1, 0, 0, 0};
    EXPECT_EQ(calculate_baud(36864000, 4, 1200, choice), 160);
    EXPECT_EQ(choice.double_baud, 128);
    choice = {1, 0, 0, 0};
    EXPECT_EQ(calculate_baud(73728000, 4, 1200, choice), 160);
    EXPECT_EQ(choice.double_baud, 0);
    choice = {};
    EXPECT_EQ(calculate_baud(36864000, 4, 9600, choice), 240);
    EXPECT_EQ(choice.double_baud, 192);
    choice = {};
    EXPECT_EQ(calculate_baud(36864000, 4, 4800, choice), 240);
    EXPECT_EQ(choice.double_baud, 64);
}

TEST(CalculateBaud, AbsurdClocksAreHarmless) {
    for (const std::int32_t clock : {1, 2, 100, 70'000, 2'000'000'000, 2'147'483'647})
        for (std::int16_t family = -1; family < 8; ++family)
            for (const std::int32_t limit : {-5, 0, 1200, 115200, 2'147'483'647}) {
                BaudChoice choice;
                const int count = calculate_baud(clock, family, limit, choice);
                EXPECT_TRUE(count == -1 || count > 0);
                choice = {};
                choice.MaxNo = -32768;
                EXPECT_EQ(calculate_baud(clock, family, limit, choice), -1);
            }
}

TEST(ReloadPairs, AreSixtyFiveThousandMinusTheCount) {
    EXPECT_EQ(reload_pair(3), (ReloadPair{0xFF, 0xFD}));
    EXPECT_EQ(reload_pair(288), (ReloadPair{0xFE, 0xE0}));
    EXPECT_EQ(reload_pair(65536), (ReloadPair{0x00, 0x00}));
    EXPECT_EQ(reload_pair(1), (ReloadPair{0xFF, 0xFF}));
    EXPECT_EQ(reload_pair(0), (ReloadPair{0x00, 0x00}));
    EXPECT_EQ(reload_pair(-1), (ReloadPair{0x00, 0x01}));
}

TEST(ReloadPairs, OfBothClockModes) {
    // Single speed: the pair stays, the other one has twice the count.
    ReloadPairs pairs = pairs_of_both_modes({0xFF, 0xFD}, false);
    EXPECT_EQ(pairs.present, (ReloadPair{0xFF, 0xFD}));
    EXPECT_EQ(pairs.other, (ReloadPair{0xFF, 0xFA}));
    // Double speed: the pair becomes the other one, the count is halved.
    pairs = pairs_of_both_modes({0xFF, 0xFA}, true);
    EXPECT_EQ(pairs.present, (ReloadPair{0xFF, 0xFD}));
    EXPECT_EQ(pairs.other, (ReloadPair{0xFF, 0xFA}));
    // Halves of a count go to the even one: 13 / 2 = 6, 15 / 2 = 8.
    EXPECT_EQ(pairs_of_both_modes({0xFF, 0xF3}, true).present, (ReloadPair{0xFF, 0xFA}));
    EXPECT_EQ(pairs_of_both_modes({0xFF, 0xF1}, true).present, (ReloadPair{0xFF, 0xF8}));
}

struct WaitRow {
    int family;
    double clock;
    int code;
};

TEST(ExchangeFigures, FlashWaitCode) {
    const WaitRow table[] = {
        {1, 4.4e6, 131},  {1, 4.5e6, 130},  {1, 14.4e6, 130}, {1, 15e6, 129},   {1, 29.4e6, 129},
        {1, 29.5e6, 128}, {1, 30e6, 128},   {2, 5.4e6, 131},  {2, 5.5e6, 130},  {2, 10.4e6, 130},
        {2, 11e6, 129},   {2, 19.4e6, 129}, {2, 19.5e6, 128}, {3, 1.4e6, 135},  {3, 2e6, 134},
        {3, 2.4e6, 134},  {3, 3e6, 133},    {3, 4e6, 132},    {3, 6.4e6, 132},  {3, 7e6, 131},
        {3, 8e6, 131},    {3, 12.4e6, 131}, {3, 13e6, 130},   {3, 20.4e6, 130}, {3, 21e6, 129},
        {3, 24.4e6, 129}, {3, 24.5e6, 128}, {3, 33e6, 128},   {4, 8e6, 131},    {6, 1e6, 135},
        {6, 40e6, 128},   {0, 1e6, 128},    {0, 40e6, 128},   {5, 1e6, 128},    {2, 0, 131},
    };
    for (const WaitRow& row : table)
        EXPECT_EQ(flash_wait_code(static_cast<std::int16_t>(row.family), row.clock), row.code)
            << row.family << " " << row.clock;
}

TEST(ExchangeFigures, DelayOfTheTestIsFortyAndDoublesAboveSixtyEightMegahertz) {
    for (const std::int32_t baud : rates) {
        EXPECT_EQ(test_delay_code(baud, 24e6), 40) << baud;
        EXPECT_EQ(test_delay_code(baud, 6.8e7), 40) << baud;
        EXPECT_EQ(test_delay_code(baud, 6.8e7 + 8), 80) << baud;
    }
    EXPECT_EQ(test_delay_code(0, 24e6), 40);
}

TEST(ExchangeFigures, DelayOfTheSetFollowsTheBaudDownTo23) {
    const std::vector<std::pair<int, int>> table = {{0, 40},     {1200, 38},  {2400, 35},
                                                    {4800, 30},  {9600, 23},  {11520, 23},
                                                    {19200, 23}, {115200, 23}};
    for (const auto& [baud, code] : table) {
        EXPECT_EQ(set_delay_code(baud, 24e6), code) << baud;
        EXPECT_EQ(set_delay_code(baud, 6.8e7), code) << baud;
        EXPECT_EQ(set_delay_code(baud, 6.9e7), 2 * code) << baud;
    }
}

TEST(ExchangeFigures, DelayAt115200ByClock) {
    const std::vector<std::pair<double, int>> table = {
        {1e6, 203},  {2e6, 68},  {3.999e6, 34},  {4e6, 38},     {8e6, 13},   {1.3999e7, 7},
        {1.4e7, 6},  {1.8e7, 4}, {1.8432e7, 4},  {2.0499e7, 4}, {2.05e7, 3}, {2.2199e7, 3},
        {2.22e7, 2}, {3.3e7, 2}, {72572.5, 255}, {0, 255}};
    for (const auto& [clock, delay] : table)
        EXPECT_EQ(test_delay_code_at_115200(clock), delay) << clock;
}

TEST(PortSettings, AreTheTrimmedBaudAndTheFixedRest) {
    EXPECT_EQ(port_settings("1200"), "1200,n,8,1");
    EXPECT_EQ(port_settings(" 115200 "), "115200,n,8,1");
    EXPECT_EQ(port_settings(" 0"), "0,n,8,1");
}

}  // namespace
}  // namespace vkm
