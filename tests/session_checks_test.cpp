// The chip held against the model, its clock lines, and the counter's number, as values.
#include <gtest/gtest.h>

#include "session/chip_checks.h"
#include "session/counter.h"

namespace vkm {
namespace {

MCU_Record model(std::int16_t family, std::string id = "", std::string old_id = "") {
    MCU_Record record;
    record.MCU_Family = family;
    record.MCU_ID = std::move(id);
    record.Old_ID = std::move(old_id);
    return record;
}

bool fits(std::string_view letter, const MCU_Record& record, std::string_view chip_name,
          std::string_view chip_code, std::string_view txtDevice, std::int32_t Block_Size = 512) {
    return chip_fits_model({letter, chip_name, chip_code, txtDevice, record, Block_Size, 128});
}

TEST(CheckModel, LetterAWantsBlocksOfOneFrame) {
    EXPECT_TRUE(fits("A", model(0), "", "", "VKM47H516RK", 128));
    EXPECT_FALSE(fits("A", model(2), "", "", "VKM47H51RB", 512));
}

TEST(CheckModel, LetterBTakesEitherW516ForTheOther) {
    const struct {
        std::int16_t family;
        std::string_view chip, device;
        bool fits;
    } cases[] = {
        {1, "VKM47W516AD", "VKM47W516AD", true},
        {1, "VKM47W516AD", "VKM47W516X2", true},
        {1, "VKM47W516X2", "VKM47W516AD", true},
        {1, "VKM47W516AD", "", true},
        {1, "VKM47W516AD", "VKM47W58AD", false},
        {1, "VKM47W58AD", "VKM47W516AD", false},
        {1, "VKM47W58AD", "VKM47W58AD", true},
        {1, "VKM47W58AD", "VKM47W54AD", false},
        {1, "", "VKM47W54AD", true},
        {1, "VKM47W58AD", "", false},
        {2, "VKM47W58AD", "VKM47W58AD", false},
        {0, "", "", false},
    };
    for (const auto& c : cases)
        EXPECT_EQ(fits("B", model(c.family), c.chip, "58", c.device), c.fits)
            << c.family << " " << c.chip << " " << c.device;
}

TEST(CheckModel, LettersCDAndGWantFamilyAndCode) {
    const struct {
        std::string_view letter;
        std::int16_t family;
    } cases[] = {{"C", 2}, {"D", 3}, {"G", 6}};
    for (const auto& c : cases) {
        EXPECT_TRUE(fits(c.letter, model(c.family, "F001"), "any", "F001", "any")) << c.letter;
        EXPECT_FALSE(fits(c.letter, model(c.family, "F001"), "any", "F002", "any")) << c.letter;
        EXPECT_FALSE(fits(c.letter, model(4, "F001"), "any", "F001", "any")) << c.letter;
    }
}

TEST(CheckModel, LetterEWantsTheOlderCode) {
    EXPECT_TRUE(fits("E", model(4, "E001", "F301"), "VKM26H5401", "F301", "VKM26H5401"));
    EXPECT_FALSE(fits("E", model(4, "E001", "F301"), "VKM26H5401", "E001", "VKM26H5401"));
    EXPECT_FALSE(fits("E", model(3, "E001", "F301"), "VKM26H5401", "F301", "VKM26H5401"));
}

TEST(CheckModel, LetterFWantsTheCollectiveEntryAndALargeModel) {
    const MCU_Record series = model(4, "E01C");
    const struct {
        std::string_view chip, device;
        bool fits;
    } cases[] = {
        {"VKM26H5416", "26H/W54xx Series", true},  {"VKM26W5428AD", "26H/W54xx Series", true},
        {"VKM26H5412", "26H/W54xx Series", false}, {"VKM26H5401", "26H/W54xx Series", false},
        {"VKM26H5416", "VKM26H5416", false},       {"VKM47H5416", "26H/W54xx Series", false},
        {"", "26H/W54xx Series", false},           {"VKM26H", "26H/W54xx Series", false},
    };
    for (const auto& c : cases)
        EXPECT_EQ(fits("F", series, c.chip, "E010", c.device), c.fits) << c.chip << c.device;
}

TEST(CheckModel, ALetterWithoutARuleFitsAnything) {
    for (std::string_view letter : {"", "H", "a", "Z"})
        EXPECT_TRUE(fits(letter, model(2, "F001"), "x", "y", "z")) << letter;
}

// ---- clock lines ----------------------------------------------------------------

using Lines = std::vector<std::string>;

TEST(ClockLines, DependOnTheLetter) {
    const Lines one = {"Clock:11.0592MHz./时钟频率:11.0592M."};
    const Lines internal = {"Internal clock:11.0592MHz./内部时钟频率:11.0592M."};
    const Lines full = {"Internal clock:11.0592MHz./内部时钟频率:11.0592M.",
                        "External clock:11.0592MHz./外部时钟频率:11.0592M."};
    const Lines half = {"Internal clock:11.0592MHz./内部时钟频率:11.0592M.",
                        "External clock:5.5296MHz./外部时钟频率:5.5296M."};
    const struct {
        std::string_view letter;
        bool option, flag;
        const Lines& lines;
    } cases[] = {{"B", true, true, internal}, {"D", true, true, one},   {"E", false, false, one},
                 {"C", true, false, half},    {"C", false, true, full}, {"A", true, false, full},
                 {"A", false, true, half},    {"G", false, true, half}, {"F", false, false, full},
                 {"", false, false, full}};
    for (const auto& c : cases)
        EXPECT_EQ(clock_lines({c.letter, 11059200.0f, c.option, c.flag}, false), c.lines)
            << c.letter << c.option << c.flag;
}

TEST(ClockLines, InEnglishEndAfterTheUnit) {
    EXPECT_EQ(clock_lines({"D", 12e6f, false, false}, true), (Lines{"Clock:12MHz."}));
    EXPECT_EQ(clock_lines({"A", 12e6f, false, true}, true),
              (Lines{"Internal clock:12MHz.", "External clock:6MHz."}));
}

TEST(ClockLines, ShowEveryDigitOfTheMeasuredClock) {
    EXPECT_EQ(clock_lines({"D", 10317366.0f, false, false}, true), (Lines{"Clock:10.317366MHz."}));
    EXPECT_EQ(clock_lines({"D", 33000001.0f, false, false}, true),
              (Lines{"Clock:33MHz."}));  // 32 bits hold only every second number here
}

// ---- the counter ------------------------------------------------------------------

TEST(OneMore, CountsExactlyAtAnySize) {
    const struct {
        std::string_view count, next;
    } cases[] = {{"0", "1"},
                 {"9", "10"},
                 {"  41 ", "42"},
                 {"007", "8"},
                 {"000", "1"},
                 {"2147483647", "2147483648"},
                 {"9007199254740993", "9007199254740994"},
                 {"99999999999999999999", "100000000000000000000"}};
    for (const auto& c : cases) EXPECT_EQ(one_more(c.count), c.next) << c.count;
    EXPECT_EQ(one_more(std::string(400, '9')), "1" + std::string(400, '0'));
}

TEST(OneMore, TakesWhatNumberAHandEditedTextBeginsWith) {
    const struct {
        std::string_view count, next;
    } cases[] = {{"", "1"},      {"abc", "1"}, {"12 chips", "13"}, {"-3", "-2"},
                 {"2.5", "3.5"}, {"+5", "6"},  {"成功", "1"},      {"1,000", "2"}};
    for (const auto& c : cases) EXPECT_EQ(one_more(c.count), c.next) << c.count;
}

}  // namespace
}  // namespace vkm
