// The bytes of a number, and the number behind it.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "increase/number_bytes.h"

namespace vkm {
namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::int32_t hexadecimal = 0;
constexpr std::int32_t packed = 1;
constexpr std::int32_t ascii = 2;

constexpr const char* not_decimal = " '下一个值' 应输入10进制数";
constexpr const char* too_great = "下一值必须小于 2147483648。";
constexpr const char* too_few_bytes = "自动增量字节数太小";
constexpr const char* above_4_bytes = "选择 16进制时，字节数必须小于或等于 4。";
constexpr const char* above_10_bytes = "字节数必须小于或等于 10。";

Auto_Increase_Set set_of(std::int32_t numeral, std::int16_t length, std::string next,
                         std::int16_t increase = 1) {
    return {.Set_Name = "AP_AUTO_INCREASE",
            .Length = length,
            .Next_Value = std::move(next),
            .Increase = increase,
            .Numeral = numeral};
}

std::string problem_of(std::int32_t numeral, std::int16_t length, const std::string& next) {
    const NumberBytes number = number_bytes(set_of(numeral, length, next));
    // A number that can't be written has no bytes at all.
    EXPECT_TRUE(number.problem.empty() || number.bytes.empty());
    return std::string(number.problem);
}

// As they stand in the image, from the lowest address on.
Bytes in_image(std::int32_t numeral, std::int16_t length, const std::string& next) {
    const NumberBytes number = number_bytes(set_of(numeral, length, next));
    EXPECT_EQ(number.problem, "") << next;
    return {number.bytes.rbegin(), number.bytes.rend()};
}

// ---- bytes --------------------------------------------------------------------

TEST(NumberBytes, Of1234InFourBytesAreThoseOfTheManual) {
    EXPECT_EQ(in_image(hexadecimal, 4, "1234"), (Bytes{0x00, 0x00, 0x04, 0xD2}));
    EXPECT_EQ(in_image(packed, 4, "1234"), (Bytes{0x00, 0x00, 0x12, 0x34}));
    EXPECT_EQ(in_image(ascii, 4, "1234"), (Bytes{0x31, 0x32, 0x33, 0x34}));
}

TEST(NumberBytes, ComeLowestOrderFirst) {
    EXPECT_EQ(number_bytes(set_of(hexadecimal, 4, "1234")).bytes, (Bytes{0xD2, 0x04, 0, 0}));
}

// What a number comes to, by arithmetic.
struct Expected {
    std::string problem;
    Bytes bytes;
};

Expected expected_of(std::int32_t numeral, std::int32_t length, std::uint64_t value) {
    if (value > 2147483647) return {too_great, {}};
    const std::uint64_t base = numeral == hexadecimal ? 256 : numeral == packed ? 100 : 10;
    Bytes bytes;
    std::uint64_t rest = value;
    for (std::int32_t i = 0; i < length; ++i) {
        const std::uint64_t digit = rest % base;
        rest /= base;
        const std::uint64_t byte = numeral == hexadecimal ? digit
                                   : numeral == packed    ? digit / 10 * 16 + digit % 10
                                                          : 0x30 + digit;
        bytes.insert(bytes.begin(), static_cast<std::uint8_t>(byte));
    }
    // The text of a hexadecimal 0 is a digit, and needs a byte.
    if (rest != 0 || (numeral == hexadecimal && length == 0)) return {too_few_bytes, {}};
    if (numeral == hexadecimal && length > 4) return {above_4_bytes, {}};
    if (length > 10) return {above_10_bytes, {}};
    return {"", bytes};
}

TEST(NumberBytes, AreTheValueInEveryFormatAndLength) {
    std::vector<std::uint64_t> values = {0, 1, 7, 2147483646, 2147483647, 2147483648, 4294967296};
    for (std::uint64_t power = 10; power <= 10'000'000'000; power *= 10)
        for (std::uint64_t value : {power - 1, power, power + 1, power / 3})
            values.push_back(value);
    for (std::uint64_t power = 16; power <= 0x1'0000'0000; power *= 16)
        for (std::uint64_t value : {power - 1, power}) values.push_back(value);
    int written = 0;
    for (const std::int32_t numeral : {hexadecimal, packed, ascii})
        for (std::int16_t length = 0; length <= 12; ++length)
            for (const std::uint64_t value : values) {
                SCOPED_TRACE("format " + std::to_string(numeral) + ", " + std::to_string(length) +
                             " bytes, " + std::to_string(value));
                const Expected expected = expected_of(numeral, length, value);
                const NumberBytes number =
                    number_bytes(set_of(numeral, length, std::to_string(value)));
                EXPECT_EQ(number.problem, expected.problem);
                const Bytes from_low(number.bytes.rbegin(), number.bytes.rend());
                EXPECT_EQ(from_low, expected.bytes);
                written += number.problem.empty();
            }
    EXPECT_GT(written, 300);
}

TEST(NumberBytes, OfTenPackedBytesEndInZerosWhereTheTextIsUsedUp) {
    EXPECT_EQ(in_image(packed, 10, "1234"), (Bytes{0, 0, 0, 0, 0, 0, 0, 0, 0x12, 0x34}));
    EXPECT_EQ(in_image(packed, 10, "2147483647"),
              (Bytes{0, 0, 0, 0, 0, 0x21, 0x47, 0x48, 0x36, 0x47}));
    EXPECT_EQ(in_image(packed, 10, "5"), (Bytes{0, 0, 0, 0, 0, 0, 0, 0, 0, 0x05}));
}

TEST(NumberBytes, OfTwentyDigitsAreTakenWhenTheirValueIsSmallEnough) {
    EXPECT_EQ(in_image(packed, 10, "00000000001234567890"),
              (Bytes{0, 0, 0, 0, 0, 0x12, 0x34, 0x56, 0x78, 0x90}));
    EXPECT_EQ(in_image(packed, 1, "00000000000000000009"), (Bytes{0x09}));
    EXPECT_EQ(in_image(ascii, 2, "00000000000000000009"), (Bytes{0x30, 0x39}));
    EXPECT_EQ(in_image(hexadecimal, 2, "00000000000000000009"), (Bytes{0x00, 0x09}));
    EXPECT_EQ(problem_of(packed, 10, "10000000001234567890"), too_great);
    EXPECT_EQ(problem_of(packed, 10, "99999999999999999999"), too_great);
    EXPECT_EQ(problem_of(packed, 10, std::string(400, '9')), too_great);
}

TEST(NumberBytes, OfAnEmptyTextAreZero) {
    EXPECT_EQ(in_image(hexadecimal, 2, ""), (Bytes{0, 0}));
    EXPECT_EQ(in_image(packed, 2, ""), (Bytes{0, 0}));
    EXPECT_EQ(in_image(ascii, 2, ""), (Bytes{0x30, 0x30}));
    EXPECT_EQ(in_image(packed, 10, ""), Bytes(10));
}

TEST(NumberBytes, OfANinePassThroughItsAsciiCode) {
    EXPECT_EQ(in_image(ascii, 1, "9"), (Bytes{0x39}));
    EXPECT_EQ(in_image(ascii, 10, "0123456789"),
              (Bytes{0x30, 0x31, 0x32, 0x33, 0x34, 0x35, 0x36, 0x37, 0x38, 0x39}));
}

TEST(NumberBytes, OfALengthBelowOneAreNone) {
    for (const std::int16_t length : std::vector<std::int16_t>{0, -1, -32768}) {
        SCOPED_TRACE(length);
        EXPECT_EQ(problem_of(hexadecimal, length, "0"), too_few_bytes);
        EXPECT_EQ(in_image(packed, length, "0"), Bytes{});
        EXPECT_EQ(in_image(ascii, length, ""), Bytes{});
        EXPECT_EQ(problem_of(packed, length, "1"), too_few_bytes);
        EXPECT_EQ(problem_of(ascii, length, "1"), too_few_bytes);
    }
}

// ---- what is refused ------------------------------------------------------------

TEST(NumberBytes, RefuseATextThatIsNotAllDigits) {
    for (const std::int32_t numeral : {hexadecimal, packed, ascii})
        for (const char* text : {"1 2", " 12", "12 ", "-5", "+5", "1.5", "1e3", "0x10", "A", "１",
                                 "\t1", "123456789012x"}) {
            SCOPED_TRACE(text);
            EXPECT_EQ(problem_of(numeral, 4, text), not_decimal);
        }
}

TEST(NumberBytes, RefuseAValueAbove31Bits) {
    EXPECT_EQ(in_image(hexadecimal, 4, "2147483647"), (Bytes{0x7F, 0xFF, 0xFF, 0xFF}));
    EXPECT_EQ(in_image(packed, 5, "2147483647"), (Bytes{0x21, 0x47, 0x48, 0x36, 0x47}));
    for (const std::int32_t numeral : {hexadecimal, packed, ascii}) {
        EXPECT_EQ(problem_of(numeral, 10, "2147483648"), too_great);
        EXPECT_EQ(problem_of(numeral, 4, "4294967296"), too_great);
    }
}

TEST(NumberBytes, RefuseAValueThatTheirLengthCantHold) {
    EXPECT_EQ(problem_of(hexadecimal, 1, "256"), too_few_bytes);
    EXPECT_EQ(problem_of(hexadecimal, 1, "255"), "");
    EXPECT_EQ(problem_of(hexadecimal, 3, "16777216"), too_few_bytes);
    EXPECT_EQ(problem_of(packed, 1, "100"), too_few_bytes);
    EXPECT_EQ(problem_of(packed, 1, "0100"), too_few_bytes);
    EXPECT_EQ(problem_of(packed, 1, "0099"), "");
    EXPECT_EQ(problem_of(ascii, 3, "1000"), too_few_bytes);
    EXPECT_EQ(problem_of(ascii, 3, "0999"), "");
}

TEST(NumberBytes, RefuseMoreBytesThanTheFormatAllows) {
    EXPECT_EQ(problem_of(hexadecimal, 4, "1"), "");
    EXPECT_EQ(problem_of(hexadecimal, 5, "1"), above_4_bytes);
    EXPECT_EQ(problem_of(packed, 10, "1"), "");
    EXPECT_EQ(problem_of(packed, 11, "1"), above_10_bytes);
    EXPECT_EQ(problem_of(ascii, 10, "1"), "");
    EXPECT_EQ(problem_of(ascii, 11, "1"), above_10_bytes);
    EXPECT_EQ(problem_of(packed, 32767, "1"), above_10_bytes);
    EXPECT_EQ(problem_of(hexadecimal, 32767, "1"), above_4_bytes);
}

TEST(NumberBytes, TellOneProblemOfSeveralInAFixedOrder) {
    EXPECT_EQ(problem_of(hexadecimal, 5, "9999999999x"), not_decimal);
    EXPECT_EQ(problem_of(hexadecimal, 5, "9999999999"), too_great);
    EXPECT_EQ(problem_of(packed, 1, "9999999999"), too_great);
}

// ---- the number behind ------------------------------------------------------------

TEST(NextNumber, HasTheWidthOfItsFormat) {
    // Hexadecimal: the decimal digits of so many bytes, and one to spare.
    const std::size_t widths[] = {1, 3, 6, 8, 11, 13, 15, 18, 20, 23, 25};
    for (std::int16_t length = 1; length <= 10; ++length) {
        const auto bytes = static_cast<std::size_t>(length);
        // There are 15 zeros to fill up with.
        EXPECT_EQ(next_number(set_of(hexadecimal, length, "1")).size(),
                  std::min<std::size_t>(widths[bytes], 16));
        EXPECT_EQ(next_number(set_of(packed, length, "1")).size(),
                  std::min<std::size_t>(bytes * 2, 16));
        EXPECT_EQ(next_number(set_of(ascii, length, "1")).size(), bytes);
    }
    EXPECT_EQ(next_number(set_of(hexadecimal, 4, "1234")), "00000001235");
    EXPECT_EQ(next_number(set_of(packed, 4, "1234")), "00001235");
    EXPECT_EQ(next_number(set_of(ascii, 4, "1234")), "1235");
    EXPECT_EQ(next_number(set_of(packed, 10, "1")), "0000000000000002");
}

TEST(NextNumber, StartsAgainAtZeroBehindTheTopOfAPackedOrAsciiNumber) {
    EXPECT_EQ(next_number(set_of(packed, 1, "99")), "00");
    EXPECT_EQ(next_number(set_of(packed, 2, "9998", 5)), "0003");
    EXPECT_EQ(next_number(set_of(ascii, 4, "9999")), "0000");
    EXPECT_EQ(next_number(set_of(ascii, 1, "8", 3)), "1");
}

TEST(NextNumber, OfAHexadecimalNumberGoesBeyondWhatItsBytesHold) {
    EXPECT_EQ(next_number(set_of(hexadecimal, 1, "255")), "256");
    EXPECT_EQ(problem_of(hexadecimal, 1, next_number(set_of(hexadecimal, 1, "255"))),
              too_few_bytes);
    EXPECT_EQ(next_number(set_of(hexadecimal, 4, "2147483647")), "02147483648");
    EXPECT_EQ(problem_of(hexadecimal, 4, "02147483648"), too_great);
}

TEST(NextNumber, Of2147483647IsRefusedInEveryFormat) {
    for (const std::int32_t numeral : {hexadecimal, packed, ascii}) {
        const auto length = static_cast<std::int16_t>(numeral == hexadecimal ? 4 : 10);
        const std::string next = next_number(set_of(numeral, length, "2147483647"));
        EXPECT_EQ(next.substr(next.size() - 10), "2147483648");
        EXPECT_EQ(problem_of(numeral, length, next), too_great);
    }
}

TEST(NextNumber, TakesAnyIncreaseOf16Bits) {
    EXPECT_EQ(next_number(set_of(packed, 4, "100", 32767)), "00032867");
    EXPECT_EQ(next_number(set_of(packed, 4, "100", 0)), "00000100");
    EXPECT_EQ(next_number(set_of(packed, 4, "100", -1)), "00000099");
    EXPECT_EQ(next_number(set_of(ascii, 3, "5", -5)), "000");
}

TEST(NextNumber, BelowZeroIsRefusedAsANumber) {
    const std::string next = next_number(set_of(packed, 4, "3", -5));
    EXPECT_EQ(next, "000000-2");
    EXPECT_EQ(problem_of(packed, 4, next), not_decimal);
    EXPECT_EQ(problem_of(hexadecimal, 4, next_number(set_of(hexadecimal, 4, "3", -5))),
              not_decimal);
    // The sign may be cut off with the rest.
    EXPECT_EQ(next_number(set_of(ascii, 1, "3", -5)), "2");
}

TEST(NextNumber, IsASumInFloatingPoint) {
    // 2^53 + 1 is no such number.
    EXPECT_EQ(next_number(set_of(packed, 10, "9007199254740993", 0)), "00009007199254740992");
    EXPECT_EQ(next_number(set_of(packed, 10, "", 1)), "0000000000000001");
    EXPECT_EQ(next_number(set_of(packed, 4, "1.5", 1)), "000002.5");
}

TEST(NextNumber, OfALengthBelowOneIsEmpty) {
    EXPECT_EQ(next_number(set_of(packed, 0, "5")), "");
    EXPECT_EQ(next_number(set_of(ascii, -3, "5")), "");
    EXPECT_EQ(next_number(set_of(hexadecimal, 0, "5")), "6");
    EXPECT_EQ(next_number(set_of(hexadecimal, -1, "5")), "");
}

TEST(CountsUp, IsFalseForZeroAlone) {
    EXPECT_FALSE(counts_up(set_of(packed, 4, "")));
    EXPECT_FALSE(counts_up(set_of(packed, 4, "0")));
    EXPECT_FALSE(counts_up(set_of(packed, 4, "0000")));
    EXPECT_TRUE(counts_up(set_of(packed, 4, "0001")));
    EXPECT_TRUE(counts_up(set_of(packed, 4, "-1")));
}

}  // namespace
}  // namespace vkm
