// The terminal's values: bytes read from hexadecimal digits, the ring between arrival
// and display, and the help.
#include <gtest/gtest.h>

#include <numeric>
#include <string>

#include "assistant/assistant_help.h"
#include "assistant/hex_bytes.h"
#include "assistant/receive_ring.h"

namespace vkm {
namespace {

using Bytes = std::vector<std::uint8_t>;

// ---- hexadecimal text -----------------------------------------------------------

TEST(HexText, IsReadTwoDigitsAtATime) {
    const struct {
        const char* text;
        Bytes bytes;
    } cases[] = {
        {"12 34 AB CD FF", {0x12, 0x34, 0xAB, 0xCD, 0xFF}},
        {"1234", {0x12, 0x34}},
        {"12 34", {0x12, 0x34}},
        {"1 2", {0x01, 0x02}},
        {"1 2 ", {0x01, 0x02}},
        {"A", {0x0A}},
        {"0", {0x00}},
        {"123", {0x12, 0x03}},
        {"1 23", {0x01, 0x23}},
        {"12 3 45", {0x12, 0x03, 0x45}},
        {"1   2", {0x01, 0x02}},
        {"12     34", {0x12, 0x34}},
        {"  12 34  ", {0x12, 0x34}},
        {"ab cD Ef", {0xAB, 0xCD, 0xEF}},
        {"00 0 00", {0x00, 0x00, 0x00}},
        {"", {}},
        {" ", {}},
        {"          ", {}},
    };
    for (const auto& c : cases) {
        const Hex_Bytes read = read_hex_bytes(c.text);
        EXPECT_EQ(read.bytes, c.bytes) << '"' << c.text << '"';
        EXPECT_EQ(read.bad_at, 0u) << '"' << c.text << '"';
        EXPECT_EQ(read.bad_character, "") << '"' << c.text << '"';
    }
}

TEST(HexText, OfEveryByteIsReadInBothCases) {
    for (const char* digits : {"0123456789ABCDEF", "0123456789abcdef"}) {
        std::string text;
        for (int byte = 0; byte < 256; ++byte)
            text += std::string() + digits[byte / 16] + digits[byte % 16];
        Bytes all(256);
        std::iota(all.begin(), all.end(), std::uint8_t{0});
        EXPECT_EQ(read_hex_bytes(text).bytes, all);
    }
}

TEST(HexText, NamesItsFirstBadCharacterAndItsPlace) {
    const struct {
        const char* text;
        std::size_t at;
        const char* character;
    } cases[] = {
        {"1G", 2, "G"},
        {"G", 1, "G"},
        {"1g", 2, "G"},  // as it is checked: in capitals
        {"12 34 XY", 7, "X"},
        {"  1G", 2, "G"},  // blanks in front of the text are cut off first
        {"1 G ", 3, "G"},
        {"12中34", 3, "中"},
        {"中", 1, "中"},
        {"串口12", 1, "串"},
        // Counted in characters, whatever each takes in memory.
        {"12 34 文G", 7, "文"},
        {"12 é", 4, "é"},
        {"0x12", 2, "X"},
        {"12,34", 3, ","},
        {"12\r\n34", 3, "\r"},
        {"12\t34", 3, "\t"},
        {"-1", 1, "-"},
        {"１２", 1, "１"},  // full-width digits are none
        {"12　34", 3, "　"},
        {"𝄞", 1, "𝄞"},
    };
    for (const auto& c : cases) {
        const Hex_Bytes read = read_hex_bytes(c.text);
        EXPECT_EQ(read.bad_at, c.at) << c.text;
        EXPECT_EQ(read.bad_character, c.character) << c.text;
        EXPECT_TRUE(read.bytes.empty()) << c.text;
    }
}

TEST(HexText, GivesNoMoreBytesThanAreSentAtOnce) {
    EXPECT_EQ(most_hex_bytes, 4097u);
    for (const std::size_t wanted : {4096u, 4097u, 4098u, 20000u}) {
        std::string text;
        for (std::size_t i = 0; i < wanted; ++i) text += i % 2 ? "5A " : "C3 ";
        const Hex_Bytes read = read_hex_bytes(text);
        EXPECT_EQ(read.bytes.size(), std::min<std::size_t>(wanted, 4097));
        EXPECT_EQ(read.bytes.back(), read.bytes.size() % 2 ? 0xC3 : 0x5A);
        EXPECT_EQ(read.bad_at, 0u);
    }
    // What would not be sent is checked all the same.
    EXPECT_EQ(read_hex_bytes(std::string(9000, '1') + "G").bad_at, 9001u);
}

// ---- ring ---------------------------------------------------------------------------

Bytes counting(std::size_t count, std::size_t first = 0) {
    Bytes bytes(count);
    for (std::size_t i = 0; i < count; ++i)
        bytes[i] = static_cast<std::uint8_t>((first + i) * 7 + (first + i) / 256);
    return bytes;
}

constexpr std::size_t room = Receive_Ring::cells - 1;

Receive_Ring at_place(std::uint16_t place) {
    Receive_Ring ring;
    ring.Ring_Read = ring.Ring_Write = place;
    return ring;
}

TEST(ReceiveRing, IsEmptyAtFirstAndFullWithOneCellFree) {
    Receive_Ring ring;
    EXPECT_TRUE(ring.empty());
    EXPECT_FALSE(ring.full());
    EXPECT_EQ(ring.waiting(), 0);
    ring.store(counting(room - 1));
    EXPECT_FALSE(ring.full());
    ring.store(counting(1));
    EXPECT_TRUE(ring.full());
    EXPECT_FALSE(ring.empty());
    EXPECT_EQ(ring.waiting(), room);
}

TEST(ReceiveRing, HoldsABurstBetweenTwoTicksAtTheHighestRate) {
    EXPECT_GE(room, 256000u / 10 * 35 / 1000);
}

TEST(ReceiveRing, GivesBackInOrderWhatItTookFromAnyPlace) {
    for (std::uint32_t place = 0; place < Receive_Ring::cells; ++place) {
        Receive_Ring ring = at_place(static_cast<std::uint16_t>(place));
        const Bytes bytes = counting(5, place);
        ring.store(bytes);
        ASSERT_EQ(ring.waiting(), 5) << place;
        ASSERT_EQ(ring.take_all(), bytes) << place;
        ASSERT_TRUE(ring.empty()) << place;
        ASSERT_EQ(ring.Ring_Read, (place + 5) % Receive_Ring::cells);
        ASSERT_EQ(ring.Ring_Write, ring.Ring_Read);
    }
}

TEST(ReceiveRing, IsFullAtAnyPlace) {
    const Bytes bytes = counting(room);
    for (const std::uint32_t place :
         {0u, 1u, 2u, 12345u, Receive_Ring::cells - 2u, Receive_Ring::cells - 1u}) {
        Receive_Ring ring = at_place(static_cast<std::uint16_t>(place));
        ring.store(bytes);
        EXPECT_TRUE(ring.full()) << place;
        EXPECT_EQ(ring.waiting(), room) << place;
        EXPECT_EQ(ring.take_all(), bytes) << place;
    }
}

TEST(ReceiveRing, DropsTheRestOfABatchThatFindsNoRoom) {
    Receive_Ring ring = at_place(Receive_Ring::cells - 100);
    const Bytes first = counting(room - 3);
    ring.store(first);
    ring.store(Bytes{1, 2, 3, 4, 5, 6});
    ring.store(Bytes{7});
    EXPECT_TRUE(ring.full());
    Bytes expected = first;
    expected.insert(expected.end(), {1, 2, 3});
    EXPECT_EQ(ring.take_all(), expected);
    // What comes later has room again.
    ring.store(Bytes{8, 9});
    EXPECT_EQ(ring.take_all(), (Bytes{8, 9}));
}

TEST(ReceiveRing, GivesSingleBytesOldestFirst) {
    Receive_Ring ring = at_place(Receive_Ring::cells - 1);
    ring.store(Bytes{1, 2, 3});
    EXPECT_EQ(ring.take(), 1);
    ring.store(Bytes{4});
    EXPECT_EQ(ring.take(), 2);
    EXPECT_EQ(ring.take(), 3);
    EXPECT_EQ(ring.take(), 4);
    EXPECT_TRUE(ring.empty());
}

// ---- help -----------------------------------------------------------------------------

TEST(AssistantHelp, HasItsHeadingsInOrderEachOnALineOfItsOwn) {
    const std::string_view headings[] = {
        "    串口调试助手使用说明",
        "为简单明了，有些不言自明的功能不作介绍。",
        "1 串口调试助手",
        "1.1 设置串口参数：",
        "  串口号：1-16",
        "  波特率：600-256000，>115200 时需要硬件支持。",
        "2 接收区／键盘发送区",
        "2.1 接收数据",
        "2.2 显示接收数据的长度",
        "2.3 在键盘上发送英文字符",
        "3 发送数据",
        "3.1 单字符串发送区",
        "3.1.1自动发送，自动发送周期：",
        "3.2 多字符串发送区",
        "3.2.1发送一个字符串",
        "3.2.2 发送多个字符串(字符串序列)",
        "4 打开/关闭串口区",
        "5 “收缩主窗体”按钮",
    };
    EXPECT_TRUE(assistant_help.starts_with(headings[0]));
    const std::string help = "\r\n" + std::string(assistant_help);
    std::size_t behind = 0;
    for (const std::string_view heading : headings) {
        const std::string line = "\r\n" + std::string(heading) + "\r\n";
        const std::size_t at = help.find(line, behind);
        ASSERT_NE(at, std::string::npos) << heading;
        EXPECT_EQ(help.find(line, at + 1), std::string::npos) << heading;
        behind = at + line.size() - 2;
    }
}

TEST(AssistantHelp, TellsTheLimitsTheExampleAndTheWarning) {
    for (const std::string_view text :
         {"当显示文本长度快达到 62K 时会自动将显示文本删减到 32K",
          "在这里不能发送回车换行，也不能发送汉字",
          "发送后，按钮上的数字作为当前字符串序号保存起来", "自动发送周期最大为 65535mS",
          "12 34 AB CD FF", "4097", "下载后打开串口", "串口号无效", "invalid"})
        EXPECT_NE(assistant_help.find(text), std::string_view::npos) << text;
}

TEST(AssistantHelp, BreaksItsLinesAsTextsOfTheScreenDo) {
    for (std::size_t at = 0; at < assistant_help.size(); ++at) {
        if (assistant_help[at] != '\n') continue;
        ASSERT_GT(at, 0u);
        EXPECT_EQ(assistant_help[at - 1], '\r') << at;
    }
}

}  // namespace
}  // namespace vkm
