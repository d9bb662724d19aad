// Places in a page of hexadecimal text: the digits that can be overwritten, the byte
// behind a digit, and a number that is to be shown.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "image/hex_edit.h"
#include "image/hex_page.h"

namespace vkm {
namespace {

// A page has two line breaks before its first row; a full row is 58 characters and CR LF.
constexpr std::int32_t page_head = 4;
constexpr std::int32_t row_length = 60;
constexpr std::int32_t first_column = 10;

std::vector<std::uint8_t> bytes_up_to(std::size_t count) {
    std::vector<std::uint8_t> bytes(count);
    for (std::size_t i = 0; i < count; ++i) bytes[i] = static_cast<std::uint8_t>(i * 7 + i / 256);
    return bytes;
}

struct Page {
    std::int64_t first;
    std::int64_t last;
    std::string text;

    // Where the first digit of a byte stands.
    std::int32_t place_of(std::int64_t address) const {
        const std::int64_t begin = first / 16 * 16;
        return static_cast<std::int32_t>(page_head + (address - begin) / 16 * row_length +
                                         first_column + address % 16 * 3);
    }
    std::int64_t begin() const { return first / 16 * 16; }
};

const std::vector<std::uint8_t> image = bytes_up_to(0x12001);

Page page_of(std::int64_t first, std::int64_t last, std::int64_t rows = 62) {
    Page page = {first, last, hex_page(image, first, last, rows)};
    page.last = std::min(last, page.begin() + rows * 16 - 1);
    return page;
}

// Whole and cut pages at both ends of an image.
std::vector<Page> pages() {
    return {page_of(0, 0x3DD),         page_of(0, 0x3DF),
            page_of(0x123, 0x200),     page_of(0, 0),
            page_of(0x10, 0x10),       page_of(0xFF0, 0x100F),
            page_of(0x11C30, 0x12000), page_of(0x12000, 0x12000),
            page_of(0, 0xFFF, 1),      page_of(0x1234, 0x1300, 5),
            page_of(0xFFE0, 0x1001F)};
}

// ---- digits ---------------------------------------------------------------------

TEST(Digits, OfBytesAreFoundAndNothingElse) {
    for (const Page& page : pages()) {
        SCOPED_TRACE(page.text.substr(0, 40));
        std::vector<bool> is_digit(page.text.size() + 4);
        for (std::int64_t address = page.begin(); address <= page.last; ++address) {
            const auto place = static_cast<std::size_t>(page.place_of(address));
            is_digit[place] = is_digit[place + 1] = true;
        }
        const auto end = static_cast<std::int32_t>(page.text.size());
        for (std::int32_t place = 0; place <= end + 3; ++place)
            ASSERT_EQ(stands_on_digit(page.text, place), is_digit[static_cast<std::size_t>(place)])
                << place;
        EXPECT_FALSE(stands_on_digit(page.text, -1));

        std::int32_t next = end;
        for (std::int32_t place = end; place >= 0; --place) {
            if (is_digit[static_cast<std::size_t>(place)]) next = place;
            ASSERT_EQ(next_digit(page.text, place), next) << place;
        }
        EXPECT_EQ(next_digit(page.text, -5), next);
        EXPECT_EQ(next_digit(page.text, end + 5), end);
    }
}

TEST(Digits, AreFoundFromTheAddressOfTheirRow) {
    const Page page = page_of(0, 0x3DD);
    const std::int32_t second_row = page_head + row_length;
    for (std::int32_t column = 0; column < first_column; ++column)
        EXPECT_EQ(next_digit(page.text, second_row + column), second_row + first_column);
    // Behind the last digit of a row comes the first of the next.
    EXPECT_EQ(next_digit(page.text, page.place_of(0xF) + 2), page.place_of(0x10));
}

TEST(Digits, AreMissingInAPageWithoutRows) {
    for (const std::string text :
         {"\r\n\r\n", "", "\r\n\r\n 000010   ", "12", " 12\r\n", "\n12 "}) {
        for (std::int32_t place = 0; place <= 15; ++place)
            EXPECT_FALSE(stands_on_digit(text, place)) << text;
        EXPECT_EQ(next_digit(text, 0), static_cast<std::int32_t>(text.size()));
    }
}

// ---- the byte ---------------------------------------------------------------------

TEST(ByteBefore, IsThatOfEachDigitOfAPage) {
    for (const Page& page : pages()) {
        SCOPED_TRACE(page.text.substr(0, 40));
        for (std::int64_t address = page.begin(); address <= page.last; ++address)
            for (const std::int32_t digit : {0, 1}) {
                const auto byte = byte_before(page.text, page.place_of(address) + digit + 1);
                ASSERT_TRUE(byte) << address;
                ASSERT_EQ(byte->address, address);
                ASSERT_EQ(byte->value, image[static_cast<std::size_t>(address)]);
            }
    }
}

TEST(ByteBefore, IsNoneWhereNoDigitStandsBefore) {
    const Page page = page_of(0, 0x3DD);
    for (std::int32_t place = -1; place <= static_cast<std::int32_t>(page.text.size()) + 1; ++place)
        EXPECT_EQ(byte_before(page.text, place).has_value(), stands_on_digit(page.text, place - 1))
            << place;
    EXPECT_FALSE(byte_before("", 0));
    EXPECT_FALSE(byte_before("\r\n\r\n", 3));
    // A pair without a row's address before it.
    EXPECT_FALSE(byte_before(" 12 ", 2));
    EXPECT_FALSE(byte_before("   12 ", 4));
}

TEST(ByteBefore, ReadsFiveDigitsOfTheRowsAddress) {
    const auto byte = byte_before("\r\n\r\n 912340   AB CD \r\n", 18);
    ASSERT_TRUE(byte);
    EXPECT_EQ(byte->address, 0x12341);
    EXPECT_EQ(byte->value, 0xCD);
}

// ---- a number in the page ------------------------------------------------------------

TEST(NumberInPage, IsSelectedFromItsFirstDigitToItsLast) {
    const Page page = page_of(0, 0x3DD);
    for (std::int32_t length = 1; length <= 10; ++length)
        for (std::int64_t first = 0; first + length - 1 <= page.last; ++first) {
            const auto place = place_in_page(page.text, 0, first, length);
            ASSERT_TRUE(place) << first;
            ASSERT_EQ(place->start, page.place_of(first));
            const std::int64_t column = first % 16;
            // The step over a line break is 12 characters longer. It is also taken
            // by a number that ends with its row.
            ASSERT_EQ(place->length, length * 3 - 1 + (column + length > 15 ? 12 : 0));
            if (column + length == 16) continue;
            ASSERT_EQ(place->start + place->length, page.place_of(first + length - 1) + 2);
        }
}

TEST(NumberInPage, AcrossARowsEndTakesTheNextRowsHeadIn) {
    const Page page = page_of(0, 0x3DD);
    const auto place = place_in_page(page.text, 0, 0x1E, 4);
    ASSERT_TRUE(place);
    EXPECT_EQ(page.text.substr(static_cast<std::size_t>(place->start),
                               static_cast<std::size_t>(place->length)),
              "D2 D9 \r\n 000020   E0 E7");
}

TEST(NumberInPage, IsNoneWhenItsFirstByteIsNotShown) {
    const Page page = page_of(0x123, 0x200);
    EXPECT_TRUE(place_in_page(page.text, 0x123, 0x120, 4));
    EXPECT_FALSE(place_in_page(page.text, 0x123, 0x11F, 4));
    EXPECT_FALSE(place_in_page(page.text, 0x123, 0, 4));
    EXPECT_FALSE(place_in_page(page.text, 0x123, -3, 4));
    EXPECT_TRUE(place_in_page(page.text, 0x123, 0x200, 1));
    EXPECT_FALSE(place_in_page(page.text, 0x123, 0x201, 1));
    EXPECT_FALSE(place_in_page(page.text, 0x123, 0x210, 1));
    EXPECT_FALSE(place_in_page(page.text, 0x123, 0x7FFFFFFF, 1));
    EXPECT_FALSE(place_in_page("\r\n\r\n", 0, 0, 4));
    EXPECT_FALSE(place_in_page("", 0, 0, 4));
    EXPECT_FALSE(place_in_page(page.text, -1, 0, 4));
}

TEST(HexPage, HasAsManyRowsAsItIsGivenRoomFor) {
    for (const std::int64_t rows : {1, 2, 10, 61, 62})
        EXPECT_EQ(page_of(0, 0x3DF, rows).text.size(),
                  static_cast<std::size_t>(page_head + rows * row_length));
    EXPECT_EQ(hex_page(image, 0x12000, 0x20000), "\r\n\r\n 012000   20 \r\n");
}

}  // namespace
}  // namespace vkm
