// The values of the images: texts, lines, addresses, sums, pages.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "image/checksum_text.h"
#include "image/hex_line.h"
#include "image/hex_page.h"
#include "image/image_buffer.h"
#include "image/path_parts.h"
#include "image/placement.h"
#include "image/save_range.h"
#include "image/start_address.h"
#include "image/text_lines.h"
#include "image_world.h"

namespace vkm {
namespace {

using test::hex_record;
using test::pattern;

// Gives its bytes in pieces of any size, and counts.
class PieceReader final : public FileReader {
  public:
    PieceReader(std::string content, std::size_t piece)
        : content_(std::move(content)), piece_(piece) {}
    std::size_t read(std::span<std::uint8_t> room) override {
        const std::size_t count = std::min({room.size(), piece_, content_.size() - at});
        std::memcpy(room.data(), content_.data() + at, count);
        at += count;
        return count;
    }
    std::size_t at = 0;

  private:
    std::string content_;
    std::size_t piece_;
};

std::vector<std::string> all_lines(const std::string& content, std::size_t piece = 100000) {
    PieceReader reader(content, piece);
    TextLines lines(&reader);
    std::vector<std::string> all;
    for (;;) {
        const TextLines::Step step = lines.next();
        if (step == TextLines::Step::end) return all;
        if (step == TextLines::Step::line) all.push_back(lines.line().Kept);
    }
}

HexLine line_of(std::string_view digits) {
    return read_hex_line(digits, digits.size());
}

// ---- lines of a file --------------------------------------------------------

TEST(TextLines, EndAtLfOrCrLfOrTheEndOfTheFile) {
    const std::vector<std::string> expected = {"one", "two", "", "three", "four"};
    for (std::size_t piece : {1u, 2u, 3u, 7u, 100u})
        EXPECT_EQ(all_lines("one\r\ntwo\n\r\nthree\nfour", piece), expected) << piece;
    EXPECT_EQ(all_lines("one\r\n"), std::vector<std::string>{"one"});
    EXPECT_EQ(all_lines("one\r"), std::vector<std::string>{"one"});
    EXPECT_EQ(all_lines("a\rb\n"), std::vector<std::string>{"a\rb"});
    EXPECT_TRUE(all_lines("").empty());
    EXPECT_EQ(all_lines("\n\n"), (std::vector<std::string>{"", ""}));
}

TEST(TextLines, OfNoFileAreNone) {
    TextLines lines(nullptr);
    EXPECT_EQ(lines.next(), TextLines::Step::end);
    EXPECT_EQ(lines.next(), TextLines::Step::end);
}

TEST(TextLines, KeepOnlyWhatARecordCanUseOfALongLine) {
    PieceReader reader(":" + std::string(1 << 20, '0') + "\r\n:next\n", 100000);
    TextLines lines(&reader);
    int steps = 1;
    while (lines.next() == TextLines::Step::more) ++steps;
    EXPECT_GT(steps, 10);  // the event loop gets its turns inside the line too
    EXPECT_EQ(lines.line().Kept.size(), 523u);
    EXPECT_EQ(lines.line().Length, (1u << 20) + 1);
    EXPECT_EQ(lines.next(), TextLines::Step::line);
    EXPECT_EQ(lines.line().Kept, ":next");
    EXPECT_EQ(lines.line().Length, 5u);
}

TEST(TextLines, ALineOfExactlyTheKeptLengthLosesOnlyItsLineEnd) {
    for (std::size_t length : {522u, 523u, 524u}) {
        PieceReader reader(std::string(length, '1') + "\r\n", 16);
        TextLines lines(&reader);
        while (lines.next() == TextLines::Step::more) {
        }
        EXPECT_EQ(lines.line().Length, length);
        EXPECT_EQ(lines.line().Kept, std::string(std::min<std::size_t>(length, 523), '1'));
    }
}

// ---- a record ---------------------------------------------------------------

TEST(HexLine, TakesAddressTypeAndDataFromItsFields) {
    const HexLine line = line_of("0312340041424305");
    EXPECT_EQ(record_address(line), 0x1234);
    EXPECT_EQ(record_type(line), 0);
    const auto data = record_data(line);
    EXPECT_EQ(std::vector<std::uint8_t>(data.begin(), data.end()),
              (std::vector<std::uint8_t>{0x41, 0x42, 0x43}));
}

TEST(HexLine, IsGoodWhenTheSumOfItsFieldsAndItsChecksumIsAMultipleOf256) {
    EXPECT_TRUE(line_of("00000001FF").Good);
    EXPECT_TRUE(line_of("00000001ff").Good);
    EXPECT_FALSE(line_of("00000001FE").Good);
    EXPECT_TRUE(line_of("0000000000").Good);
    EXPECT_TRUE(line_of("01000000FF00").Good);
    EXPECT_FALSE(line_of("01000000FF01").Good);
}

TEST(HexLine, TakesItsLengthFromTheTextAndNotFromTheLengthField) {
    // The length field says 1; three bytes stand there.
    const HexLine line = line_of("01000000010203F9");
    EXPECT_TRUE(line.Good);
    EXPECT_EQ(record_data(line).size(), 3u);
    // It says 16; one stands there.
    EXPECT_EQ(record_data(line_of("1000000041AF")).size(), 1u);
}

TEST(HexLine, ReadsAPairThatIsntHexadecimalAs0) {
    const HexLine line = line_of("03000000XX4 G13D");
    const auto data = record_data(line);
    ASSERT_EQ(data.size(), 3u);
    EXPECT_EQ(data[0], 0);
    EXPECT_EQ(data[1], 0);
    EXPECT_EQ(data[2], 0);
}

TEST(HexLine, OfOddLengthIsRoundedToTheNearestEvenFieldCount) {
    // 11 characters: 3.5 goes to 4, so the last digit alone is the checksum.
    EXPECT_EQ(line_of("0100000041B").Last_Data_Field, 4);
    EXPECT_TRUE(line_of("010000000FB").Good == false);
    EXPECT_TRUE(line_of("01000000F4B").Good);  // 01 + F4 + 0B is 256
    // 13 characters: 4.5 goes to 4 as well, and the last character isn't looked at.
    EXPECT_EQ(line_of("0100000041BE7").Last_Data_Field, 4);
    EXPECT_TRUE(line_of("0100000041BE7").Good);
    // 15: 5.5 goes to 6.
    EXPECT_EQ(line_of("020000004142BE7").Last_Data_Field, 6);
}

TEST(HexLine, WithTrailingBlanksFails) {
    EXPECT_FALSE(line_of("00000001FF ").Good);
    EXPECT_FALSE(line_of("00000001FF  ").Good);
    EXPECT_FALSE(line_of("0100000041BE  ").Good);
    EXPECT_FALSE(line_of("0100000041BE   ").Good);
    EXPECT_FALSE(line_of("0100000041BE    ").Good);
    // The sum of the shifted fields is 0 and so is a blank pair; still no checksum.
    EXPECT_EQ((1 + 0x41 + 0xBE) % 256, 0);
}

TEST(HexLine, ThatIsShortHasNoDataAndIsBadWithoutAChecksum) {
    for (std::string_view digits : {"", "1", "12", "123", "1234", "12345", "0000"}) {
        const HexLine line = line_of(digits);
        EXPECT_TRUE(record_data(line).empty()) << digits;
    }
    EXPECT_FALSE(line_of("").Good);
    EXPECT_FALSE(line_of("1").Good);
    EXPECT_FALSE(line_of("12").Good);
    EXPECT_TRUE(line_of("00").Good);
    EXPECT_TRUE(line_of("0000").Good);
    // Its last pair stands where the type stands.
    EXPECT_EQ(record_type(line_of("00000001")), end_record);
    EXPECT_FALSE(line_of("00000001").Good);
}

TEST(HexLine, LosesWhatLiesBeyond261FieldsTogetherWithItsChecksum) {
    std::string digits = "FF000000";
    for (int i = 0; i < 300; ++i) digits += "01";
    const HexLine line = read_hex_line(std::string_view(digits).substr(0, 522), digits.size());
    EXPECT_TRUE(line.Good);  // nothing to test
    EXPECT_EQ(record_data(line).size(), 257u);
    // The longest line whose checksum counts: 260 pairs and the checksum.
    const std::string longest(522, '0');
    EXPECT_TRUE(line_of(longest).Good);
    EXPECT_FALSE(line_of(longest.substr(2) + "01").Good);
    EXPECT_EQ(record_data(line_of(longest)).size(), 256u);
    // One pair more: the checksum is lost.
    EXPECT_TRUE(line_of(std::string(522, '0') + "01").Good);
}

TEST(HexLine, OfAnyCharactersReadsNoFieldOutsideTheLine) {
    for (std::size_t length = 0; length < 600; ++length) {
        const std::string digits(length, 'F');
        const HexLine line = read_hex_line(std::string_view(digits).substr(0, 522), length);
        EXPECT_LE(record_data(line).size(), 257u);
    }
    EXPECT_TRUE(read_hex_line("00", ~std::size_t{0}).Good);
}

// ---- placing ----------------------------------------------------------------

Placement empty_placement(std::size_t size, std::int32_t start = 0) {
    return {.Bytes = std::vector<std::uint8_t>(size), .Start = start};
}

HexLine parsed(const std::string& record) {
    return line_of(std::string_view(record).substr(1, record.size() - 3));
}

TEST(PlaceRecord, StoresBehindTheStartAndCountsSumAndHigh) {
    Placement file = empty_placement(ap_buffer_size, 0x100);
    place_record(file, parsed(hex_record(0x20, 0, {1, 2, 0xFF})), 0xFFFF);
    EXPECT_EQ(file.Bytes[0x120], 1);
    EXPECT_EQ(file.Bytes[0x122], 0xFF);
    EXPECT_EQ(file.High, 0x122);
    EXPECT_EQ(file.Sum, 0x102u);
    place_record(file, parsed(hex_record(0, 0, {7})), 0xFFFF);
    EXPECT_EQ(file.High, 0x122);
}

TEST(PlaceRecord, DropsAboveTheTopButCountsIt) {
    Placement file = empty_placement(ap_buffer_size);
    place_record(file, parsed(hex_record(0x3BFE, 0, {1, 2, 3, 4})), 0x3BFF);
    EXPECT_EQ(file.Bytes[0x3BFF], 2);
    EXPECT_EQ(file.Bytes[0x3C00], 0);
    EXPECT_EQ(file.Sum, 10u);
    EXPECT_EQ(file.High, 0x3C01);
}

TEST(PlaceRecord, NeverStoresOutsideTheImage) {
    Placement file = empty_placement(data_buffer_size);
    place_record(file, parsed(hex_record(0x7FFF, 0, {1, 2, 3})), 0xFFFF);
    EXPECT_EQ(file.Bytes[0x7FFF], 1);
    EXPECT_EQ(file.Bytes[0x8000], 2);
    EXPECT_EQ(file.High, 0x8001);
    Placement top = empty_placement(ap_buffer_size, 0xFFFF);
    place_record(top, parsed(hex_record(0xFFFF, 0, pattern(255))), 0x11FFF);
    EXPECT_EQ(top.High, 0xFFFF + 0xFFFF + 254);
    EXPECT_EQ(std::count(top.Bytes.begin(), top.Bytes.end(), 0), long{ap_buffer_size});
}

void place_all(Placement& file, FileReader& reader) {
    begin_binary(file);
    while (place_piece(file, reader)) {
    }
}

TEST(PlaceBinary, StoresByteForByteInPiecesOfAnySize) {
    const std::vector<std::uint8_t> bytes = pattern(1000);
    for (std::size_t piece : {1u, 3u, 999u, 5000u}) {
        PieceReader reader(std::string(bytes.begin(), bytes.end()), piece);
        Placement file = empty_placement(data_buffer_size, 0x20);
        place_all(file, reader);
        EXPECT_EQ(file.High, 0x20 + 999);
        EXPECT_TRUE(std::equal(bytes.begin(), bytes.end(), file.Bytes.begin() + 0x20));
        std::uint32_t sum = 0;
        for (std::uint8_t byte : bytes) sum += byte;
        EXPECT_EQ(file.Sum, sum);
    }
}

TEST(PlaceBinary, OfNothingEndsOneBelowItsStart) {
    PieceReader reader("", 10);
    Placement file = empty_placement(100, 7);
    place_all(file, reader);
    EXPECT_EQ(file.High, 6);
    EXPECT_EQ(file.Sum, 0u);
}

TEST(PlaceBinary, ThatFillsTheImageEndsAtItsLastIndexAndWithOneByteMoreOneBelow) {
    PieceReader fits(std::string(100, '\1'), 1000);
    Placement file = empty_placement(110, 10);
    place_all(file, fits);
    EXPECT_EQ(file.High, 109);
    EXPECT_EQ(file.Sum, 100u);

    PieceReader excess(std::string(101, '\1'), 1000);
    file = empty_placement(110, 10);
    place_all(file, excess);
    EXPECT_EQ(file.High, 108);
    EXPECT_EQ(file.Sum, 100u);
    EXPECT_EQ(file.Bytes[109], 1);

    PieceReader long_file(std::string(100000, '\1'), 1000);
    file = empty_placement(110, 10);
    place_all(file, long_file);
    EXPECT_EQ(file.High, 108);
    EXPECT_EQ(long_file.at, 101u);  // one byte further, to know that there is more
}

TEST(PlaceBinary, ThatStartsAboveTheImageStoresNothing) {
    PieceReader reader(std::string(50, '\1'), 1000);
    Placement file = empty_placement(data_buffer_size, 0xFFF0);
    place_all(file, reader);
    EXPECT_EQ(file.High, 0x7FFF);
    EXPECT_EQ(file.Sum, 0u);
    EXPECT_EQ(std::count(file.Bytes.begin(), file.Bytes.end(), 0), long{data_buffer_size});
}

// ---- start address ----------------------------------------------------------

TEST(StartAddress, ReadsHexadecimalAndAbove7FFFAsNegative) {
    struct Row {
        const char* text;
        std::int32_t value;
        std::int32_t start;
    };
    const Row rows[] = {
        {"0000", 0, 0},
        {"", 0, 0},
        {"   ", 0, 0},
        {" 1a ", 0x1A, 0x1A},
        {"7FFF", 0x7FFF, 0x7FFF},
        {"8000", -0x8000, 0x8000},
        {"FFF0", -16, 0xFFF0},
        {"FFFF", -1, 0xFFFF},
        {"0FFFF", -1, 0xFFFF},
        {"10000", 0x10000, 0x10000},
        {"00000000001000", 0x1000, 0x1000},
        {"xyz", 0, 0},
        {"12xyz", 0x12, 0x12},
        {"-5", 0, 0},
        {"12 34", 0x12, 0x12},
        {"80000000", 0xFFFFFF, 0xFFFFFF},
        {"FFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFF", 0xFFFFFF, 0xFFFFFF},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(start_address(row.text), row.value) << row.text;
        EXPECT_EQ(placement_start(start_address(row.text)), row.start) << row.text;
    }
    EXPECT_EQ(placement_start(-0x7FFFFFFF), 0);
}

TEST(StartAddress, MayReachDataEndForAProgramAndTheLengthOfTheDataMemoryForData) {
    const MCU_Record mcu = test::record_of("VKM47H51RB");  // data memory 1000 to 37FF
    EXPECT_TRUE(start_in_range(0x37FF, mcu, true));
    EXPECT_FALSE(start_in_range(0x3800, mcu, true));
    EXPECT_TRUE(start_in_range(0x27FF, mcu, false));
    EXPECT_FALSE(start_in_range(0x2800, mcu, false));
    EXPECT_TRUE(start_in_range(-1, mcu, true));
    EXPECT_TRUE(start_in_range(-1, mcu, false));
    // Every text of up to four digits from 8000 on passes, none of five does.
    const MCU_Record largest = test::record_of("VKM47H516RK");
    EXPECT_TRUE(start_in_range(start_address("FFFF"), largest, true));
    EXPECT_FALSE(start_in_range(start_address("10000"), largest, true));
}

// ---- sums and pages ---------------------------------------------------------

TEST(ChecksumText, HasSevenDigitsAndSevenBlanksBehindTheH) {
    EXPECT_EQ(checksum_text(0), "0000000H       ");
    EXPECT_EQ(checksum_text(0x1ABC), "0001ABCH       ");
    EXPECT_EQ(checksum_text(0x1ABC, SumTail::plain), "0001ABCH");
    EXPECT_EQ(checksum_text(0x7FFFFFFF), "FFFFFFFH       ");
    EXPECT_EQ(checksum_text(-1), "FFFFFFFH       ");
}

TEST(HexRow, HasABlankSixDigitsThreeBlanksAndThreeCharactersAByte) {
    const std::vector<std::uint8_t> bytes = {0x00, 0x1F, 0xA0, 0xFF};
    EXPECT_EQ(hex_row(bytes, 0, 3), " 000000   00 1F A0 FF \r\n");
    EXPECT_EQ(hex_row(std::vector<std::uint8_t>(ap_buffer_size), 0x12000, 0x12000),
              " 012000   00 \r\n");
    const std::vector<std::uint8_t> row(16);
    EXPECT_EQ(hex_row(row, 0, 15).size(), 58u + 2u);
}

TEST(HexPage, BeginsWithTwoLineBreaksAndHasARowForEach16Bytes) {
    std::vector<std::uint8_t> bytes(64);
    bytes[17] = 0xAB;
    EXPECT_EQ(hex_page(bytes, 0, 18),
              "\r\n\r\n"
              " 000000   00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 \r\n"
              " 000010   00 AB 00 \r\n");
    EXPECT_EQ(hex_page(bytes, 0, 0), "\r\n\r\n 000000   00 \r\n");
    // Rows begin at the multiple of 16 below.
    EXPECT_EQ(hex_page(bytes, 0x13, 0x11), "\r\n\r\n 000010   00 AB \r\n");
}

TEST(HexPage, HoldsAtMost62RowsAndNothingFromOutsideTheImage) {
    const std::vector<std::uint8_t> bytes(ap_buffer_size);
    const std::size_t row = 60;
    EXPECT_EQ(hex_page(bytes, 0, 0xFFFF).size(), 4 + 62 * row);
    EXPECT_EQ(hex_page(bytes, 0, 989).size(), 4 + 62 * row - 2 * 3);
    EXPECT_EQ(hex_page(bytes, 0x12000, 0x20000), "\r\n\r\n 012000   00 \r\n");
    for (std::int64_t first : {std::int64_t{0x12010}, std::int64_t{-16}, std::int64_t{-1},
                               std::int64_t{1} << 40, -(std::int64_t{1} << 40)})
        EXPECT_EQ(hex_page(bytes, first, first + 989), "\r\n\r\n") << first;
    EXPECT_EQ(hex_page({}, 0, 100), "\r\n\r\n");
    EXPECT_EQ(hex_page(bytes, 100, 0), "\r\n\r\n");
}

TEST(ImageAreas, LookAndClearInsideTheArrayAlone) {
    std::vector<std::uint8_t> bytes(16, 1);
    EXPECT_TRUE(holds_data(bytes, -5, 0));
    EXPECT_TRUE(holds_data(bytes, 15, 100));
    EXPECT_FALSE(holds_data(bytes, 16, 100));
    EXPECT_FALSE(holds_data(bytes, 5, 4));
    EXPECT_FALSE(holds_data(bytes, -5, -1));
    clear_area(bytes, 14, 1000);
    clear_area(bytes, -1000, 1);
    clear_area(bytes, 9, 8);
    EXPECT_EQ(std::count(bytes.begin(), bytes.end(), 0), 4);
    EXPECT_EQ(std::count(bytes.begin() + 2, bytes.begin() + 14, 1), 12);
}

TEST(ProgramImage, IsToldByItsNameInAnyCase) {
    Image_Buffer buffer;
    buffer.Buffer_Name = "ap_file";
    EXPECT_TRUE(is_program_image(buffer));
    buffer.Buffer_Name = "Data_File";
    EXPECT_FALSE(is_program_image(buffer));
}

// ---- saving and paths -------------------------------------------------------

TEST(SaveRange, IsReadByFourAndFiveDigitsAndEndsAtFFFF) {
    struct Row {
        const char* start;
        const char* length;
        const char* problem;
    };
    const Row rows[] = {
        {"0", "10000", ""},
        {"1", "10000", "File length too big.\r\n文件长度太大。"},
        {"FFFF", "1", ""},
        {"FFFF", "2", "File length too big.\r\n文件长度太大。"},
        {"0", "0", "File length too small.\r\n文件长度不能小于 0。"},
        {"0", "", "File length too small.\r\n文件长度不能小于 0。"},
        {"0", "junk", "File length too small.\r\n文件长度不能小于 0。"},
        {"0", "FFFFF", "File length too big.\r\n文件长度太大。"},
        {"12340000", "10000", ""},   // the last four digits count
        {" 0 ", " 700010000 ", ""},  // the last five
    };
    for (const Row& row : rows)
        EXPECT_EQ(save_range_problem(save_range(row.start, row.length)), row.problem)
            << row.start << " " << row.length;
}

TEST(SaveRange, RefusesAStartOutsideTheAddressesToo) {
    EXPECT_EQ(save_range_problem({.start = -1, .length = 1}),
              "Start Address is small in 0.\r\n      起始地址小于 0。");
    EXPECT_EQ(save_range_problem({.start = 0x10000, .length = 1}),
              "Start Address is too big.\r\n起始地址太大。");
}

TEST(PathParts, AreTakenApartAtEitherSeparator) {
    EXPECT_EQ(folder_of("/home/a/b.hex"), "/home/a");
    EXPECT_EQ(name_of("/home/a/b.hex"), "b.hex");
    EXPECT_EQ(folder_of("C:\\work\\b.hex"), "C:\\work");
    EXPECT_EQ(name_of("C:\\work\\b.hex"), "b.hex");
    EXPECT_EQ(folder_of("/b.hex"), "/");
    EXPECT_EQ(folder_of("b.hex"), "");
    EXPECT_EQ(name_of("b.hex"), "b.hex");
    EXPECT_EQ(folder_of("C:\\work\\"), "C:\\work");
    EXPECT_TRUE(ends_in_separator("C:\\work\\"));
    EXPECT_TRUE(ends_in_separator("/"));
    EXPECT_FALSE(ends_in_separator(""));
    EXPECT_FALSE(ends_in_separator("/b.hex"));
}

}  // namespace
}  // namespace vkm
