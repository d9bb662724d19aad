// Forms in which the simulators' programs are told values.
#include <gtest/gtest.h>

#include <string>

#include "simulators/value_forms.h"

namespace vkm::test {
namespace {

std::string text_or(std::string_view written, std::string otherwise) {
    const auto bytes = sim::parse_text(written);
    return bytes ? std::string(bytes->begin(), bytes->end()) : otherwise;
}

TEST(ValueForms, TakeTextWithControlCharactersInIt) {
    EXPECT_EQ(text_or("plain", "-"), "plain");
    EXPECT_EQ(text_or("", "-"), "");
    EXPECT_EQ(text_or("a\\r\\n\\tb\\\\n", "-"), "a\r\n\tb\\n");
    EXPECT_EQ(text_or("\\xD6\\xD0\\x001", "-"), std::string("\xD6\xD0\0001", 4));
    for (const char* wrong : {"\\", "a\\q", "\\x", "\\x1", "\\xG0"})
        EXPECT_EQ(text_or(wrong, "none"), "none") << wrong;
}

TEST(ValueForms, TakeNumbersWholeAndInTheirRange) {
    EXPECT_EQ(sim::parse_whole("7", 0, 7), 7);
    EXPECT_EQ(sim::parse_whole("-1", -1, 7), -1);
    EXPECT_EQ(sim::parse_number("1e3", 0, 1000), 1000);
    for (const char* wrong : {"", "8", "-2", "1x", " 1", "1.5", "99999999999"})
        EXPECT_FALSE(sim::parse_whole(wrong, -1, 7)) << wrong;
    for (const char* wrong : {"", "nan", "8", "1x"})
        EXPECT_FALSE(sim::parse_number(wrong, 0, 7)) << wrong;
}

TEST(ValueForms, TakeHexadecimalNumbersWholeAndInTheirRange) {
    EXPECT_EQ(sim::parse_hex("0", 0xFF), 0U);
    EXPECT_EQ(sim::parse_hex("7f", 0xFF), 0x7FU);
    EXPECT_EQ(sim::parse_hex("0FF", 0xFF), 0xFFU);
    for (const char* wrong : {"", "100", "-1", "0x1", "1h", " 1", "FFFFFFFFF"})
        EXPECT_FALSE(sim::parse_hex(wrong, 0xFF)) << wrong;
}

}  // namespace
}  // namespace vkm::test
