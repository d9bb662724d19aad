#include <gtest/gtest.h>

#include "simulators/wire.h"

namespace vkm::test {
namespace {

using namespace std::chrono_literals;
using sim::as_heard;
using sim::wire_time;

TEST(Wire, TakesTenBitTimesForAByte) {
    EXPECT_EQ(wire_time(1, 1200), 8333us);
    EXPECT_EQ(wire_time(2, 1200), 16666us);
    EXPECT_EQ(wire_time(1, 115200), 86us);
    EXPECT_EQ(wire_time(142, 115200), 12326us);
    EXPECT_EQ(wire_time(0, 9600), 0us);
    EXPECT_EQ(wire_time(5, 0), 0us);
}

TEST(Wire, NeverMakesBytesOverlapThatStartAtMultiplesOfIt) {
    for (const double baud : {1200.0, 11520.0, 57600.0, 115200.0, 118333.3})
        for (std::size_t i = 0; i < 300; ++i)
            ASSERT_GE(wire_time(i + 1, baud), wire_time(i, baud) + wire_time(1, baud));
}

TEST(Receiver, HearsEveryByteAtItsOwnRateAndWithinTwoAndAHalfPercent) {
    for (const double error : {0.0, 0.01, -0.01, 0.025, -0.025, 0.039, -0.032})
        for (int value = 0; value < 256; ++value) {
            const auto byte = static_cast<std::uint8_t>(value);
            ASSERT_EQ(as_heard(byte, 9600 * (1 + error), 9600), byte) << error;
        }
}

TEST(Receiver, HearsABytesEdgesInTheWrongBitsWhenTheRateIsSixPercentOff) {
    for (const double error : {0.06, -0.06}) {
        int garbled = 0;
        for (int value = 0; value < 256; ++value) {
            const auto byte = static_cast<std::uint8_t>(value);
            if (as_heard(byte, 9600 * (1 + error), 9600) != byte) ++garbled;
        }
        // Half of all bytes have an edge where the last sampling points miss it.
        EXPECT_GE(garbled, 100) << error;
    }
}

TEST(Receiver, GarblesNearlyEverythingAtHalfAndTwiceTheRate) {
    for (const double factor : {0.5, 2.0, 12.0, 1.0 / 12}) {
        int right = 0;
        for (int value = 0; value < 256; ++value) {
            const auto byte = static_cast<std::uint8_t>(value);
            if (as_heard(byte, 9600 * factor, 9600) == byte) ++right;
        }
        EXPECT_LE(right, 4) << factor;
    }
}

TEST(Receiver, HearsWhatItsSamplingPointsFindOfAByteThatIsTooFast) {
    EXPECT_EQ(as_heard(0x00, 2400, 1200), 0xF8);          // it rests from the fourth sample on
    EXPECT_EQ(as_heard(0x01, 2400, 1200), std::nullopt);  // its start bit is over too soon
}

TEST(Receiver, HearsNothingWhereNoStopBitComes) {
    EXPECT_EQ(as_heard(0x00, 600, 1200), std::nullopt);
    EXPECT_EQ(as_heard(0x7F, 1200, 115200), std::nullopt);
}

TEST(Receiver, HearsNothingWithoutARate) {
    EXPECT_EQ(as_heard(0x55, 0, 1200), std::nullopt);
    EXPECT_EQ(as_heard(0x55, 1200, 0), std::nullopt);
    EXPECT_EQ(as_heard(0x55, -1, 1200), std::nullopt);
}

}  // namespace
}  // namespace vkm::test
