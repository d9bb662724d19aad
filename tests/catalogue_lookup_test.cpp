#include <gtest/gtest.h>

#include <set>
#include <string>
#include <utility>
#include <vector>

#include "catalogue/memory_ranges.h"
#include "catalogue/model_lookup.h"
#include "catalogue/model_table.h"
#include "catalogue/model_traits.h"
#include "catalogue/older_codes.h"

namespace vkm {
namespace {

struct CodeCase {
    const char* code;
    const char* name;
    std::int32_t x;
    std::int32_t y;
};

constexpr CodeCase code_cases[] = {{"56", "VKM47W516AD", 1, 0},
                                   {"58", "VKM47W58AD", 1, 2},
                                   {"52", "VKM47W52AD", 1, 4},
                                   {"F001", "VKM47H51RB", 2, 0},
                                   {"F110", "VKM47H516RK+", 2, 7},
                                   {"F235", "VKM26W5052AD", 3, 23},
                                   {"F301", "VKM26H5401", 4, 0},
                                   {"F326", "VKM26W5406", 4, 17},
                                   {"F33C", "VKM26W5412AD", 4, 27},
                                   {"E001", "VKM26H5401", 5, 0},
                                   {"E01C", "VKM26H5428", 5, 31},
                                   {"F43F", "VKM27J060U2", 6, 31},
                                   // blanks at the ends don't count
                                   {"  F001 ", "VKM47H51RB", 2, 0},
                                   {" 56 ", "VKM47W516AD", 1, 0},
                                   // an empty code is that of the first empty row
                                   {"", "", 2, 16},
                                   {"   ", "", 2, 16},
                                   // no code of a row that the walk passes
                                   {"FF", "", 32767, 32767},
                                   {"F336", "", 32767, 32767},
                                   {"5656", "", 32767, 32767},
                                   {"F0", "", 32767, 32767},
                                   {"f001", "", 32767, 32767},
                                   {"F0011", "", 32767, 32767},
                                   {"F00", "", 32767, 32767},
                                   {"0001", "", 32767, 32767},
                                   {"F0 1", "", 32767, 32767}};

TEST(FindCode, GivesTheFirstModelOfTheWalkAndItsPlace) {
    for (const CodeCase& wanted : code_cases) {
        SCOPED_TRACE(wanted.code);
        const CodePlace place = Find_Code(wanted.code);
        EXPECT_EQ(place.name, wanted.name);
        EXPECT_EQ(place.x, wanted.x);
        EXPECT_EQ(place.y, wanted.y);
    }
}

TEST(FindCodeWalk, HidesTheRowsWhoseCodeAnEarlierRowBears) {
    std::set<std::pair<int, int>> unreached;
    for (int group = 1; group < group_count; ++group)
        for (int row = 0; row < rows_of_a_group; ++row)
            if (const std::string_view code = catalogue_row(group, row).MCU_ID; !code.empty()) {
                const CodePlace place = Find_Code(code);
                EXPECT_EQ(catalogue_row(place.x, place.y).MCU_ID, code);
                EXPECT_EQ(catalogue_row(place.x, place.y).MCU_Name, place.name);
                if (place.x != group || place.y != row) unreached.insert({group, row});
            }
    EXPECT_EQ(unreached, (std::set<std::pair<int, int>>{{1, 1},
                                                        {2, 8},
                                                        {2, 9},
                                                        {2, 10},
                                                        {2, 11},
                                                        {2, 12},
                                                        {2, 13},
                                                        {2, 14},
                                                        {2, 15},
                                                        {4, 24},
                                                        {5, 44}}));
}

TEST(RecordByName, TakesTheNewerListOfThe54xx) {
    const auto record = record_by_name("VKM26H5401");
    ASSERT_TRUE(record);
    EXPECT_EQ(record->MCU_Family, 4);
    EXPECT_EQ(record->MCU_ID, "E001");
    EXPECT_EQ(record->Old_ID, "F301");
    EXPECT_EQ(record->AP_End, 1023);
    EXPECT_EQ(record->Data_Start, 1024);
    EXPECT_EQ(record->Data_End, 23039);
    EXPECT_EQ(record->Code_Top, 28672);
    EXPECT_EQ(record->Memory_Top, 32255);
}

TEST(RecordByName, FillsEveryFieldOfTheRecord) {
    const auto oldest = record_by_name("VKM47H58RK");
    ASSERT_TRUE(oldest);
    EXPECT_EQ(oldest->MCU_Family, 0);
    EXPECT_EQ(oldest->MCU_ID, "FF");
    EXPECT_EQ(oldest->MCU_Name, "VKM47H58RK");
    EXPECT_EQ(oldest->SoftICE_ROM, "VKM58_2003.ROM");
    EXPECT_FALSE(oldest->Split_Flag);
    const auto split = record_by_name("VKM47W61RK+");
    ASSERT_TRUE(split);
    EXPECT_EQ(split->MCU_Family, 2);
    EXPECT_EQ(split->AP_Start, 0);
    EXPECT_EQ(split->AP_End, 62463);
    EXPECT_EQ(split->AP_End_Alt, 62463);
    EXPECT_EQ(split->Data_Start, 62464);
    EXPECT_EQ(split->Data_End, 62463);
    EXPECT_EQ(split->Code_Top, 60416);
    EXPECT_EQ(split->Memory_Top, 64511);
    EXPECT_EQ(split->ISP_Start, 0);
    EXPECT_TRUE(split->Split_Flag);
    EXPECT_EQ(split->Old_ID, "");
    EXPECT_EQ(split->SoftICE_ROM, "");
}

TEST(RecordByName, GivesTheCollectiveEntryTheMemoryOfThe5428) {
    const auto series = record_by_name("26H/W54xx Series");
    const auto largest = record_by_name("VKM26H5428");
    ASSERT_TRUE(series && largest);
    EXPECT_EQ(series->MCU_ID, "E01C");
    EXPECT_EQ(series->AP_End, largest->AP_End);
    EXPECT_EQ(series->Data_Start, largest->Data_Start);
    EXPECT_EQ(series->Data_End, largest->Data_End);
    EXPECT_EQ(series->Memory_Top, largest->Memory_Top);
}

TEST(RecordByName, KnowsExactNamesOnly) {
    for (const char* name : {"", " ", "vkm47h51rb", "VKM47H51RB ", "VKM47H51", "VKM47H/W51RB"})
        EXPECT_FALSE(record_by_name(name)) << name;
}

TEST(RecordByCode, SearchesAllGroups) {
    EXPECT_EQ(record_by_code("FF")->MCU_Name, "VKM47H516RK");
    EXPECT_EQ(record_by_code("56")->MCU_Name, "VKM47W516AD");
    EXPECT_EQ(record_by_code("F301")->MCU_Name, "VKM26H5401");
    EXPECT_EQ(record_by_code("F301")->Data_End, 12287);
    EXPECT_EQ(record_by_code("F326")->MCU_Name, "VKM26W5406");
    EXPECT_EQ(record_by_code("E01C")->MCU_Name, "VKM26H5428");
    EXPECT_FALSE(record_by_code("F336"));
    EXPECT_FALSE(record_by_code(""));
}

struct OlderCase {
    const char* reported;
    const char* name;
    const char* high;
    const char* low;
};

constexpr OlderCase older_cases[] = {{"0001", "VKM47W51RB", "F0", "01"},
                                     {"0002", "VKM47W52RB", "F0", "02"},
                                     {"0003", "VKM47W53RB", "F0", "04"},
                                     {"0004", "VKM47W54RK+", "F1", "04"},
                                     {"0005", "VKM47W58RK+", "F1", "08"},
                                     {"0006", "VKM47W516RK+", "F1", "10"},
                                     {"4001", "VKM47H51RB", "F0", "01"},
                                     {"4002", "VKM47H52RB", "F0", "02"},
                                     {"4003", "VKM47H53RB", "F0", "04"},
                                     {"4004", "VKM47H54RK+", "F1", "04"},
                                     {"4005", "VKM47H58RK+", "F1", "08"},
                                     {"4006", "VKM47H516RK+", "F1", "10"},
                                     {"0051", "VKM47H/W51RB", "F0", "01"},
                                     {"0052", "VKM47H/W52RB", "F0", "02"},
                                     {"0053", "VKM47H/W53RB", "F0", "04"},
                                     {"0054", "VKM47H/W54RK+", "F1", "04"},
                                     {"0058", "VKM47H/W58RK+", "F1", "08"},
                                     {"0516", "VKM47H/W516RK+", "F1", "10"},
                                     {"F001", "", "", ""},
                                     {"0007", "", "", ""},
                                     {"", "", "", ""},
                                     {"1", "", "", ""}};

TEST(OlderCodeOf, GivesTheNameAndTheNewerCode) {
    for (const OlderCase& wanted : older_cases) {
        SCOPED_TRACE(wanted.reported);
        const OlderCode code = find_older_code(wanted.reported);
        EXPECT_EQ(code.Chip_Name, wanted.name);
        EXPECT_EQ(code.Chip_ID_High, wanted.high);
        EXPECT_EQ(code.Chip_ID_Low, wanted.low);
    }
}

struct RangeCase {
    const char* name;
    std::int32_t ISP_Start;
    std::int32_t shown_end;
};

constexpr RangeCase range_cases[] = {
    // family 0: the top of the code
    {"VKM47H516RK", 65536, 65535},
    {"VKM47H58RK", 57344, 32767},
    // families 1 and 2: 1 KB below the top, 2 KB for four models
    {"VKM47W516AD", 64512, 64511},
    {"VKM47W52AD", 64512, 8191},
    {"VKM47H516RK+", 63488, 63487},
    {"VKM47H61RK+", 62464, 62463},
    {"VKM47W55RK+", 62464, 20479},
    {"VKM47H53RB", 14336, 14335},
    {"VKM47H54RK+", 63488, 16383},
    // families 3 and 4: fixed
    {"VKM26H0552", 5120, 511},
    {"VKM26H5052", 5120, 5119},
    {"VKM26H5401", 12288, 1023},
    {"VKM26H5424", 12288, 24574},
    {"26H/W54xx Series", 12288, 28671},
    // family 6: no rule
    {"VKM27J008", 0, 8191},
    {"VKM27J060U2", 0, 61439}};

TEST(IspRangeOf, FollowsFromTheFamilyAndTheName) {
    for (const RangeCase& wanted : range_cases) {
        SCOPED_TRACE(wanted.name);
        const auto record = record_by_name(wanted.name);
        ASSERT_TRUE(record);
        const IspRange range = isp_range(*record, wanted.name);
        EXPECT_EQ(range.ISP_Start, wanted.ISP_Start);
        EXPECT_EQ(range.shown_end, wanted.shown_end);
    }
}

TEST(IspRangeOfRecord, GoesByTheChosenNameForTheSizeOfTheBootBlock) {
    const auto record = record_by_name("VKM47H61RK+");
    ASSERT_TRUE(record);
    EXPECT_EQ(isp_range(*record, "VKM47H516RK+").ISP_Start, 63488);
    EXPECT_EQ(isp_range(*record, "VKM47H516RK+").shown_end, 63487);
}

TEST(IspRangeOfRecord, HasNoRuleForAnUnknownFamily) {
    MCU_Record record;
    record.MCU_Family = 5;
    record.AP_End = 100;
    record.Code_Top = 200;
    record.Memory_Top = 300;
    record.Split_Flag = true;
    EXPECT_EQ(isp_range(record, "").ISP_Start, 0);
    EXPECT_EQ(isp_range(record, "").shown_end, 100);
}

TEST(Large54xx, AreTheModelsWithDataMemoryAbove12K) {
    std::set<std::string> large;
    for (int group = 0; group < group_count; ++group)
        for (int row = 0; row < rows_of_a_group; ++row)
            if (const auto record = record_by_name(catalogue_row(group, row).MCU_Name);
                record && Is_Large_54xx(*record))
                large.insert(record->MCU_Name);
    EXPECT_EQ(large,
              (std::set<std::string>{"VKM26H5416", "VKM26H5416AD", "VKM26W5416", "VKM26W5416AD",
                                     "VKM26H5420", "VKM26H5420AD", "VKM26W5420", "VKM26W5420AD",
                                     "VKM26H5424", "VKM26H5424AD", "VKM26W5424", "VKM26W5424AD"}));
}

TEST(Large54xx, BeginAt12289AndADataMemoryOf101) {
    MCU_Record record;
    record.MCU_Family = 4;
    record.AP_End = 12289;
    record.Data_Start = 1000;
    record.Data_End = 1101;
    EXPECT_TRUE(Is_Large_54xx(record));
    record.Data_End = 1100;
    EXPECT_FALSE(Is_Large_54xx(record));
    record.Data_End = 1101;
    record.AP_End = 12288;
    EXPECT_FALSE(Is_Large_54xx(record));
    record.AP_End = 12289;
    record.MCU_Family = 3;
    EXPECT_FALSE(Is_Large_54xx(record));
}

// ---- what depends on a name -------------------------------------------------

std::set<std::string> models_with(bool (*trait)(std::string_view)) {
    std::set<std::string> models;
    for (int group = 0; group < group_count; ++group)
        for (int row = 0; row < rows_of_a_group; ++row)
            if (const std::string_view name = catalogue_row(group, row).MCU_Name; trait(name))
                models.emplace(name);
    return models;
}

TEST(ModelTraits, AreThoseOfTheseModelsAlone) {
    using Names = std::set<std::string>;
    EXPECT_EQ(models_with(has_2k_isp),
              (Names{"VKM47H55RK+", "VKM47W55RK+", "VKM47H61RK+", "VKM47W61RK+"}));
    EXPECT_EQ(models_with(has_memory_hole), (Names{"VKM47H55RK+", "VKM47W55RK+"}));
    EXPECT_EQ(models_with(is_W516), (Names{"VKM47W516AD", "VKM47W516X2"}));
    EXPECT_EQ(models_with(is_54xx_series), Names{"26H/W54xx Series"});
}

TEST(ModelTraits, AreAskedWithTheExactName) {
    for (const char* name : {"", "vkm47h55rk+", "VKM47H55RK+ ", "VKM47H55RK"}) {
        EXPECT_FALSE(has_2k_isp(name)) << name;
        EXPECT_FALSE(has_memory_hole(name)) << name;
    }
    EXPECT_FALSE(is_W516("VKM47W516"));
    EXPECT_EQ(isp_size("VKM47H55RK+"), 2048);
    EXPECT_EQ(isp_size("VKM47H54RK+"), 1024);
    EXPECT_EQ(isp_size(""), 1024);
}

TEST(ModelTraits, CountASeriesMemberByTheNumberInItsName) {
    for (const char* name : {"VKM26H5416", "VKM26W5428AD", "VKM26H5420", "VKM26Wxx16"})
        EXPECT_TRUE(belongs_to_54xx_series(name)) << name;
    for (const char* name :
         {"VKM26H5412", "VKM26H5415", "VKM26H5429", "VKM26H2052", "VKM26H54", "VKM26H541",
          "VKM26J5416", "26H/W54xx Series", "VKM26W54xx", "", "VKM26H"})
        EXPECT_FALSE(belongs_to_54xx_series(name)) << name;
}

TEST(ModelTraits, CountTheEraseSectorsOfTheEarlyFirmware) {
    const std::vector<std::pair<const char*, int>> ad = {{"VKM47W516AD", 124},
                                                         {"VKM47W516X2", 124},
                                                         {"VKM47W58AD", 64},
                                                         {"VKM47W54AD", 32},
                                                         {"VKM47W52AD", 16}};
    for (const auto& [name, sectors] : ad) {
        EXPECT_EQ(erase_sectors_47W_AD(name), sectors) << name;
        EXPECT_FALSE(erase_sectors_47_RB_RK(name)) << name;
    }
    int known = 0;
    for (int row = 0; row < rows_of_a_group; ++row) {
        const std::string_view name = catalogue_row(2, row).MCU_Name;
        if (name.empty()) continue;
        ++known;
        EXPECT_EQ(erase_sectors_47_RB_RK(name), name.ends_with("RB") ? 30 : 126) << name;
        EXPECT_FALSE(erase_sectors_47W_AD(name)) << name;
    }
    EXPECT_EQ(known, 16);
    for (const char* name : {"", "VKM47H516RK", "VKM26H5401", "26H/W54xx Series"}) {
        EXPECT_FALSE(erase_sectors_47W_AD(name)) << name;
        EXPECT_FALSE(erase_sectors_47_RB_RK(name)) << name;
    }
}

}  // namespace
}  // namespace vkm
