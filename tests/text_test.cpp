#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "text/hexadecimal.h"
#include "text/numbers.h"
#include "text/trimming.h"

namespace vkm {
namespace {

TEST(HexadecimalField, TakesTheLastDigitsOfATrimmedText) {
    EXPECT_EQ(hex_field("3FFF", address_digits), 0x3FFFu);
    EXPECT_EQ(hex_field(" 3fff ", address_digits), 0x3FFFu);
    EXPECT_EQ(hex_field("7", address_digits), 7u);
    EXPECT_EQ(hex_field("123456", address_digits), 0x3456u);
    EXPECT_EQ(hex_field("10000", length_digits), 0x10000u);
    EXPECT_EQ(hex_field("10000", address_digits), 0u);
}

TEST(HexadecimalField, EndsAtTheFirstCharacterThatIsNoDigit) {
    EXPECT_EQ(hex_field("", address_digits), 0u);
    EXPECT_EQ(hex_field("xyz", address_digits), 0u);
    EXPECT_EQ(hex_field("12G4", address_digits), 0x12u);
    EXPECT_EQ(hex_field("文件", address_digits), 0u);
}

TEST(HexadecimalText, HasUpperCaseDigitsAndZerosInFront) {
    EXPECT_EQ(hex_text(0), "0");
    EXPECT_EQ(hex_text(0xABC), "ABC");
    EXPECT_EQ(hex_text(0xABC, 6), "000ABC");
    EXPECT_EQ(hex_text(0x12345678, 4), "12345678");
}

TEST(LeadingNumber, ReadsWhatATextBeginsWith) {
    EXPECT_EQ(leading_number("115200,n,8,1"), 115200);
    EXPECT_EQ(leading_number("  3.8A"), 3.8);
    EXPECT_EQ(leading_number("-12x"), -12);
    EXPECT_EQ(leading_number("+7"), 7);
    EXPECT_EQ(leading_number(".5"), 0.5);
    EXPECT_EQ(leading_number("04095"), 4095);
}

TEST(LeadingNumber, IsZeroForATextWithoutANumber) {
    for (const char* text : {"", "   ", "abc", "-", ".", "inf", "nan", "True"})
        EXPECT_EQ(leading_number(text), 0) << text;
}

TEST(LeadingNumber, IsAlwaysFinite) {
    const std::string huge(1000, '9');
    EXPECT_TRUE(std::isfinite(leading_number(huge)));
}

TEST(LeadingNumber, BeyondADoubleIsTheGreatestAndBelowOneIsZero) {
    constexpr double greatest = std::numeric_limits<double>::max();
    EXPECT_EQ(leading_number(std::string(400, '9') + "x"), greatest);
    EXPECT_EQ(leading_number("-" + std::string(400, '9')), -greatest);
    EXPECT_EQ(leading_number("0." + std::string(400, '0') + "1"), 0);
    EXPECT_EQ(leading_number("-." + std::string(400, '0') + "1"), 0);
    EXPECT_EQ(leading_number(std::string(400, '0') + "7"), 7);
}

TEST(LeadingInteger, StaysWithin32Bits) {
    EXPECT_EQ(leading_integer("99999999999"), std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(leading_integer("-99999999999"), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(leading_integer("3.9"), 3);
    EXPECT_EQ(leading_integer("-3.9"), -3);
}

TEST(Rounding, TakesHalvesToTheEvenNumber) {
    EXPECT_EQ(round_half_even(0.5), 0);
    EXPECT_EQ(round_half_even(1.5), 2);
    EXPECT_EQ(round_half_even(2.5), 2);
    EXPECT_EQ(round_half_even(-0.5), 0);
    EXPECT_EQ(round_half_even(-1.5), -2);
    EXPECT_EQ(round_half_even(-2.5), -2);
    EXPECT_EQ(round_half_even(2.4), 2);
    EXPECT_EQ(round_half_even(2.6), 3);
    EXPECT_EQ(round_half_even(1e300), std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(round_half_even(std::numeric_limits<double>::quiet_NaN()), 0);
}

TEST(ShortestDecimal, ReadsBackTheSame) {
    EXPECT_EQ(shortest_decimal(11.0592), "11.0592");
    EXPECT_EQ(shortest_decimal(24), "24");
    EXPECT_EQ(shortest_decimal(0.125), "0.125");
    EXPECT_EQ(shortest_decimal(-2.5), "-2.5");
}

TEST(Kilobytes, HaveThreeDecimalsAndADigitBeforeThePoint) {
    EXPECT_EQ(kilobytes(128), "0.125");
    EXPECT_EQ(kilobytes(65536), "64.000");
    EXPECT_EQ(kilobytes(0), "0.000");
}

TEST(MinutesAndSeconds, KeepTwoDigitsEach) {
    EXPECT_EQ(minutes_seconds(0), "00:00");
    EXPECT_EQ(minutes_seconds(75), "01:15");
    EXPECT_EQ(minutes_seconds(5999), "99:59");
    EXPECT_EQ(minutes_seconds(6000), "00:00");
    EXPECT_EQ(minutes_seconds(-5), "00:00");
}

TEST(Texts, AreTrimmedAndRaisedWithoutHarmToChinese) {
    EXPECT_EQ(trimmed(" \t a b \t"), "a b");
    EXPECT_EQ(trimmed("   "), "");
    EXPECT_EQ(upper_case("my.hex 文件 é"), "MY.HEX 文件 é");
}

TEST(Texts, AreCountedInCharacters) {
    EXPECT_EQ(character_count(""), 0u);
    EXPECT_EQ(character_count("abc\r\n"), 5u);
    EXPECT_EQ(character_count("下载 OK"), 5u);
}

TEST(Characters, AreTakenFromEitherEnd) {
    const struct {
        const char* text;
        std::size_t count;
        const char* first;
        const char* last;
    } cases[] = {
        {"", 0, "", ""},
        {"", 5, "", ""},
        {"abc", 0, "", ""},
        {"abc", 1, "a", "c"},
        {"abc", 3, "abc", "abc"},
        {"abc", 9, "abc", "abc"},
        {"中文字", 1, "中", "字"},
        {"中文字", 2, "中文", "文字"},
        {"中文字", 3, "中文字", "中文字"},
        {"a中b", 2, "a中", "中b"},
        {"𝄞x𝄞", 1, "𝄞", "𝄞"},
        {"é中𝄞xé中𝄞", 3, "é中𝄞", "é中𝄞"},
        {"a\r\nb", 2, "a\r", "\nb"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(first_characters(c.text, c.count), c.first) << c.text << ' ' << c.count;
        EXPECT_EQ(last_characters(c.text, c.count), c.last) << c.text << ' ' << c.count;
    }
}

TEST(Characters, OfBothEndsTogetherAreTheText) {
    const std::string text = "a中é𝄞\r\n字z";
    const std::size_t count = character_count(text);
    EXPECT_EQ(count, 8u);
    for (std::size_t first = 0; first <= count; ++first)
        EXPECT_EQ(std::string(first_characters(text, first)) +
                      std::string(last_characters(text, count - first)),
                  text);
}

}  // namespace
}  // namespace vkm
