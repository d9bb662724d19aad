// What every realisation of a port reckons with: settings texts, bytes on the
// wire, numbers of devices.
#include <gtest/gtest.h>

#include "platform/port_numbers.h"
#include "platform/port_settings.h"
#include "platform/wire_clock.h"

namespace vkm {
namespace {

// ---- settings texts ------------------------------------------------------------

TEST(PortSettingsText, GivesBaudParityDataAndStopBits) {
    const PortSettings isp = {115200, 'n', 8, 1};
    EXPECT_EQ(parse_port_settings("115200,n,8,1"), isp);
    const PortSettings other = {600, 'e', 7, 2};
    EXPECT_EQ(parse_port_settings("600,e,7,2"), other);
    const PortSettings half = {9600, 'o', 5, 1.5};
    EXPECT_EQ(parse_port_settings("9600,o,5,1.5"), half);
}

TEST(PortSettingsText, TakesParityInEitherCaseAndBlanks) {
    const PortSettings expected = {256000, 'o', 8, 1};
    EXPECT_EQ(parse_port_settings(" 256000 , O , 8 , 1 "), expected);
}

TEST(PortSettingsText, IsRefusedWhenAnyPartIsNone) {
    for (const char* text :
         {"", ",,,", "1200", "1200,n,8", "1200,n,8,1,1", "0,n,8,1", "-1200,n,8,1", "12x,n,8,1",
          "x,n,8,1", "1200,x,8,1", "1200,none,8,1", "1200,n,4,1", "1200,n,9,1", "1200,n,8,0",
          "1200,n,8,3", "1200,n,8,1x", "1200.5,n,8,1", "99999999999999,n,8,1", "4000001,n,8,1"})
        EXPECT_FALSE(parse_port_settings(text)) << text;
}

TEST(PortSettingsText, CountsTheBitsOfAByte) {
    EXPECT_EQ(parse_port_settings("1200,n,8,1")->bits_per_byte(), 10);
    EXPECT_EQ(parse_port_settings("1200,e,8,2")->bits_per_byte(), 12);
    EXPECT_EQ(parse_port_settings("1200,n,5,1.5")->bits_per_byte(), 7.5);
}

// ---- bytes on the wire -----------------------------------------------------------

constexpr Instant start{std::chrono::seconds(100)};

TEST(WireClockTest, CountsWhatHasNotLeftYetAndTheByteOnItsWay) {
    WireClock clock;
    clock.set_rate(1000, 10);  // 10 ms a byte
    EXPECT_EQ(clock.unsent(start), 0u);
    clock.written(3, start);
    EXPECT_EQ(clock.unsent(start), 3u);
    EXPECT_EQ(clock.unsent(start + Milliseconds(9)), 3u);
    EXPECT_EQ(clock.unsent(start + Milliseconds(10)), 2u);
    EXPECT_EQ(clock.unsent(start + Milliseconds(29)), 1u);
    EXPECT_EQ(clock.unsent(start + Milliseconds(30)), 0u);
    EXPECT_EQ(clock.free_at(), start + Milliseconds(30));
}

TEST(WireClockTest, PutsBytesBehindThoseBeforeThem) {
    WireClock clock;
    clock.set_rate(1000, 10);
    clock.written(2, start);
    clock.written(2, start + Milliseconds(5));
    EXPECT_EQ(clock.free_at(), start + Milliseconds(40));
    clock.written(1, start + Milliseconds(100));
    EXPECT_EQ(clock.free_at(), start + Milliseconds(110));
}

TEST(WireClockTest, HasNothingUnsentOnceItWasDropped) {
    WireClock clock;
    clock.set_rate(1200, 10);
    clock.written(500, start);
    clock.dropped();
    EXPECT_EQ(clock.unsent(start), 0u);
    clock.written(1, start);
    EXPECT_EQ(clock.unsent(start), 1u);
}

TEST(WireClockTest, LosesNothingOverALongFrameAtAFastRate) {
    WireClock clock;
    clock.set_rate(256000, 10);
    clock.written(25600, start);
    EXPECT_NEAR(static_cast<double>((clock.free_at() - start).count()), 1e6, 100);
}

// ---- numbers of devices ------------------------------------------------------------

PortNumbers numbers_of(std::initializer_list<const char*> devices) {
    PortNumbers numbers;
    std::size_t place = 0;
    for (const char* device : devices) numbers[place++] = device;
    return numbers;
}

TEST(PortNumbersTest, AreGivenInOrderOfTheList) {
    PortNumbers numbers;
    EXPECT_TRUE(give_port_numbers(numbers, {"/dev/ttyS0", "/dev/ttyUSB0"}));
    EXPECT_EQ(numbers, numbers_of({"/dev/ttyS0", "/dev/ttyUSB0"}));
}

TEST(PortNumbersTest, StayWithTheirDevices) {
    PortNumbers numbers = numbers_of({"/dev/a", "/dev/b"});
    EXPECT_FALSE(give_port_numbers(numbers, {"/dev/b"}));
    EXPECT_FALSE(give_port_numbers(numbers, {}));
    EXPECT_TRUE(give_port_numbers(numbers, {"/dev/c", "/dev/b"}));
    EXPECT_EQ(numbers, numbers_of({"/dev/a", "/dev/b", "/dev/c"}));
}

TEST(PortNumbersTest, FillGapsFirst) {
    PortNumbers numbers = numbers_of({"/dev/a", "", "/dev/c"});
    EXPECT_TRUE(give_port_numbers(numbers, {"/dev/d"}));
    EXPECT_EQ(numbers, numbers_of({"/dev/a", "/dev/d", "/dev/c"}));
}

TEST(PortNumbersTest, AreTakenFromAbsentDevicesWhenAllAreGiven) {
    PortNumbers numbers;
    std::vector<std::string> present;
    for (int i = 0; i < port_number_count; ++i) present.push_back("/dev/p" + std::to_string(i));
    EXPECT_TRUE(give_port_numbers(numbers, present));
    present[4] = "/dev/new";
    EXPECT_TRUE(give_port_numbers(numbers, present));
    EXPECT_EQ(numbers[4], "/dev/new");
    EXPECT_EQ(numbers[3], "/dev/p3");
}

TEST(PortNumbersTest, AreNotGivenToASeventeenthDevice) {
    PortNumbers numbers;
    std::vector<std::string> present;
    for (int i = 0; i <= port_number_count; ++i) present.push_back("/dev/p" + std::to_string(i));
    EXPECT_TRUE(give_port_numbers(numbers, present));
    EXPECT_FALSE(give_port_numbers(numbers, present));
    EXPECT_EQ(numbers[port_number_count - 1], "/dev/p15");
}

}  // namespace
}  // namespace vkm
