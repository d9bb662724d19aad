// The reader of project files, whatever stands in them.
#include <gtest/gtest.h>

#include "project/project_reader.h"
#include "support/memory_files.h"

namespace vkm::test {
namespace {

using Bytes = std::vector<std::uint8_t>;

Project_Content read_whole(FileReader* file) {
    Project_Reader reader(file);
    while (reader.read_piece()) continue;
    return reader.content();
}

Project_Content read_text(const std::string& text) {
    MemoryFiles files;
    files.add("p", text);
    return read_whole(files.open("p").get());
}

// A file whose tail is one character over and over.
Project_Content read_long(const std::string& text, char rest, std::uint64_t size) {
    MemoryFiles files;
    MemoryFile& file = files.add("p", text);
    file.size = size;
    file.rest = static_cast<std::uint8_t>(rest);
    return read_whole(files.open("p").get());
}

const std::string whole =
    "VER: 1.1\r\nMCU_Type: X\r\nEND\r\n010203\r\n"
    "Data_File_Begin:\r\ndata_buffer_check_sum: 9\r\n0405\r\nData_File_End\r\n";

void expect_whole(const Project_Content& content) {
    EXPECT_EQ(content.rows, (Project_Rows{{"VER", "1.1"}, {"MCU_Type", "X"}}));
    EXPECT_EQ(content.program.bytes(), (Bytes{1, 2, 3}));
    EXPECT_TRUE(content.program.is_whole(6));
    EXPECT_TRUE(content.has_data);
    EXPECT_EQ(content.data_sum, 9);
    EXPECT_EQ(content.data.bytes(), (Bytes{4, 5}));
    EXPECT_TRUE(content.data.is_whole(9));
    EXPECT_TRUE(content.data.ended());
}

std::string without_returns(std::string text) {
    std::erase(text, '\r');
    return text;
}

TEST(ProjectReader, TakesAFileApart) {
    expect_whole(read_text(whole));
}

TEST(ProjectReader, TakesLineFeedsForLineEndsToo) {
    expect_whole(read_text(without_returns(whole)));
}

TEST(ProjectReader, TakesTheEndOfTheHeaderInAnyCase) {
    for (const char* end : {"END", "end", "End", "eNd"}) {
        std::string text = whole;
        text.replace(text.find("END"), 3, end);
        expect_whole(read_text(text));
    }
}

TEST(ProjectReader, TakesEmptyLinesBehindTheProgramForNothing) {
    std::string text = whole;
    text.insert(text.find("Data_File_Begin"), "\r\n  \t\r\n");
    expect_whole(read_text(text));
    const Project_Content content = read_text("END\r\n0102\r\n\r\n \r\n");
    EXPECT_FALSE(content.has_data);
    EXPECT_TRUE(content.program.is_whole(3));
}

TEST(ProjectReader, PassesOverWhatStandsBehindTheData) {
    expect_whole(read_text(whole + "0607\r\nEND\r\n08"));
}

TEST(ProjectReader, KeepsValuesWithColonsAndDropsLinesWithoutOne) {
    const Project_Content content =
        read_text("File_Name: File Buffer: D:\\a.hex\r\njunk\r\n\r\nEND\r\n01");
    EXPECT_EQ(content.rows, (Project_Rows{{"File_Name", "File Buffer: D:\\a.hex"}}));
}

TEST(ProjectReader, AHeaderWithoutEndHasNoImages) {
    const Project_Content content = read_text("VER: 1.1");
    EXPECT_EQ(content.rows, (Project_Rows{{"VER", "1.1"}}));
    EXPECT_TRUE(content.program.bytes().empty());
    EXPECT_FALSE(content.program.is_whole(0));
    EXPECT_FALSE(content.has_data);
}

TEST(ProjectReader, NoFileAndAnEmptyOneHaveNothing) {
    for (const Project_Content& content : {read_whole(nullptr), read_text("")}) {
        EXPECT_TRUE(content.rows.empty());
        EXPECT_FALSE(content.program.is_whole(0));
        EXPECT_FALSE(content.has_data);
    }
}

TEST(ProjectReader, ALastLineNeedsNoLineEnd) {
    const Project_Content content = read_text("VER: 1.1\r\nEND\r\n0102");
    EXPECT_TRUE(content.program.is_whole(3));
    EXPECT_FALSE(content.program.ended());
    const Project_Content data = read_text("END\n01\nData_File_Begin:\nsum: 5\n05");
    EXPECT_TRUE(data.data.is_whole(5));
    EXPECT_FALSE(data.data.ended());
}

TEST(ProjectReader, ReadsTheSameWhereverItsPiecesEnd) {
    // The header grows until a piece of the file has ended at each of its bytes.
    for (std::size_t length = 16384 - whole.size(); length <= 16384; ++length) {
        const Project_Content content =
            read_text("X: " + std::string(length - 4, 'x') + "\n" + whole);
        ASSERT_EQ(content.rows.size(), 3u) << length;
        ASSERT_EQ(content.rows[2], (Project_Row{"MCU_Type", "X"})) << length;
        ASSERT_TRUE(content.program.is_whole(6)) << length;
        ASSERT_TRUE(content.data.is_whole(content.data_sum)) << length;
        ASSERT_TRUE(content.data.ended()) << length;
    }
}

// ---- a line of digits -----------------------------------------------------------

TEST(ImageLine, IsWholeWithItsSumAlone) {
    const struct {
        const char* digits;
        std::int64_t sum;
        bool whole;
    } cases[] = {
        {"010203", 6, true},     {"010203", 7, false},   {"0102030", 6, false},
        {"01020G", 3, false},    {"01 0203", 6, false},  {" 010203 ", 6, true},
        {"\t010203\r", 6, true}, {"0x010203", 6, false}, {"", 0, false},
        {"  ", 0, false},        {"00", 0, true},        {"ff", 255, true},
        {"FF", 255, true},       {"F F", 255, false},    {"0", 0, false},
        {"G", 0, false},         {"010203;", 6, false},  {"0102\xEF\xBC\x93", 3, false},
        {"-1", 0, false},        {"0102030G", 6, false},
    };
    for (const auto& c : cases) {
        Image_Line line(8);
        line.take(c.digits);
        EXPECT_EQ(line.is_whole(c.sum), c.whole) << c.digits;
    }
}

TEST(ImageLine, TakesAsManyBytesAsItsImageAndNotOneMore) {
    for (const std::size_t count : {7u, 8u, 9u}) {
        Image_Line line(8);
        for (std::size_t i = 0; i < count; ++i) line.take("01");
        EXPECT_EQ(line.bytes().size(), std::min<std::size_t>(count, 8));
        EXPECT_EQ(line.is_whole(8), count == 8) << count;
    }
    Image_Line half(8);
    half.take("01010101010101010");
    EXPECT_FALSE(half.is_whole(8));
}

TEST(ImageLine, OfAFileHoldsTheImagesThatThereAre) {
    const auto text = [](std::size_t program, std::size_t data) {
        std::string digits = "END\n" + std::string(2 * program, '1') +
                             "\nData_File_Begin:\nsum: " + std::to_string(data * 0x11) + "\n" +
                             std::string(2 * data, '1') + "\n";
        return digits;
    };
    const Project_Content content = read_text(text(0x12001, 0x8001));
    EXPECT_TRUE(content.program.is_whole(0x12001 * 0x11));
    EXPECT_TRUE(content.data.is_whole(content.data_sum));
    const Project_Content beyond = read_text(text(0x12002, 0x8002));
    EXPECT_FALSE(beyond.program.is_whole(0x12001 * 0x11));
    EXPECT_FALSE(beyond.program.is_whole(0x12002 * 0x11));
    EXPECT_FALSE(beyond.data.is_whole(beyond.data_sum));
}

// ---- files without measure -------------------------------------------------------

constexpr std::uint64_t huge = 200'000'000;

TEST(HugeProject, AnEndlessLineOfDigitsFillsNoMoreThanTheImage) {
    const Project_Content program = read_long("VER: 1.1\nEND\n", 'A', huge);
    EXPECT_EQ(program.program.bytes().size(), 0x12001u);
    EXPECT_FALSE(program.program.is_whole(0x12001 * 0xAA));
    const Project_Content data = read_long("END\n01\nData_File_Begin:\nsum: 1\n", 'A', huge / 10);
    EXPECT_EQ(data.data.bytes().size(), 0x8001u);
    EXPECT_FALSE(data.data.is_whole(0x8001 * 0xAA));
}

TEST(HugeProject, AnEndlessHeaderLineIsCut) {
    const Project_Content content = read_long("VER: 1.1\nA: ", 'x', huge);
    ASSERT_EQ(content.rows.size(), 2u);
    EXPECT_LE(content.rows[1].value.size(), 32768u);
    EXPECT_GE(content.rows[1].value.size(), 32000u);
}

TEST(HugeProject, MillionsOfRowsAreNotKept) {
    std::string text = "VER: 1.1\n";
    while (text.size() < 12'000'000) text += "a:b\n";
    const Project_Content content = read_text(text + "END\n0102");
    EXPECT_EQ(content.rows.front(), (Project_Row{"VER", "1.1"}));
    EXPECT_LE(content.rows.size(), 1000u);
    EXPECT_TRUE(content.program.is_whole(3));
}

TEST(HugeProject, WhatStandsBehindTheDataIsNotRead) {
    MemoryFiles files;
    MemoryFile& file = files.add("p", whole);
    file.size = huge;
    file.rest = 'A';
    expect_whole(read_whole(files.open("p").get()));
    EXPECT_LE(file.bytes_read, 100'000u);
}

TEST(HugeProject, MillionsOfEmptyLinesBehindTheProgramAreNoData) {
    EXPECT_FALSE(read_long("END\n01\n", '\n', 20'000'000).has_data);
}

}  // namespace
}  // namespace vkm::test
