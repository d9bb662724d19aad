// Checks over all built-in models. What breaks a pattern on purpose is listed
// here by name, so that a new irregularity can't slip in.
#include <gtest/gtest.h>

#include <algorithm>
#include <iomanip>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "catalogue/family_tree.h"
#include "catalogue/memory_ranges.h"
#include "catalogue/model_lookup.h"
#include "catalogue/model_table.h"
#include "catalogue/model_traits.h"
#include "catalogue/older_codes.h"
#include "golden_file.h"
#include "image/image_buffer.h"

namespace vkm {
namespace {

struct Model {
    int group = 0;
    int row = 0;
    MCU_Record record;
    bool In_Tree = false;
};

// The record of a place, read by the table alone: the look-ups can't reach rows
// that others hide.
std::vector<Model> all_models() {
    std::vector<Model> models;
    for (int group = 0; group < group_count; ++group)
        for (int row = 0; row < rows_of_a_group; ++row) {
            const ModelRow& from = catalogue_row(group, row);
            if (from.MCU_Name.empty()) continue;
            MCU_Record record;
            record.MCU_Family = MCU_AP_ISP_range[static_cast<std::size_t>(group)].MCU_Family;
            record.MCU_ID = from.MCU_ID;
            record.MCU_Name = from.MCU_Name;
            record.AP_End = from.AP_End;
            record.AP_End_Alt = from.AP_End_Alt;
            record.Data_Start = from.Data_Start;
            record.Data_End = from.Data_End;
            record.Code_Top = from.Code_Top;
            record.Memory_Top = from.Memory_Top;
            record.Split_Flag = from.Split_Flag;
            record.Old_ID = from.Old_ID;
            record.SoftICE_ROM = from.SoftICE_ROM;
            models.push_back({group, row, record, from.In_Tree});
        }
    return models;
}

std::string shown(const std::string& text) {
    return text.empty() ? "-" : text;
}

// The whole catalogue in canonical form, one model a line, numbers in decimal.
std::string canonical_catalogue() {
    std::ostringstream out;
    const auto line = [&out](const auto& group, const auto& row, const auto& family,
                             const auto& code, const auto& name, const auto&... numbers) {
        out << std::left << std::setw(6) << group << std::setw(4) << row << std::setw(7) << family
            << std::setw(5) << code << std::setw(17) << name << std::right;
        ((out << ' ' << std::setw(10) << numbers), ...);
        out << '\n';
    };
    line("group", "row", "family", "code", "model", "AP_Start", "AP_End", "AP_End_Alt",
         "Data_Start", "Data_End", "Code_Top", "Memory_Top", "Split_Flag", "In_Tree", "ISP_Start",
         "end_shown", "Old_ID", "SoftICE_ROM");
    for (const Model& model : all_models()) {
        const MCU_Record& r = model.record;
        const IspRange range = isp_range(r, r.MCU_Name);
        line(model.group, model.row, r.MCU_Family, r.MCU_ID, r.MCU_Name, r.AP_Start, r.AP_End,
             r.AP_End_Alt, r.Data_Start, r.Data_End, r.Code_Top, r.Memory_Top, r.Split_Flag,
             model.In_Tree, range.ISP_Start, range.shown_end, shown(r.Old_ID),
             shown(r.SoftICE_ROM));
    }
    return out.str();
}

std::set<std::string> names_where(const auto& condition) {
    std::set<std::string> names;
    for (const Model& model : all_models())
        if (condition(model)) names.insert(model.record.MCU_Name);
    return names;
}

TEST(Catalogue, IsTheOneOfTheGoldenFile) {
    test::expect_golden("catalogue.txt", canonical_catalogue());
}

TEST(Catalogue, Has154ModelsInSevenGroupsWithoutAFamily5) {
    const std::vector<std::size_t> rows = {4, 5, 16, 24, 28, 45, 32, 0};
    const std::vector<int> families = {0, 1, 2, 3, 4, 4, 6};
    for (std::size_t group = 0; group < rows.size(); ++group)
        EXPECT_EQ(MCU_AP_ISP_range[group].rows.size(), rows[group]) << group;
    for (std::size_t group = 0; group < families.size(); ++group)
        EXPECT_EQ(MCU_AP_ISP_range[group].MCU_Family, families[group]) << group;
    EXPECT_EQ(all_models().size(), 154u);
}

TEST(Catalogue, HasEmptyRowsBehindTheModelsAndNothingOutside) {
    for (const auto& [group, row] : {std::pair{0, 4},
                                     {2, 16},
                                     {5, 45},
                                     {7, 0},
                                     {7, 56},
                                     {-1, 0},
                                     {8, 0},
                                     {2, -1},
                                     {2, 57},
                                     {2, 1000000}}) {
        EXPECT_TRUE(catalogue_row(group, row).MCU_Name.empty()) << group << ", " << row;
        EXPECT_TRUE(catalogue_row(group, row).MCU_ID.empty()) << group << ", " << row;
    }
}

TEST(Catalogue, NamesEveryModelOnceApartFromTheOlderListOfThe54xx) {
    std::map<std::string, std::vector<int>> groups;
    for (const Model& model : all_models()) groups[model.record.MCU_Name].push_back(model.group);
    int pairs = 0;
    for (const auto& [name, where] : groups) {
        if (where.size() == 1) {
            EXPECT_NE(where[0], 4) << name;
            continue;
        }
        EXPECT_EQ(where, (std::vector<int>{4, 5})) << name;
        ++pairs;
    }
    EXPECT_EQ(pairs, 28);
}

TEST(Catalogue, HasNamesAndTextsWithoutBlanksAtTheirEnds) {
    for (const Model& model : all_models())
        for (const std::string& text : {model.record.MCU_Name, model.record.MCU_ID,
                                        model.record.Old_ID, model.record.SoftICE_ROM})
            if (!text.empty()) {
                EXPECT_NE(text.front(), ' ') << text;
                EXPECT_NE(text.back(), ' ') << text;
            }
}

TEST(Catalogue, HasCodesOfTheLengthAndTheDigitsOfTheirGroup) {
    const std::vector<std::string> starts = {"FF", "5", "F", "F2", "F3", "E0", "F4"};
    for (const Model& model : all_models()) {
        const std::string& code = model.record.MCU_ID;
        EXPECT_EQ(code.size(), model.group < 2 ? 2u : 4u) << model.record.MCU_Name;
        EXPECT_EQ(code.find_first_not_of("0123456789ABCDEF"), std::string::npos) << code;
        EXPECT_TRUE(code.starts_with(starts[static_cast<std::size_t>(model.group)])) << code;
    }
}

TEST(Catalogue, SharesCodesOnlyWhereItIsWanted) {
    std::map<std::string, std::vector<std::string>> names;
    for (const Model& model : all_models())
        if (model.group > 0) names[model.record.MCU_ID].push_back(model.record.MCU_Name);
    std::erase_if(names, [](const auto& entry) { return entry.second.size() == 1; });
    const std::map<std::string, std::vector<std::string>> wanted = {
        {"56", {"VKM47W516AD", "VKM47W516X2"}},       {"F001", {"VKM47H51RB", "VKM47W51RB"}},
        {"F002", {"VKM47H52RB", "VKM47W52RB"}},       {"F004", {"VKM47H53RB", "VKM47W53RB"}},
        {"F104", {"VKM47H54RK+", "VKM47W54RK+"}},     {"F105", {"VKM47H55RK+", "VKM47W55RK+"}},
        {"F108", {"VKM47H58RK+", "VKM47W58RK+"}},     {"F10A", {"VKM47H61RK+", "VKM47W61RK+"}},
        {"F110", {"VKM47H516RK+", "VKM47W516RK+"}},   {"F326", {"VKM26W5406", "VKM26W5406AD"}},
        {"E01C", {"VKM26H5428", "26H/W54xx Series"}},
    };
    EXPECT_EQ(names, wanted);
}

TEST(Catalogue, GivesEachSmall54xxTheCodeOfItsOlderRow) {
    for (const Model& model : all_models()) {
        const MCU_Record& r = model.record;
        if (model.group != 5 || model.row > 27) {
            EXPECT_EQ(r.Old_ID, "") << r.MCU_Name;
            continue;
        }
        const ModelRow& older = catalogue_row(4, model.row);
        EXPECT_EQ(older.MCU_Name, r.MCU_Name);
        if (r.MCU_Name == "VKM26W5406AD") {
            EXPECT_EQ(r.Old_ID, "F336");  // borne by no row: the older row has the code of row 17
            EXPECT_EQ(older.MCU_ID, "F326");
        } else {
            EXPECT_EQ(older.MCU_ID, r.Old_ID) << r.MCU_Name;
        }
    }
}

TEST(Catalogue, OffersAllButTheLarge54xxThatTheCollectiveEntryStandsFor) {
    for (const Model& model : all_models()) {
        const bool large = model.group == 5 && model.row >= 28 && model.row <= 43;
        EXPECT_EQ(model.In_Tree, !large) << model.record.MCU_Name;
        EXPECT_EQ(model.group == 5 && belongs_to_54xx_series(model.record.MCU_Name), large)
            << model.record.MCU_Name;
    }
}

TEST(Catalogue, KeepsAllAreasInsideTheProgramImage) {
    for (const Model& model : all_models()) {
        const MCU_Record& r = model.record;
        EXPECT_EQ(r.AP_Start, 0);
        EXPECT_GT(r.AP_End, 0) << r.MCU_Name;
        EXPECT_LE(r.AP_End, r.Memory_Top) << r.MCU_Name;
        EXPECT_LE(r.Data_End, r.Memory_Top) << r.MCU_Name;
        EXPECT_LE(r.Code_Top, r.Memory_Top) << r.MCU_Name;
        EXPECT_LT(static_cast<std::size_t>(r.Memory_Top), ap_buffer_size) << r.MCU_Name;
        EXPECT_GE(r.Data_End, r.Data_Start - 1) << r.MCU_Name;
    }
}

TEST(Catalogue, BeginsTheDataMemoryBehindTheProgram) {
    const auto elsewhere = names_where([](const Model& model) {
        const MCU_Record& r = model.record;
        if (model.group < 2) return r.Data_Start != r.AP_End || r.Data_End != r.AP_End;
        // The data memory of the small 2052 models has a place of its own.
        if (model.group == 3) return r.Data_Start != std::max(4096, r.AP_End + 1);
        return r.Data_Start != r.AP_End + 1;
    });
    EXPECT_EQ(elsewhere,
              (std::set<std::string>{"VKM26H5424", "VKM26H5424AD", "VKM26W5424", "VKM26W5424AD"}));
    const auto ends_early =
        names_where([](const Model& model) { return model.record.AP_End == 24574; });
    EXPECT_EQ(ends_early, elsewhere);
    const auto even_end =
        names_where([](const Model& model) { return model.record.AP_End % 256 != 255; });
    EXPECT_EQ(even_end, elsewhere);
}

TEST(Catalogue, HasNoDataMemoryWhereTheProgramFillsTheRoom) {
    const auto none = names_where([](const Model& model) {
        return model.group > 1 && model.record.Data_End < model.record.Data_Start;
    });
    EXPECT_EQ(none, (std::set<std::string>{
                        "VKM47H53RB",   "VKM47W53RB",   "VKM47H61RK+",      "VKM47W61RK+",
                        "VKM47H516RK+", "VKM47W516RK+", "VKM26H5052",       "VKM26H5052AD",
                        "VKM26W5052",   "VKM26W5052AD", "VKM26H5412",       "VKM26H5412AD",
                        "VKM26W5412",   "VKM26W5412AD", "VKM26H5428",       "VKM26H5428AD",
                        "VKM26W5428",   "VKM26W5428AD", "26H/W54xx Series", "VKM27J060",
                        "VKM27J060PCA", "VKM27J060ADC", "VKM27J060U2"}));
}

TEST(Catalogue, SplitsTheModelsWhoseProgramReachesTheBootBlock) {
    const auto split = names_where([](const Model& model) { return model.record.Split_Flag; });
    EXPECT_EQ(split, (std::set<std::string>{"VKM47W516AD", "VKM47W516X2", "VKM47H53RB",
                                            "VKM47W53RB", "VKM47H61RK+", "VKM47W61RK+",
                                            "VKM47H516RK+", "VKM47W516RK+"}));
}

TEST(Catalogue, EndsTheDataMemoryOfFamily2BelowTheBootBlock) {
    for (const Model& model : all_models()) {
        if (model.group != 2) continue;
        const IspRange range = isp_range(model.record, model.record.MCU_Name);
        EXPECT_EQ(model.record.Data_End, range.ISP_Start - 1) << model.record.MCU_Name;
        EXPECT_EQ(range.shown_end, model.record.AP_End) << model.record.MCU_Name;
    }
}

TEST(Catalogue, HasASecondProgramEndInGroup2Alone) {
    const std::map<std::string, std::int32_t> ends = {
        {"51RB", 4095},   {"52RB", 8191},   {"53RB", 13311},  {"54RK+", 16383},
        {"55RK+", 32767}, {"58RK+", 32767}, {"61RK+", 62463}, {"516RK+", 62463}};
    for (const Model& model : all_models()) {
        const MCU_Record& r = model.record;
        EXPECT_EQ(r.AP_End_Alt, model.group == 2 ? ends.at(r.MCU_Name.substr(6)) : 0) << r.MCU_Name;
    }
}

TEST(Catalogue, NamesADebugMonitorForTheOldestModelsAlone) {
    for (const Model& model : all_models()) {
        const std::string& name = model.record.MCU_Name;
        const std::string expected = model.group != 0                        ? ""
                                     : name.find("516") != std::string::npos ? "VKM516_2003.ROM"
                                                                             : "VKM58_2003.ROM";
        EXPECT_EQ(model.record.SoftICE_ROM, expected) << name;
    }
}

TEST(OlderCodes, StandForRowsOfTheTableOrForDisplayNamesOnly) {
    EXPECT_EQ(older_codes().size(), 18u);
    std::set<std::string_view> reported;
    for (const OlderCode& code : older_codes()) {
        EXPECT_TRUE(reported.insert(code.reported).second) << code.reported;
        EXPECT_EQ(code.reported.size(), 4u);
        const std::string id = std::string(code.Chip_ID_High) + std::string(code.Chip_ID_Low);
        const auto record = record_by_name(code.Chip_Name);
        if (code.Chip_Name.find("H/W") != std::string_view::npos) {
            EXPECT_FALSE(record) << code.Chip_Name;
            std::string name_h(code.Chip_Name);
            name_h.erase(name_h.find("/W"), 2);
            ASSERT_TRUE(record_by_name(name_h)) << name_h;
            EXPECT_EQ(record_by_name(name_h)->MCU_ID, id) << name_h;
        } else {
            ASSERT_TRUE(record) << code.Chip_Name;
            EXPECT_EQ(record->MCU_ID, id) << code.Chip_Name;
        }
    }
}

TEST(FamilyTree, ListsTheFamiliesFirstInTheirOrder) {
    const auto tree = device_tree();
    const std::vector<Entry> families = {{"47H5xRB/RK+ 系列", "Family47H5xRB/RK+", ""},
                                         {"26H2052 系列", "Family26H2052", ""},
                                         {"26H5410 系列", "Family26H5410E", ""},
                                         {"47H516RK 系列", "Family47H516RK", ""},
                                         {"47W516AD 系列", "Family47W516AD", ""}};
    ASSERT_GE(tree.size(), families.size());
    for (std::size_t i = 0; i < families.size(); ++i) EXPECT_EQ(tree[i], families[i]);
}

TEST(FamilyTree, OffersTheModelsOfEachFamilyInTheOrderOfTheTable) {
    const auto tree = device_tree();
    std::vector<Entry> expected;
    const std::vector<std::pair<int, std::string>> walk = {{2, "Family47H5xRB/RK+"},
                                                           {3, "Family26H2052"},
                                                           {5, "Family26H5410E"},
                                                           {0, "Family47H516RK"},
                                                           {1, "Family47W516AD"}};
    for (const auto& [group, family] : walk)
        for (const Model& model : all_models())
            if (model.group == group && model.In_Tree)
                expected.push_back({model.record.MCU_Name, model.record.MCU_Name, family});
    EXPECT_EQ(expected.size(), 16u + 24 + 29 + 4 + 5);
    EXPECT_EQ(std::vector<Entry>(tree.begin() + 5, tree.end()), expected);
}

TEST(FamilyTree, HasNeitherFamily6NorTheLarge54xxOneByOne) {
    for (const Entry& entry : device_tree()) {
        EXPECT_NE(entry.Key, "Family27xxx");
        EXPECT_EQ(entry.Key.find("27J"), std::string::npos) << entry.Key;
        EXPECT_FALSE(belongs_to_54xx_series(entry.Key)) << entry.Key;
    }
    EXPECT_EQ(family_keys[6], "Family27xxx");
    EXPECT_EQ(family_keys[5], "");
}

TEST(FamilyTree, TellsFamiliesFromModelsByTheirKey) {
    EXPECT_TRUE(is_family_key("Family47H516RK"));
    EXPECT_TRUE(is_family_key("Family"));
    EXPECT_FALSE(is_family_key("VKM47H516RK"));
    EXPECT_FALSE(is_family_key("26H/W54xx Series"));
    EXPECT_FALSE(is_family_key("Famil"));
    EXPECT_FALSE(is_family_key(""));
}

TEST(FamilyTree, HasKeysThatNoTwoNodesShare) {
    std::set<std::string> keys;
    for (const Entry& entry : device_tree())
        EXPECT_TRUE(keys.insert(entry.Key).second) << entry.Key;
}

}  // namespace
}  // namespace vkm
