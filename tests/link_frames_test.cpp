// The frames of the wire, byte by byte.
#include <gtest/gtest.h>

#include <numeric>
#include <string>

#include "link/exchange_frames.h"
#include "link/frames.h"

namespace vkm {
namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes counting_image(std::size_t size) {
    Bytes image(size);
    for (std::size_t i = 0; i < size; ++i) image[i] = static_cast<std::uint8_t>(i * 7 + 3);
    return image;
}

std::uint32_t plain_sum(const Bytes& bytes, std::size_t from, std::size_t to) {
    std::uint32_t sum = 0;
    for (std::size_t i = from; i <= to; ++i) sum += bytes[i];
    return sum;
}

// The CRC written out once more, the long way.
std::uint16_t modbus_crc(const Bytes& bytes) {
    unsigned crc = 0xFFFF;
    for (const std::uint8_t byte : bytes) {
        crc ^= byte;
        for (int bit = 0; bit < 8; ++bit) crc = (crc & 1) ? (crc >> 1) ^ 0xA001U : crc >> 1;
    }
    return static_cast<std::uint16_t>(crc);
}

TEST(Sums, Sum8KeepsTheLowEightBits) {
    EXPECT_EQ(sum8({}), 0);
    EXPECT_EQ(sum8(Bytes{0x46, 0xB9}), 0xFF);
    EXPECT_EQ(sum8(Bytes{0xFF, 0x02}), 0x01);
    EXPECT_EQ(sum8(Bytes(300, 0xFF)), (300 * 0xFF) % 256);
}

TEST(Sums, Sum16KeepsTheLowSixteenBits) {
    EXPECT_EQ(sum16({}), 0);
    EXPECT_EQ(sum16(Bytes{0x5A, 0xA5, 0x00, 0x08, 0xB0}), 0x01B7);
    EXPECT_EQ(sum16(Bytes(300, 0xFF)), (300 * 0xFF) % 65536);
}

TEST(Crc, TablesBeginAsTheStandardOnesDo) {
    const Bytes low = {0x00, 0xC1, 0x81, 0x40, 0x01, 0xC0, 0x80, 0x41};
    const Bytes high = {0x00, 0xC0, 0xC1, 0x01, 0xC3, 0x03, 0x02, 0xC2};
    for (std::uint8_t i = 0; i < 8; ++i) {
        EXPECT_EQ(GetCRCLo(i), low[i]) << int{i};
        EXPECT_EQ(GetCRCHi(i), high[i]) << int{i};
    }
    EXPECT_EQ(GetCRCLo(255), 0x40);
    EXPECT_EQ(GetCRCHi(255), 0x40);
}

TEST(Crc, KnownCheckValueHasItsLowByteFirst) {
    const std::string digits = "123456789";
    const Bytes bytes(digits.begin(), digits.end());
    EXPECT_EQ(crc16(bytes), (std::array<std::uint8_t, 2>{0x37, 0x4B}));
    EXPECT_EQ(CRC16_bit(bytes), (std::array<std::uint8_t, 2>{0x4B, 0x37}));
    EXPECT_EQ(crc16({}), (std::array<std::uint8_t, 2>{0xFF, 0xFF}));
}

TEST(Crc, TableAndBitFormAgreeOnEveryLength) {
    for (std::size_t size = 0; size < 300; ++size) {
        const Bytes image = counting_image(size);
        const std::uint16_t crc = modbus_crc(image);
        ASSERT_EQ(crc16(image)[0], crc & 0xFF) << size;
        ASSERT_EQ(crc16(image)[1], crc >> 8) << size;
        ASSERT_EQ(CRC16_bit(image)[0], crc >> 8) << size;
        ASSERT_EQ(CRC16_bit(image)[1], crc & 0xFF) << size;
    }
}

TEST(DataFrames, ThreeBytesOfAnImageByteByByte) {
    const Bytes image = {0x00, 0x11, 0x22, 0x33, 0x44};
    const DataFrame frame = build_data_frame(1, 3, 0x30, image);
    const Bytes expected = {0x46, 0xB9, 0x6A, 0x00, 0x0F, 0x30, 0x00, 0x00, 0x00,
                            0x01, 0x00, 0x03, 0x11, 0x22, 0x33, 0x13, 0x16};
    EXPECT_EQ(frame.bytes, expected);
    EXPECT_EQ(frame.data_sum, 0x66);
}

TEST(DataFrames, LengthAddressCountAndSumsHoldForEverySize) {
    const Bytes image = counting_image(65536);
    for (const std::int32_t n : {0, 1, 16, 127, 128, 255, 256, 512, 1024}) {
        const std::int32_t address = 0xFC00 - n;
        const DataFrame frame = build_data_frame(address, n, 0x00, image);
        const Bytes& b = frame.bytes;
        const auto size = static_cast<std::size_t>(n);
        ASSERT_EQ(b.size(), size + 14);
        EXPECT_EQ(b[3] * 256 + b[4], n + 12);
        EXPECT_EQ(b[6], 0);
        EXPECT_EQ(b[7], 0);
        EXPECT_EQ(b[8] * 256 + b[9], address);
        EXPECT_EQ(b[10] * 256 + b[11], n);
        EXPECT_EQ(b[size + 12], plain_sum(b, 2, size + 11) % 256);
        EXPECT_EQ(b[size + 13], 0x16);
        const std::uint32_t data_sum = n == 0 ? 0 : plain_sum(b, 12, size + 11);
        EXPECT_EQ(frame.data_sum, data_sum % 256);
        EXPECT_TRUE(std::equal(b.begin() + 12, b.end() - 2, image.begin() + address));
    }
}

TEST(DataFrames, DemoClassSumsInSixteenBits) {
    const Bytes image(200, 0xFF);
    const DataFrame frame = build_demo_frame(2, 128, 0xB4, image);
    const Bytes& b = frame.bytes;
    ASSERT_EQ(b.size(), 142U);
    const Bytes opening = {0x5A, 0xA5, 0x00, 142, 0xB4, 0x00, 0x00, 0x00, 0x02, 0x00, 0x80};
    EXPECT_EQ(Bytes(b.begin(), b.begin() + 11), opening);
    EXPECT_EQ(frame.data_sum, 128 * 255);
    EXPECT_EQ(b[139] * 256 + b[140], plain_sum(b, 0, 138) % 65536);
    EXPECT_EQ(b[141], 0x16);
}

TEST(DataFrames, BytesOutsideTheImageAreZero) {
    const Bytes image = {0xAA, 0xBB};
    const Bytes behind = build_data_frame(1, 3, 0x00, image).bytes;
    EXPECT_EQ(Bytes(behind.begin() + 12, behind.begin() + 15), (Bytes{0xBB, 0x00, 0x00}));
    const Bytes before = build_data_frame(-1, 2, 0x00, image).bytes;
    EXPECT_EQ(Bytes(before.begin() + 12, before.begin() + 14), (Bytes{0x00, 0xAA}));
    EXPECT_EQ(Bytes(before.begin() + 6, before.begin() + 10), (Bytes{0xFF, 0xFF, 0xFF, 0xFF}));
    EXPECT_EQ(build_data_frame(0x7FFFFFFF, 4, 0x00, image).data_sum, 0);
    EXPECT_EQ(build_data_frame(0, -5, 0x00, image).bytes.size(), 14U);
    EXPECT_EQ(build_data_frame(0, 4, 0x00, {}).bytes.size(), 18U);
    // The length field holds no more than two bytes.
    const Bytes huge = build_data_frame(0, 0x7FFFFFFF, 0x00, image).bytes;
    EXPECT_EQ(huge[3] * 256U + huge[4], huge.size() - 2);
}

TEST(ShortCommands, StatusRead) {
    EXPECT_EQ(build_short_command(0x50, {}),
              (Bytes{0x46, 0xB9, 0x6A, 0x00, 0x06, 0x50, 0xC0, 0x16}));
    EXPECT_EQ(build_status_read(), (Bytes{0x46, 0xB9, 0x6A, 0x00, 0x06, 0x50, 0xC0, 0x16}));
}

TEST(ShortCommands, EraseHasFifteenBytes) {
    const Bytes erase = build_short_command(0x84, Bytes{0xFF, 0x33, 0x33, 0x33, 0x33, 0x33, 0x33});
    EXPECT_EQ(erase, (Bytes{0x46, 0xB9, 0x6A, 0x00, 0x0D, 0x84, 0xFF, 0x33, 0x33, 0x33, 0x33, 0x33,
                            0x33, 0x2C, 0x16}));
}

TEST(ShortCommands, BoardFieldsWithSum) {
    EXPECT_EQ(build_board_command(0x80, 2, 0, false),
              (Bytes{0x46, 0xB9, 0x6A, 0x00, 0x0A, 0x80, 0x02, 0x00, 0x36, 0x01, 0x2D, 0x16}));
    EXPECT_EQ(build_board_command(0x52, 6, 9, false),
              (Bytes{0x46, 0xB9, 0x6A, 0x00, 0x0A, 0x52, 0x06, 0x09, 0x36, 0x01, 0x0C, 0x16}));
}

TEST(ShortCommands, BoardFieldsWithCrc) {
    const Bytes frame = build_board_command(0x80, 2, 0, true);
    const Bytes checked = {0x6A, 0x00, 0x0B, 0x80, 0x02, 0x00, 0x36, 0x01};
    const std::uint16_t crc = modbus_crc(checked);
    Bytes expected = {0x46, 0xB9};
    expected.insert(expected.end(), checked.begin(), checked.end());
    expected.push_back(static_cast<std::uint8_t>(crc & 0xFF));
    expected.push_back(static_cast<std::uint8_t>(crc >> 8));
    expected.push_back(0x16);
    EXPECT_EQ(frame, expected);
    EXPECT_EQ(frame.size(), 13U);
}

TEST(ShortCommands, DemoClass) {
    EXPECT_EQ(build_demo_command(0xB0), (Bytes{0x5A, 0xA5, 0x00, 0x08, 0xB0, 0x01, 0xB7, 0x16}));
    EXPECT_EQ(build_demo_command(0xB5), (Bytes{0x5A, 0xA5, 0x00, 0x08, 0xB5, 0x01, 0xBC, 0x16}));
}

TEST(Triggers, OnlyTheFiveCommandsOfTheTableExist) {
    const std::vector<std::pair<int, int>> sums = {
        {0x80, 0xF0}, {0x81, 0xF1}, {0x82, 0xF2}, {0x8A, 0xFA}, {0x95, 0x05}};
    int found = 0;
    for (int command = 0; command < 256; ++command) {
        const auto trigger = build_trigger(static_cast<std::uint8_t>(command));
        const auto row = std::find_if(sums.begin(), sums.end(),
                                      [&](const auto& pair) { return pair.first == command; });
        ASSERT_EQ(trigger.has_value(), row != sums.end()) << command;
        if (!trigger) continue;
        ++found;
        const Bytes expected = {0xFE,
                                0xFE,
                                0xFE,
                                0xFE,
                                0x46,
                                0xB9,
                                0x6A,
                                0x00,
                                0x06,
                                static_cast<std::uint8_t>(command),
                                static_cast<std::uint8_t>(row->second),
                                0x16};
        EXPECT_EQ(*trigger, expected);
    }
    EXPECT_EQ(found, 5);
    EXPECT_FALSE(build_trigger(0x83));
}

TEST(ExchangeFrames, WatchdogByteByByte) {
    EXPECT_EQ(build_WDT_frame(0x35), (Bytes{0x46, 0xB9, 0x6A, 0x00, 0x07, 0x86, 0x35, 0x2C, 0x16}));
    EXPECT_EQ(build_WDT_frame(0xFF), (Bytes{0x46, 0xB9, 0x6A, 0x00, 0x07, 0x86, 0xFF, 0xF6, 0x16}));
}

TEST(ExchangeFrames, WatchdogPinFromItsText) {
    const std::vector<std::pair<std::string, int>> pins = {{"P3.5", 0x35},
                                                           {"P0.0", 0x00},
                                                           {"P4.3", 0x43},
                                                           {"P1.7", 0x17},
                                                           {"", 0xFF},
                                                           {"P3", 0xFF},
                                                           {"P3.51", 0xFF},
                                                           {"Px.y", 0x00},
                                                           {"    ", 0x00},
                                                           {"P\xE8\x84\x9A", 0xFF},
                                                           {"P3.\xE8\x84\x9A", 0xFF}};
    for (const auto& [text, pin] : pins) EXPECT_EQ(WDT_pin(text), pin) << text;
    for (int port = 0; port <= 4; ++port)
        for (int bit = 0; bit <= 7; ++bit)
            EXPECT_EQ(WDT_pin("P" + std::to_string(port) + "." + std::to_string(bit)),
                      port * 16 + bit);
}

TEST(ExchangeFrames, TestFrameByteByByte) {
    const Bytes frame = build_test_frame({0xFF, 0xFD}, 40, 131);
    EXPECT_EQ(frame, (Bytes{0x46, 0xB9, 0x6A, 0x00, 0x0C, 0x8F, 0xFF, 0xFD, 0x00, 0x06, 0x28, 0x83,
                            0xB2, 0x16}));
}

TEST(ExchangeFrames, SetFrameByteByByte) {
    const Bytes frame = build_set_frame({0xC0, 0xFA}, 23);
    EXPECT_EQ(frame, (Bytes{0x46, 0xB9, 0x6A, 0x00, 0x0B, 0x8E, 0xC0, 0xFA, 0x3F, 0x0C, 0x17, 0x1F,
                            0x16}));
}

TEST(ExchangeFrames, DoubledCountEndsAt254InTheTestAnd255InTheSetFrame) {
    EXPECT_EQ(build_test_frame({0, 0}, 0, 0)[9], 254);
    EXPECT_EQ(build_set_frame({0, 0}, 0)[9], 255);
    for (int low = 0; low < 256; ++low) {
        const ReloadPair pair{0x12, static_cast<std::uint8_t>(low)};
        EXPECT_EQ(build_test_frame(pair, 0, 0)[9], std::min((256 - low) * 2, 254)) << low;
        EXPECT_EQ(build_set_frame(pair, 0)[9], std::min((256 - low) * 2, 255)) << low;
        EXPECT_EQ(build_test_frame(pair, 0, 0)[8], 255 - 0x12);
        EXPECT_EQ(build_set_frame(pair, 0)[8], 255 - 0x12);
    }
}

}  // namespace
}  // namespace vkm
