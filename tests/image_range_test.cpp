// The range rules: what becomes of a placed file, by family, and every box text.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "catalogue/memory_ranges.h"
#include "catalogue/model_traits.h"
#include "image/image_buffer.h"
#include "image/range_messages.h"
#include "image/range_rules.h"
#include "image_world.h"

namespace vkm {
namespace {

enum class Kind { hex, bin };

struct Case {
    const char* model;
    Kind kind;
    bool program = true;
    std::int32_t start = 0;
    std::int32_t high = 0;                 // highest address of the file
    std::vector<std::int32_t> marks = {};  // where the image holds 0x55
    // What comes of it.
    std::int32_t file_high = 0;
    const char* bilingual = "";
    const char* english = "";
    std::vector<std::int32_t> cleared = {};  // marks that are gone afterwards
};

struct Outcome {
    RangeVerdict verdict;
    Placement file;
};

Outcome outcome_of(const MCU_Record& mcu, const Case& c, bool english) {
    Outcome outcome;
    outcome.file.Bytes.resize(c.program ? ap_buffer_size : data_buffer_size);
    outcome.file.Start = c.start;
    outcome.file.High = c.high;
    for (std::int32_t mark : c.marks) outcome.file.Bytes.at(static_cast<std::size_t>(mark)) = 0x55;
    const RangeQuestion question = {.mcu = mcu,
                                    .device = mcu.MCU_Name,
                                    .ISP_Limit = test::shown_end(mcu),
                                    .program_image = c.program,
                                    .english = english};
    outcome.verdict = c.kind == Kind::hex ? apply_hex_rules(question, outcome.file)
                                          : apply_bin_rules(question, outcome.file);
    return outcome;
}

void check(const Case& c) {
    SCOPED_TRACE(std::string(c.model) + (c.kind == Kind::hex ? " hex " : " bin ") +
                 std::to_string(c.start) + " " + std::to_string(c.high));
    const MCU_Record mcu = test::record_of(c.model);
    for (bool english : {false, true}) {
        const Outcome outcome = outcome_of(mcu, c, english);
        EXPECT_EQ(outcome.verdict.File_High, c.file_high);
        EXPECT_EQ(outcome.verdict.message, english ? c.english : c.bilingual);
        for (std::int32_t mark : c.marks) {
            const bool gone = std::ranges::find(c.cleared, mark) != c.cleared.end();
            EXPECT_EQ(outcome.file.Bytes.at(static_cast<std::size_t>(mark)), gone ? 0 : 0x55)
                << mark;
        }
    }
}

// ---- the 5416, 5420 and 5424 ------------------------------------------------

constexpr const char* over_large =
    "文件超出最大有效空间, 超出的部分已被清除。\r\n\r\n               按确定继续";
constexpr const char* over_large_english = "    File over the valid scope.\r\nContinue";

TEST(Large54xxRules, CutAtTheEndOfTheDataMemory) {
    // VKM26H5416: program 0 to 3FFF, data memory 4000 to 6FFF.
    for (Kind kind : {Kind::hex, Kind::bin}) {
        check({.model = "VKM26H5416", .kind = kind, .high = 0x6FFF, .file_high = 0x6FFF});
        check({.model = "VKM26H5416",
               .kind = kind,
               .high = 0x7000,
               .marks = {0x3FFF, 0x5000, 0x7000},
               .file_high = 0x6FFF,
               .bilingual = over_large,
               .english = over_large_english});
        check({.model = "VKM26W5420AD", .kind = kind, .high = 0x6FFF, .file_high = 0x6FFF});
        check({.model = "VKM26H5424", .kind = kind, .high = 0x5FFF, .file_high = 0x5FFF});
        // The data image has addresses of its own.
        check({.model = "VKM26H5416",
               .kind = kind,
               .program = false,
               .high = 0x2FFF,
               .file_high = 0x2FFF});
        check({.model = "VKM26H5416",
               .kind = kind,
               .program = false,
               .high = 0x3000,
               .file_high = 0x2FFF,
               .bilingual = over_large,
               .english = over_large_english});
    }
}

TEST(Large54xxRules, ShowTheSumOfADataFileWithAPlainH) {
    const MCU_Record mcu = test::record_of("VKM26H5416");
    for (Kind kind : {Kind::hex, Kind::bin}) {
        const RangeVerdict program =
            outcome_of(mcu, {.model = "", .kind = kind, .program = true}, false).verdict;
        EXPECT_TRUE(program.sum_of_program_field);
        EXPECT_EQ(program.sum_tail, SumTail::blanks);
        const RangeVerdict data =
            outcome_of(mcu, {.model = "", .kind = kind, .program = false}, false).verdict;
        EXPECT_FALSE(data.sum_of_program_field);
        EXPECT_EQ(data.sum_tail, SumTail::plain);
    }
}

// ---- families 3, 4 and 6 ----------------------------------------------------

TEST(GapRules, ClearTheGapAndTellIt) {
    // VKM26H0552: program 0 to 1FF, gap to FFF, data memory 1000 to 13FF.
    for (Kind kind : {Kind::hex, Kind::bin}) {
        check({.model = "VKM26H0552",
               .kind = kind,
               .high = 0x1FF,
               .marks = {0x1FF},
               .file_high = 0x1FF});
        check({.model = "VKM26H0552",
               .kind = kind,
               .high = 0xFFF,
               .marks = {0x1FF, 0x200, 0xFFF},
               .file_high = 0xFFF,
               .bilingual = "无效区间 200 -- FFF 中有数据, 这些数据已被清除。\r\n\r\n"
                            "\r\n                按确定继续。",
               .english = "    File over the valid scope(200 -- FFF).\r\n"
                          "\r\n                Continue",
               .cleared = {0x200, 0xFFF}});
        // A gap that holds zeros alone is none of the file's business.
        check({.model = "VKM26H3052", .kind = kind, .high = 0xD00, .file_high = 0xD00});
    }
}

constexpr const char* data_seen = "Data Memory 空间有数据。\r\n\r\n\r\n         按确定继续。";
constexpr const char* data_seen_english = "Data Memory contain datas.\r\n\r\n\r\n        Continue";

TEST(GapRules, TellDataInAHexFileByItsBytes) {
    // VKM26H5404: program 0 to FFF, data memory 1000 to 59FF, no gap.
    check({.model = "VKM26H5404",
           .kind = Kind::hex,
           .high = 0x59FF,
           .marks = {0x1000},
           .file_high = 0x59FF,
           .bilingual = data_seen,
           .english = data_seen_english});
    check({.model = "VKM26H5404",
           .kind = Kind::hex,
           .high = 0x59FF,
           .marks = {0x59FF},
           .file_high = 0x59FF,
           .bilingual = data_seen,
           .english = data_seen_english});
    check({.model = "VKM26H5404", .kind = Kind::hex, .high = 0x59FF, .file_high = 0x59FF});
}

TEST(GapRules, TellDataInABinaryFileByItsReach) {
    check({.model = "VKM26H5404",
           .kind = Kind::bin,
           .high = 0x1000,
           .marks = {0x1000},
           .file_high = 0x1000});
    check({.model = "VKM26H5404",
           .kind = Kind::bin,
           .high = 0x1001,
           .file_high = 0x1001,
           .bilingual = data_seen,
           .english = data_seen_english});
}

TEST(GapRules, CutAtTheEndOfTheDataMemory) {
    check({.model = "VKM26H5404",
           .kind = Kind::hex,
           .high = 0x5A00,
           .marks = {0x5A00},
           .file_high = 0x59FF,
           .bilingual =
               "文件超出最大有效空间, 超出的部分已被清除。\r\n\r\n\r\n           按确定继续。",
           .english = "    File over the valid scope.\r\n\r\n\r\n          Continue"});
    check({.model = "VKM26H5404",
           .kind = Kind::bin,
           .high = 0x5A00,
           .file_high = 0x59FF,
           .bilingual = "Data Memory 空间有数据。\r\n\r\n"
                        "文件超出最大有效空间, 超出的部分已被清除。\r\n\r\n"
                        "\r\n           按确定继续。",
           .english = "Data Memory contain datas.\r\n\r\n"
                      "    File over the valid scope.\r\n\r\n"
                      "\r\n          Continue"});
}

TEST(GapRules, TellAllThreeInOneBoxInThisOrder) {
    // A binary file that reaches the data memory has data there, whatever they are.
    for (const Kind kind : {Kind::hex, Kind::bin})
        check({.model = "VKM26W2052AD",
               .kind = kind,
               .high = 0x1400,
               .marks = kind == Kind::hex ? std::vector{0x800, 0x1000} : std::vector{0x800},
               .file_high = 0x13FF,
               .bilingual = "无效区间 800 -- FFF 中有数据, 这些数据已被清除。\r\n\r\n"
                            "Data Memory 空间有数据。\r\n\r\n"
                            "文件超出最大有效空间, 超出的部分已被清除。\r\n\r\n"
                            "\r\n                按确定继续。",
               .english = "    File over the valid scope(800 -- FFF).\r\n"
                          "Data Memory contain datas.\r\n\r\n"
                          "    File over the valid scope.\r\n\r\n"
                          "\r\n                Continue",
               .cleared = {0x800}});
}

TEST(GapRules, TellTheGapAndTheEndWithoutData) {
    // A HEX file above the data memory that leaves the data memory itself empty.
    check({.model = "VKM26W2052AD",
           .kind = Kind::hex,
           .high = 0x1400,
           .marks = {0x800, 0x1400},
           .file_high = 0x13FF,
           .bilingual = "无效区间 800 -- FFF 中有数据, 这些数据已被清除。\r\n\r\n"
                        "文件超出最大有效空间, 超出的部分已被清除。\r\n\r\n"
                        "\r\n                按确定继续。",
           .english = "    File over the valid scope(800 -- FFF).\r\n"
                      "    File over the valid scope.\r\n\r\n"
                      "\r\n                Continue",
           .cleared = {0x800}});
}

TEST(GapRules, HoldForFamilies3And4And6) {
    // Family 6, by its record: it is never chosen in the tree.
    check({.model = "VKM27J008",
           .kind = Kind::hex,
           .high = 0x1FFF,
           .marks = {0x1FFF},
           .file_high = 0x1FFF});
    check({.model = "VKM27J060",
           .kind = Kind::hex,
           .high = 0xF000,
           .file_high = 0xEFFF,
           .bilingual =
               "文件超出最大有效空间, 超出的部分已被清除。\r\n\r\n\r\n           按确定继续。",
           .english = "    File over the valid scope.\r\n\r\n\r\n          Continue"});
    // 5412 has data memory, yet not above 12 K of program; the 5428 has none.
    check({.model = "VKM26H5412",
           .kind = Kind::hex,
           .high = 0x3000,
           .marks = {0x3000},
           .file_high = 0x3000,
           .bilingual = data_seen,
           .english = data_seen_english});
    check({.model = "VKM26H5428",
           .kind = Kind::hex,
           .high = 0x6FFF,
           .marks = {0x6FFF},
           .file_high = 0x6FFF});
    check({.model = "VKM26H5428",
           .kind = Kind::bin,
           .high = 0x6FFF,
           .marks = {0x6FFF},
           .file_high = 0x6FFF});
}

TEST(GapRules, ShowTheSumInTheFieldOfTheImage) {
    const MCU_Record mcu = test::record_of("VKM26H2052");
    for (Kind kind : {Kind::hex, Kind::bin})
        for (bool program : {true, false}) {
            const RangeVerdict verdict =
                outcome_of(mcu, {.model = "", .kind = kind, .program = program}, false).verdict;
            EXPECT_EQ(verdict.sum_of_program_field, program);
            EXPECT_EQ(verdict.sum_tail, SumTail::blanks);
        }
}

TEST(GapRules, LookNoFurtherThanTheDataImageReaches) {
    // Family 6 keeps its data memory above the end of the data image.
    check({.model = "VKM27J060",
           .kind = Kind::hex,
           .program = false,
           .high = 0x7FFF,
           .marks = {0x8000},
           .file_high = 0x7FFF});
}

// ---- families 0, 1 and 2: HEX -----------------------------------------------

constexpr const char* over_hex =
    "    File over the valid scope.\r\n文件超出有效空间, 超出的部分已丢失。\r\n\r\n       "
    "按确定继续。";
constexpr const char* over_hex_english = " File over the valid scope.\r\n\r\n\r\n        Continue";
constexpr const char* data_hex =
    " Data Memory contain datas.\r\n  Data Memory 空间有数据。\r\n\r\n       按确定继续。";
constexpr const char* data_hex_english = " Data Memory contain datas.\r\n\r\n\r\n        Continue";
constexpr const char* both_hex =
    "    File over the valid scope.\r\n文件超出有效空间, 超出的部分已丢失。\r\n\r\n"
    " Data Memory contain datas.\r\n  Data Memory 空间有数据。\r\n\r\n       按确定继续。";
constexpr const char* both_hex_english =
    " File over the valid scope.\r\n\r\n\r\n"
    " Data Memory contain datas.\r\n\r\n\r\n        Continue";

TEST(HexAreaRules, AFileThatFitsGivesNoBox) {
    check({.model = "VKM47H51RB",
           .kind = Kind::hex,
           .high = 0xFFF,
           .marks = {0xFFF},
           .file_high = 0xFFF});
    check({.model = "VKM47W54AD",
           .kind = Kind::hex,
           .high = 0x3FFF,
           .marks = {0x3FFF},
           .file_high = 0x3FFF});
    check({.model = "VKM47H516RK",
           .kind = Kind::hex,
           .high = 0xFFFF,
           .marks = {0xFFFF},
           .file_high = 0xFFFF});
    check({.model = "VKM47H55RK+",
           .kind = Kind::hex,
           .high = 0x4FFF,
           .marks = {0x4FFF},
           .file_high = 0x4FFF});
}

TEST(HexAreaRules, AModelWhoseProgramReachesTheBootBlockKeepsAFileThatEndsThere) {
    // W516AD ends at FBFF, 53RB at 37FF, 61RK+ at F3FF, 516RK+ at F7FF.
    struct Row {
        const char* model;
        std::int32_t end;
        std::int32_t data_end;
    };
    for (const Row& row :
         {Row{"VKM47W516AD", 0xFBFF, 0xFBFF}, Row{"VKM47H53RB", 0x37FF, 0x37FF},
          Row{"VKM47W61RK+", 0xF3FF, 0xF3FF}, Row{"VKM47H516RK+", 0xF7FF, 0xF7FF}}) {
        check({.model = row.model,
               .kind = Kind::hex,
               .high = row.end,
               .marks = {row.end},
               .file_high = row.end});
        check({.model = row.model,
               .kind = Kind::hex,
               .high = row.end + 1,
               .marks = {row.end, row.end + 1},
               .file_high = row.data_end,
               .bilingual = over_hex,
               .english = over_hex_english});
    }
}

TEST(HexAreaRules, DataBehindTheProgramOfFamily2IsToldAndStays) {
    // VKM47H54RK+: program to 3FFF, data memory 4000 to F7FF, boot block from F800.
    check({.model = "VKM47H54RK+",
           .kind = Kind::hex,
           .high = 0x4000,
           .marks = {0x4000},
           .file_high = 0x4000,
           .bilingual = data_hex,
           .english = data_hex_english});
    // Bytes of a file loaded before count too.
    check({.model = "VKM47H54RK+",
           .kind = Kind::hex,
           .high = 0x100,
           .marks = {0xF7FF},
           .file_high = 0x100,
           .bilingual = data_hex,
           .english = data_hex_english});
    check({.model = "VKM47H54RK+",
           .kind = Kind::hex,
           .high = 0x100,
           .marks = {0xF800},
           .file_high = 0x100});
    // Up there it is out of scope and behind the program.
    check({.model = "VKM47H54RK+",
           .kind = Kind::hex,
           .high = 0xF800,
           .marks = {0xF800},
           .file_high = 0xF7FF,
           .bilingual = both_hex,
           .english = both_hex_english});
}

TEST(HexAreaRules, OtherFamiliesLoseWhatLiesBehindTheProgram) {
    // VKM47W54AD: program to 3FFF, boot block from FC00.
    check({.model = "VKM47W54AD",
           .kind = Kind::hex,
           .high = 0x4000,
           .marks = {0x4000},
           .file_high = 0x3FFF,
           .bilingual = over_hex,
           .english = over_hex_english});
    check({.model = "VKM47W54AD",
           .kind = Kind::hex,
           .high = 0xFC00,
           .file_high = 0x3FFF,
           .bilingual = over_hex,
           .english = over_hex_english});
    // A file that fits, over one that didn't: the search finds it and clears.
    check({.model = "VKM47W54AD",
           .kind = Kind::hex,
           .high = 0x100,
           .marks = {0x3FFF, 0x4000, 0x9000, 0xFBFF, 0xFC00},
           .file_high = 0x3FFF,
           .bilingual = over_hex,
           .english = over_hex_english,
           .cleared = {0x4000, 0x9000, 0xFBFF}});
    // Family 0.
    check({.model = "VKM47T58RK",
           .kind = Kind::hex,
           .high = 0x8000,
           .marks = {0x8000},
           .file_high = 0x7FFF,
           .bilingual = over_hex,
           .english = over_hex_english});
    check({.model = "VKM47H516RK",
           .kind = Kind::hex,
           .high = 0x10000,
           .marks = {0x10000},
           .file_high = 0xFFFF,
           .bilingual = over_hex,
           .english = over_hex_english});
}

TEST(HexAreaRules, AHoleInTheMemoryIsClearedAndAboveItLieData) {
    // VKM47H55RK+: program to 4FFF, hole to 7FFF, data memory to F3FF.
    for (const char* model : {"VKM47H55RK+", "VKM47W55RK+"}) {
        check({.model = model,
               .kind = Kind::hex,
               .high = 0x5000,
               .marks = {0x4FFF, 0x5000, 0x7FFF, 0x8000},
               .file_high = 0xF3FF,
               .bilingual = both_hex,
               .english = both_hex_english,
               .cleared = {0x5000, 0x7FFF}});
        check({.model = model,
               .kind = Kind::hex,
               .high = 0x7FFF,
               .marks = {0x7FFF},
               .file_high = 0xF3FF,
               .bilingual = over_hex,
               .english = over_hex_english,
               .cleared = {0x7FFF}});
        check({.model = model,
               .kind = Kind::hex,
               .high = 0xF3FF,
               .marks = {0xF3FF},
               .file_high = 0xF3FF,
               .bilingual = data_hex,
               .english = data_hex_english});
        // What was found before is forgotten: only bytes count, below the boot block.
        check({.model = model,
               .kind = Kind::hex,
               .high = 0xF400,
               .marks = {0xF400},
               .file_high = 0xF400});
        check({.model = model, .kind = Kind::hex, .high = 0x6000, .file_high = 0x6000});
    }
}

TEST(HexAreaRules, ShowTheSumInTheProgramsFieldWhicheverImageIsLoaded) {
    const MCU_Record mcu = test::record_of("VKM47H51RB");
    for (bool program : {true, false}) {
        const RangeVerdict verdict =
            outcome_of(mcu, {.model = "", .kind = Kind::hex, .program = program}, false).verdict;
        EXPECT_TRUE(verdict.sum_of_program_field);
        EXPECT_EQ(verdict.sum_tail, SumTail::blanks);
    }
}

// ---- families 0, 1 and 2: binary --------------------------------------------

constexpr const char* over_bin =
    "    File over the valid scope.\r\n文件超出有效空间, 超出的部分已丢失。\r\n\r\n         "
    "按确定继续。";
constexpr const char* over_bin_english =
    "    File over the valid scope.\r\n\r\n\r\n          Continue";
constexpr const char* data_bin =
    "   Data Memory contain datas.\r\n     Data Memory 空间有数据。\r\n\r\n         按确定继续。";
constexpr const char* data_bin_english =
    "   Data Memory contain datas.\r\n\r\n\r\n          Continue";
constexpr const char* both_bin =
    "    File over the valid scope.\r\n文件超出有效空间, 超出的部分已丢失。\r\n\r\n"
    "   Data Memory contain datas.\r\n     Data Memory 空间有数据。\r\n\r\n         按确定继续。";
constexpr const char* both_bin_english =
    "    File over the valid scope.\r\n\r\n\r\n"
    "   Data Memory contain datas.\r\n\r\n\r\n          Continue";

TEST(BinAreaRules, AFileThatFillsTheChipExactlyGivesNoBox) {
    for (const auto& [model, end] : {std::pair{"VKM47W54AD", 0x3FFF},
                                     {"VKM47W516AD", 0xFBFF},
                                     {"VKM47H516RK", 0xFFFF},
                                     {"VKM47H58RK", 0x7FFF},
                                     {"VKM47H51RB", 0xFFF},
                                     {"VKM47H53RB", 0x37FF},
                                     {"VKM47H55RK+", 0x4FFF},
                                     {"VKM47W61RK+", 0xF3FF}})
        check({.model = model, .kind = Kind::bin, .high = end, .marks = {end}, .file_high = end});
}

TEST(BinAreaRules, OneByteMoreIsCutOff) {
    check({.model = "VKM47W54AD",
           .kind = Kind::bin,
           .high = 0x4000,
           .marks = {0x3FFF, 0x4000},
           .file_high = 0x3FFF,
           .bilingual = over_bin,
           .english = over_bin_english,
           .cleared = {0x4000}});
    // Up to the end of the code space nothing remains, box or not.
    check({.model = "VKM47W54AD",
           .kind = Kind::bin,
           .high = 0x100,
           .marks = {0x3FFF, 0x4000, 0xDFFF, 0xE000},
           .file_high = 0x100,
           .cleared = {0x4000, 0xDFFF}});
    check({.model = "VKM47T58RK",
           .kind = Kind::bin,
           .high = 0x8000,
           .marks = {0x8000, 0xDFFF},
           .file_high = 0x7FFF,
           .bilingual = over_bin,
           .english = over_bin_english,
           .cleared = {0x8000, 0xDFFF}});
    // A program area that reaches the boot block: cut, and the bytes stay.
    check({.model = "VKM47W516AD",
           .kind = Kind::bin,
           .high = 0xFC00,
           .marks = {0xFC00},
           .file_high = 0xFBFF,
           .bilingual = over_bin,
           .english = over_bin_english});
    check({.model = "VKM47H61RK+",
           .kind = Kind::bin,
           .high = 0xF400,
           .marks = {0xF400},
           .file_high = 0xF3FF,
           .bilingual = over_bin,
           .english = over_bin_english});
}

TEST(BinAreaRules, DataBehindTheProgramOfFamily2IsToldAndStays) {
    check({.model = "VKM47H54RK+",
           .kind = Kind::bin,
           .high = 0x4000,
           .marks = {0x4000},
           .file_high = 0x4000,
           .bilingual = data_bin,
           .english = data_bin_english});
    // The boot block isn't looked at.
    check({.model = "VKM47H51RB",
           .kind = Kind::bin,
           .high = 0x12000,
           .marks = {0x3800},
           .file_high = 0x12000,
           .bilingual = data_bin,
           .english = data_bin_english});
}

TEST(BinAreaRules, AHoleInTheMemoryIsClearedAndAboveItLieData) {
    struct Row {
        std::int32_t start;
        std::int32_t high;
        const char* bilingual;
        const char* english;
    };
    const Row rows[] = {
        {0, 0x4FFF, "", ""},
        {0, 0x5000, over_bin, over_bin_english},       // ends in the hole
        {0, 0x7FFF, over_bin, over_bin_english},       //
        {0, 0x8000, both_bin, both_bin_english},       // goes across it
        {0x4FFF, 0x8000, both_bin, both_bin_english},  //
        {0x5000, 0x7FFF, over_bin, over_bin_english},  // lies in it
        {0x5000, 0x8000, both_bin, both_bin_english},  // begins in it
        {0x7FFF, 0x9000, both_bin, both_bin_english},  //
        {0x8000, 0x9000, data_bin, data_bin_english},  // data alone
        {0x8000, 0x7FFF, both_bin, both_bin_english},  // an empty file there
    };
    for (const char* model : {"VKM47H55RK+", "VKM47W55RK+"})
        for (const Row& row : rows)
            check({.model = model,
                   .kind = Kind::bin,
                   .start = row.start,
                   .high = row.high,
                   .marks = {0x4FFF, 0x5000, 0x7FFF, 0x8000},
                   .file_high = row.high,
                   .bilingual = row.bilingual,
                   .english = row.english,
                   .cleared = {0x5000, 0x7FFF}});
}

TEST(BinAreaRules, TheHoleGoesByTheShownNameWhateverTheFamily) {
    // The name on the screen and the record part when a choice was refused.
    const MCU_Record mcu = test::record_of("VKM47W54AD");
    Placement file = {.Bytes = std::vector<std::uint8_t>(ap_buffer_size), .High = 0x4000};
    const RangeQuestion question = {.mcu = mcu,
                                    .device = "VKM47W55RK+",
                                    .ISP_Limit = 0x3FFF,
                                    .program_image = true,
                                    .english = false};
    const RangeVerdict verdict = apply_bin_rules(question, file);
    EXPECT_EQ(verdict.message, over_bin);
    EXPECT_EQ(verdict.File_High, 0x3FFF);  // the cut value, not Data_End
}

TEST(BinAreaRules, ShowTheSumInTheFieldOfTheImage) {
    const MCU_Record mcu = test::record_of("VKM47H51RB");
    for (bool program : {true, false}) {
        const RangeVerdict verdict =
            outcome_of(mcu, {.model = "", .kind = Kind::bin, .program = program}, false).verdict;
        EXPECT_EQ(verdict.sum_of_program_field, program);
        EXPECT_EQ(verdict.sum_tail, SumTail::blanks);
    }
}

// ---- every model ------------------------------------------------------------

bool any_byte(const std::vector<std::uint8_t>& bytes, std::int32_t low, std::int32_t high) {
    for (std::int32_t a = low; a <= high; ++a)
        if (a >= 0 && static_cast<std::size_t>(a) < bytes.size() &&
            bytes[static_cast<std::size_t>(a)] != 0)
            return true;
    return false;
}

// What must hold for a verdict on any file, told independently of the branches.
void check_properties(const MCU_Record& mcu, Kind kind, bool program, const Placement& before,
                      const Placement& after, const RangeVerdict& verdict) {
    const std::int32_t high = before.High;
    ASSERT_EQ(after.Bytes.size(), before.Bytes.size());
    EXPECT_LE(verdict.File_High, std::max(high, mcu.Data_End));
    const bool gap_family = mcu.MCU_Family == 3 || mcu.MCU_Family == 4 || mcu.MCU_Family == 6;
    const std::int32_t limit = test::shown_end(mcu);
    // Nothing but zeros is ever put in, and the program area is never touched.
    for (std::size_t a = 0; a < before.Bytes.size(); ++a)
        if (after.Bytes[a] != before.Bytes[a]) {
            ASSERT_EQ(after.Bytes[a], 0);
            ASSERT_GT(static_cast<std::int32_t>(a), std::min(limit, mcu.AP_End));
        }
    if (Is_Large_54xx(mcu)) {
        const std::int32_t top = program ? mcu.Data_End : mcu.Data_End - mcu.Data_Start;
        EXPECT_EQ(verdict.File_High, std::min(high, top));
        EXPECT_EQ(verdict.message.empty(), high <= top);
        EXPECT_EQ(after.Bytes, before.Bytes);
    } else if (gap_family) {
        EXPECT_EQ(verdict.File_High, std::min(high, mcu.Data_End));
        EXPECT_FALSE(any_byte(after.Bytes, mcu.AP_End + 1, mcu.Data_Start - 1));
        const bool data = kind == Kind::hex ? any_byte(before.Bytes, mcu.Data_Start, mcu.Data_End)
                                            : high > mcu.Data_Start;
        const bool gap = any_byte(before.Bytes, mcu.AP_End + 1, mcu.Data_Start - 1);
        EXPECT_EQ(verdict.message.empty(), !data && !gap && high <= mcu.Data_End);
        EXPECT_EQ(verdict.message.find("空间有数据") != std::string::npos, data);
        EXPECT_EQ(verdict.message.find("这些数据") != std::string::npos, gap);
    } else {
        EXPECT_TRUE(verdict.File_High == high || verdict.File_High == mcu.Data_End);
        EXPECT_TRUE(!verdict.message.empty() || verdict.File_High == high);
        if (!has_memory_hole(mcu.MCU_Name)) {
            // No box means that a file ended where a program may end.
            EXPECT_TRUE(!verdict.message.empty() || high <= limit);
        } else {
            EXPECT_FALSE(any_byte(after.Bytes, limit + 1, 0x7FFF));
        }
    }
}

TEST(RangeRules, HoldTheirPropertiesForRandomFilesOnEveryModel) {
    std::mt19937 random(2051);
    int models = 0;
    for (const ModelGroup& group : MCU_AP_ISP_range)
        for (const ModelRow& row : group.rows) {
            if (row.MCU_Name.empty()) continue;
            ++models;
            const MCU_Record mcu = test::record_of(group, row);
            SCOPED_TRACE(mcu.MCU_Name + " " + mcu.MCU_ID);
            const std::int32_t edges[] = {0,
                                          mcu.AP_End,
                                          mcu.Data_Start,
                                          mcu.Data_End,
                                          mcu.ISP_Start,
                                          mcu.Memory_Top,
                                          mcu.Code_Top,
                                          0x7FFF,
                                          0x8000,
                                          0x12000,
                                          0x1FFFE};
            for (int round = 0; round < 12; ++round) {
                const bool program = round % 2 == 0;
                const Kind kind = round % 4 < 2 ? Kind::hex : Kind::bin;
                Placement file;
                file.Bytes.resize(program ? ap_buffer_size : data_buffer_size);
                file.High = edges[random() % std::size(edges)] + static_cast<int>(random() % 5) - 2;
                const int marks = static_cast<int>(random() % 4);
                for (int i = 0; i < marks; ++i) {
                    const auto at = static_cast<std::size_t>(std::max(
                        0,
                        edges[random() % std::size(edges)] + static_cast<int>(random() % 5) - 2));
                    if (at < file.Bytes.size())
                        file.Bytes[at] = static_cast<std::uint8_t>(random());
                }
                const Placement before = file;
                const RangeQuestion question = {.mcu = mcu,
                                                .device = mcu.MCU_Name,
                                                .ISP_Limit = test::shown_end(mcu),
                                                .program_image = program,
                                                .english = false};
                const RangeVerdict verdict = kind == Kind::hex ? apply_hex_rules(question, file)
                                                               : apply_bin_rules(question, file);
                check_properties(mcu, kind, program, before, file, verdict);
                if (testing::Test::HasFailure()) return;
            }
        }
    EXPECT_EQ(models, 154);
}

TEST(RangeRules, OfARecordFromNowhereStayInsideTheImage) {
    std::mt19937 random(7);
    const auto number = [&] { return static_cast<std::int32_t>(random() % 0x30000) - 0x8000; };
    for (int round = 0; round < 300; ++round) {
        MCU_Record mcu;
        mcu.MCU_Family = static_cast<std::int16_t>(random() % 9);
        mcu.AP_End = number();
        mcu.Data_Start = number();
        mcu.Data_End = number();
        mcu.Code_Top = number();
        mcu.ISP_Start = number();
        mcu.Split_Flag = random() % 2 == 0;
        Placement file = {.Bytes = std::vector<std::uint8_t>(data_buffer_size, 1),
                          .High = number()};
        const RangeQuestion question = {.mcu = mcu,
                                        .device = random() % 2 ? "VKM47H55RK+" : "",
                                        .ISP_Limit = static_cast<std::int32_t>(random() % 0x10000),
                                        .program_image = random() % 2 == 0,
                                        .english = random() % 2 == 0};
        apply_hex_rules(question, file);
        apply_bin_rules(question, file);
        EXPECT_EQ(file.Bytes.size(), data_buffer_size);
    }
}

TEST(RangeMessages, CentreTheClosingWordUnderTheWidestLine) {
    // 27 characters and the two of each address, line break included: half of 35
    // goes to the even 18.
    const std::string wide =
        gap_message({.Gap_Filled = true, .Gap_Low = 0x1000, .Gap_High = 0x13FF}, false);
    EXPECT_EQ(wide.substr(wide.find("\r\n\r\n\r\n") + 6), std::string(18, ' ') + "按确定继续。");
    const std::string english =
        gap_message({.Gap_Filled = true, .Gap_Low = 0x1000, .Gap_High = 0x13FF}, true);
    EXPECT_EQ(english, "    File over the valid scope(1000 -- 13FF).\r\n\r\n" +
                           std::string(17, ' ') + "Continue");
    EXPECT_EQ(gap_message({}, false), "");
    EXPECT_EQ(hex_area_message({}, true), "");
    EXPECT_EQ(bin_area_message({}, true), "");
}

}  // namespace
}  // namespace vkm
