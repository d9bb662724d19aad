// Checks over the whole option schema. What breaks a pattern on purpose is listed
// here by name, so that a new irregularity can't slip in.
#include <gtest/gtest.h>

#include <algorithm>
#include <iomanip>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "golden_file.h"
#include "options/option_bytes.h"
#include "options/option_schema.h"
#include "options_bit_map.h"
#include "screen/screen.h"

namespace vkm {
namespace {

using test::families_with_options;
using test::keys_with_a_state;
using test::Mapped_Bit;
using test::option_bit_map;

using Rows = std::vector<Option_Row>;

const std::vector<int> groups_of_families = {0, 2, 3, 4, 5};

Rows rows_of_family(std::int16_t family) {
    return option_rows(option_group(family).value());
}

std::string name_of(const Option_Row& row) {
    return full_name(row.Option_Control, row.Option_Index);
}

std::string name_of(Property_Kind property) {
    switch (property) {
        case Property_Kind::Caption:
            return "Caption";
        case Property_Kind::Value:
            return "Value";
        case Property_Kind::Text:
            return "Text";
    }
    return "?";
}

// The whole schema in canonical form, one row a line.
std::string canonical_schema() {
    std::ostringstream out;
    const auto line = [&out](const auto& group, const auto& row, const auto& key,
                             const auto& control, const auto& property, const auto& shown,
                             const auto& free, const auto& busy, const auto& locked,
                             const auto& code, const auto& start, const auto& text) {
        out << std::left << std::setw(6) << group << std::setw(4) << row << std::setw(24) << key
            << std::setw(25) << control << std::setw(9) << property << std::setw(6) << shown
            << std::setw(5) << free << std::setw(5) << busy << std::setw(7) << locked
            << std::setw(5) << code << start << ' ' << text << '\n';
    };
    line("group", "row", "key", "control", "property", "shown", "free", "busy", "locked", "code",
         "default", "text");
    const auto quoted = [](const std::string& text) { return '"' + text + '"'; };
    for (int group = 0; group < 8; ++group) {
        const Rows rows = option_rows(group);
        for (std::size_t i = 0; i < rows.size(); ++i) {
            const Option_Row& r = rows[i];
            line(group, i, r.Option_Key, name_of(r), name_of(r.Option_Property), r.Option_Visible,
                 r.Option_Enable_0, r.Option_Enable_1, r.Option_Enable_2,
                 r.Option_Code.empty() ? "-" : r.Option_Code, quoted(r.Option_Default),
                 quoted(r.Option_Text));
        }
    }
    return out.str();
}

TEST(OptionSchema, IsTheOneOfTheGoldenFile) {
    test::expect_golden("options.txt", canonical_schema());
}

TEST(OptionSchema, HasEightGroupsAndNothingOutside) {
    const std::vector<std::size_t> rows = {5, 0, 45, 46, 46, 53, 0, 21};
    for (int group = 0; group < 8; ++group)
        EXPECT_EQ(option_rows(group).size(), rows[static_cast<std::size_t>(group)]) << group;
    for (const int group : {-1, 8, 300}) EXPECT_TRUE(option_rows(group).empty()) << group;
}

TEST(OptionSchema, GivesEachFamilyItsGroupAndUnknownFamiliesNone) {
    const std::map<std::int16_t, int> groups = {{0, 0}, {1, 1}, {2, 2}, {3, 4}, {4, 4}, {6, 5}};
    for (const auto& [family, group] : groups) EXPECT_EQ(option_group(family), group) << family;
    for (const std::int16_t family : test::families_unknown)
        EXPECT_EQ(option_group(family), std::nullopt) << family;
}

TEST(OptionSchema, IsTheSameForTheFamilies3And4) {
    const Rows third = option_rows(3);
    const Rows fourth = option_rows(4);
    ASSERT_EQ(third.size(), fourth.size());
    for (std::size_t i = 0; i < third.size(); ++i) {
        EXPECT_EQ(third[i].Option_Key, fourth[i].Option_Key) << i;
        EXPECT_EQ(name_of(third[i]), name_of(fourth[i])) << i;
        EXPECT_EQ(third[i].Option_Property, fourth[i].Option_Property) << i;
        EXPECT_EQ(third[i].Option_Default, fourth[i].Option_Default) << i;
        EXPECT_EQ(third[i].Option_Visible, fourth[i].Option_Visible) << i;
        EXPECT_EQ(third[i].Option_Enable_0, fourth[i].Option_Enable_0) << i;
        EXPECT_EQ(third[i].Option_Enable_1, fourth[i].Option_Enable_1) << i;
        EXPECT_EQ(third[i].Option_Enable_2, fourth[i].Option_Enable_2) << i;
        EXPECT_EQ(third[i].Option_Text, fourth[i].Option_Text) << i;
        EXPECT_EQ(third[i].Option_Code, fourth[i].Option_Code) << i;
    }
}

TEST(OptionSchema, HasNoStateAtRest) {
    for (int group = 0; group < 8; ++group)
        for (const Option_Row& row : option_rows(group)) EXPECT_EQ(row.Option_State, "");
}

TEST(OptionSchema, NamesControlsThatExist) {
    Screen screen;
    for (int group = 0; group < 8; ++group)
        for (const Option_Row& row : option_rows(group)) {
            const Control* control = find_control(screen, row.Option_Control, row.Option_Index);
            ASSERT_NE(control, nullptr) << group << ' ' << name_of(row);
            EXPECT_EQ(control->Index, row.Option_Index) << group << ' ' << name_of(row);
        }
}

TEST(OptionSchema, SetsWhatTheKindOfTheControlHas) {
    Screen screen;
    const std::map<ControlKind, std::set<Property_Kind>> properties = {
        {ControlKind::Label, {Property_Kind::Caption}},
        {ControlKind::Frame, {Property_Kind::Caption}},
        {ControlKind::OptionButton, {Property_Kind::Caption, Property_Kind::Value}},
        {ControlKind::CheckBox, {Property_Kind::Value}},
        {ControlKind::TextBox, {Property_Kind::Text}},
        {ControlKind::ComboBox, {Property_Kind::Text}},
    };
    for (int group = 0; group < 8; ++group)
        for (const Option_Row& row : option_rows(group)) {
            const Control* control = find_control(screen, row.Option_Control, row.Option_Index);
            ASSERT_NE(control, nullptr);
            ASSERT_TRUE(properties.contains(control->Kind)) << name_of(row);
            EXPECT_TRUE(properties.at(control->Kind).contains(row.Option_Property)) << name_of(row);
        }
}

TEST(OptionSchema, HasTextsWithoutBlanksAtTheirEnds) {
    for (int group = 0; group < 8; ++group)
        for (const Option_Row& row : option_rows(group))
            for (const std::string& text :
                 {row.Option_Key, row.Option_Control, row.Option_Default, row.Option_Text})
                if (!text.empty()) {
                    EXPECT_NE(text.front(), ' ') << text;
                    EXPECT_NE(text.back(), ' ') << text;
                }
}

const Mapped_Bit* mapped(std::int16_t family, const Option_Bit& place) {
    const auto* found = std::ranges::find_if(option_bit_map, [&](const Mapped_Bit& m) {
        return m.family == family && m.byte == place.byte && m.bit == place.bit;
    });
    return found == std::end(option_bit_map) ? nullptr : found;
}

TEST(OptionSchema, GivesEachCodeABitOfItsFamilysMap) {
    for (const std::int16_t family : families_with_options)
        for (const Option_Row& row : rows_of_family(family)) {
            if (row.Option_Code.empty()) continue;
            const auto place = option_bit(row.Option_Code);
            ASSERT_TRUE(place) << row.Option_Code;
            EXPECT_LE(place->byte, 16u);
            EXPECT_LE(place->bit, 7u);
            const Mapped_Bit* bit = mapped(family, *place);
            ASSERT_NE(bit, nullptr) << family << ' ' << row.Option_Code;
            EXPECT_EQ(row.Option_Key, place->value == 0 ? bit->zero : bit->one)
                << family << ' ' << row.Option_Code;
        }
}

TEST(OptionSchema, ClaimsEveryBitOnceFor0AndOnceFor1) {
    using Place = std::pair<std::size_t, std::size_t>;
    for (const std::int16_t family : families_with_options) {
        std::map<Place, std::multiset<int>> claims;
        for (const Option_Row& row : rows_of_family(family))
            if (const auto place = option_bit(row.Option_Code))
                claims[{place->byte, place->bit}].insert(place->value);
        std::size_t bits = 0;
        for (const Mapped_Bit& bit : option_bit_map) bits += bit.family == family ? 1 : 0;
        EXPECT_EQ(claims.size(), bits) << family;
        for (const auto& [place, values] : claims) {
            // Erasing the data memory is the third of a set of three: nothing sets its bit.
            const bool third = family == 6 && place == Place{8, 1};
            EXPECT_EQ(values, third ? (std::multiset<int>{0}) : (std::multiset<int>{0, 1}))
                << family << ": byte " << place.first << ", bit " << place.second;
        }
    }
}

TEST(OptionSchema, GivesCodesToChoicesAlone) {
    for (int group = 0; group < 8; ++group)
        for (const Option_Row& row : option_rows(group)) {
            const bool choice = group != 7 && row.Option_Property == Property_Kind::Value &&
                                row.Option_Key != "Clew";
            EXPECT_EQ(!row.Option_Code.empty(), choice) << group << ' ' << row.Option_Key;
        }
}

TEST(OptionSchema, HasOneChoiceOfEachSetOnByDefault) {
    for (int group = 0; group < 8; ++group) {
        std::map<std::string, std::vector<std::string>> sets;
        for (const Option_Row& row : option_rows(group))
            if (row.Option_Property == Property_Kind::Value && row.Option_Visible &&
                row.Option_Index >= 0 && group != 7)
                sets[row.Option_Control].push_back(row.Option_Default);
        for (const auto& [set, defaults] : sets) {
            EXPECT_EQ(std::ranges::count(defaults, "1"), 1) << group << ' ' << set;
            EXPECT_EQ(std::ranges::count(defaults, "0"), std::ssize(defaults) - 1)
                << group << ' ' << set;
            EXPECT_EQ(defaults.size(), group == 5 && set == "Option3" ? 3u : 2u) << set;
        }
    }
    EXPECT_EQ(option_rows(7)[10].Option_Default, "1");
    EXPECT_EQ(option_rows(7)[18].Option_Default, "1");
}

TEST(OptionSchema, HasTheDefaultChoicesOfEachFamily) {
    using Keys = std::set<std::string>;
    const std::map<std::int16_t, Keys> on = {
        {0, {"Double_speed_NO"}},
        {1, {}},
        {2,
         {"Double_speed_NO", "Half_Gain_NO", "Disregard_P10_P11", "AUX_RAM_Enable_YES",
          "Clear_EEPROM_Spite", "Reset_Close_WDT_YES"}},
        {3,
         {"Exterior_Oscillate", "Disregard_P10_P11", "Clear_EEPROM_Spite", "Clear_Unused_AP_NO",
          "Unchangeable_WDT_NO", "Power_On_Run_WDT_NO", "Idle_Run_WDT_NO"}},
        {4,
         {"Exterior_Oscillate", "Disregard_P10_P11", "Clear_EEPROM_Spite", "Clear_Unused_AP_NO",
          "Unchangeable_WDT_NO", "Power_On_Run_WDT_NO", "Idle_Run_WDT_NO"}},
        {6,
         {"Exterior_Oscillate", "Half_Gain_NO", "Disregard_P10_P11", "Clear_EEPROM_Spite",
          "Clear_Unused_AP_NO", "Unchangeable_WDT_NO", "Power_On_Run_WDT_NO", "Idle_Run_WDT_NO",
          "LowU_Unwrite_YES", "LowU_Reset_YES"}},
    };
    for (const auto& [family, keys] : on) {
        Keys found;
        for (const Option_Row& row : rows_of_family(family))
            if (row.Option_Property == Property_Kind::Value && row.Option_Default == "1")
                found.insert(row.Option_Key);
        EXPECT_EQ(found, keys) << family;
    }
}

TEST(OptionSchema, NamesEachStoredKeyOnceInItsFamily) {
    for (const int group : groups_of_families) {
        std::map<std::string, int> counts;
        for (const Option_Row& row : option_rows(group)) ++counts[row.Option_Key];
        counts.erase("Clew");
        for (const auto& [key, count] : counts) EXPECT_EQ(count, 1) << group << ' ' << key;
    }
}

TEST(OptionSchema, KeepsTheKeysWithAStateInTheirOrder) {
    EXPECT_TRUE(std::ranges::equal(option_keys, keys_with_a_state));
    std::set<std::string> held;
    for (const int group : groups_of_families)
        for (const Option_Row& row : option_rows(group))
            if (!row.Option_Code.empty() || row.Option_Key == "WDT_Prescalar")
                held.insert(row.Option_Key);
    EXPECT_EQ(held, (std::set<std::string>(keys_with_a_state.begin(), keys_with_a_state.end())));
}

TEST(OptionSchema, LacksTheKeysThatAFamilyHasNoUseFor) {
    const auto has = [](std::int16_t family, std::string_view key) {
        const Rows rows = rows_of_family(family);
        return find_row(rows, key) != nullptr;
    };
    EXPECT_FALSE(has(2, "Clear_EEPROM_00H"));
    EXPECT_TRUE(has(2, "Clear_EEPROM_FFH"));
    EXPECT_FALSE(has(3, "Clear_EEPROM_FFH"));
    EXPECT_FALSE(has(4, "Clear_EEPROM_FFH"));
    EXPECT_TRUE(has(4, "Clear_EEPROM_00H"));
    EXPECT_TRUE(has(6, "Clear_EEPROM_00H"));
    EXPECT_TRUE(has(6, "Clear_EEPROM_FFH"));
    EXPECT_FALSE(has(2, "Interior_Oscillate"));
    EXPECT_FALSE(has(0, "WDT_Prescalar"));
    EXPECT_FALSE(has(2, "WDT_Prescalar"));
}

TEST(OptionSchema, HasTheCaptionOfAChoiceAboveItsValue) {
    for (const int group : groups_of_families) {
        const Rows rows = option_rows(group);
        for (std::size_t i = 0; i < rows.size(); ++i) {
            if (rows[i].Option_Property != Property_Kind::Value) continue;
            ASSERT_GT(i, 0u);
            EXPECT_EQ(rows[i - 1].Option_Property, Property_Kind::Caption) << rows[i].Option_Key;
            EXPECT_EQ(name_of(rows[i - 1]), name_of(rows[i]));
            EXPECT_EQ(rows[i - 1].Option_Text, rows[i].Option_Text);
            EXPECT_TRUE(rows[i - 1].Option_Key.ends_with("Clew")) << rows[i - 1].Option_Key;
        }
    }
}

TEST(OptionSchema, HasTwoChoicesAlwaysDisabled) {
    for (int group = 0; group < 8; ++group)
        for (const Option_Row& row : option_rows(group)) {
            const bool caption = row.Option_Property == Property_Kind::Caption;
            const bool unchangeable =
                row.Option_Key == "Unchangeable_WDT_YES" || row.Option_Key == "Unchangeable_WDT_NO";
            EXPECT_EQ(row.Option_Enable_0, row.Option_Visible && !unchangeable) << row.Option_Key;
            EXPECT_EQ(row.Option_Enable_1, row.Option_Visible && caption) << row.Option_Key;
            EXPECT_EQ(row.Option_Enable_2, row.Option_Visible && caption) << row.Option_Key;
        }
}

// A pair that a family doesn't use is parked: both elements, nothing applied.
TEST(OptionSchema, ParksThePairsBehindTheRemarks) {
    const std::map<int, std::map<std::string, std::size_t>> parked = {
        {0, {}},
        {2, {{"Option2", 11}, {"Option8", 31}, {"Option9", 36}}},
        {3, {{"Option3", 16}, {"Option8", 26}}},
        {4, {{"Option3", 16}, {"Option8", 26}}},
        {5, {}},
        {7, {}},
    };
    for (const auto& [group, pairs] : parked) {
        const Rows rows = option_rows(group);
        std::size_t hidden = 0;
        for (const Option_Row& row : rows) hidden += row.Option_Visible ? 0 : 1;
        EXPECT_EQ(hidden, pairs.size() * 4) << group;
        for (const auto& [control, first] : pairs)
            for (std::size_t i = 0; i < 4; ++i) {
                const Option_Row& row = rows[first + i];
                EXPECT_EQ(name_of(row), control + (i < 2 ? "(0)" : "(1)")) << group;
                EXPECT_EQ(row.Option_Key, "Clew");
                EXPECT_FALSE(row.Option_Visible);
                EXPECT_EQ(row.Option_Default + row.Option_Text + row.Option_Code, "");
            }
    }
}

// ---- places of bits ---------------------------------------------------------

TEST(OptionCode, IsReadAsByteBitAndValue) {
    EXPECT_EQ(option_bit("0131"), (Option_Bit{1, 3, 1}));
    EXPECT_EQ(option_bit("0130"), (Option_Bit{1, 3, 0}));
    EXPECT_EQ(option_bit("0070"), (Option_Bit{0, 7, 0}));
    EXPECT_EQ(option_bit("1600"), (Option_Bit{16, 0, 0}));
    EXPECT_EQ(option_bit("1071"), (Option_Bit{10, 7, 1}));
}

TEST(OptionCode, NamesNoBitWhenItIsNoneOfThese) {
    for (const std::string_view code :
         {"", "0", "013", "01310", "1700", "9900", "0180", "0190", "A131", "0x31", "01-1", "    "})
        EXPECT_EQ(option_bit(code), std::nullopt) << code;
}

TEST(OptionMasks, HaveOneEntryForEachBitAndAnEmptyNinth) {
    EXPECT_EQ(Bit_Set_Mask, (std::array<std::uint8_t, 9>{1, 2, 4, 8, 16, 32, 64, 128, 0}));
    EXPECT_EQ(Bit_Clear_Mask,
              (std::array<std::uint8_t, 9>{254, 253, 251, 247, 239, 223, 191, 127, 0}));
}

TEST(OptionDefaults, AreTheTableOfEachFamily) {
    using Entries = std::map<std::size_t, Option_Default_Byte>;
    const Entries third = {{2, {255, 255, 253}}, {3, {255, 255, 80}}, {8, {255, 247, 240}}};
    const std::map<std::int16_t, Entries> listed = {
        {0, {{16, {255, 255, 252}}}},
        {1, {{16, {255, 255, 252}}}},
        {2, {{1, {255, 253, 32}}, {16, {255, 255, 252}}}},
        {3, third},
        {4, third},
        {6, {{0, {255, 255, 63}}, {3, {255, 255, 189}}, {4, {255, 255, 80}}, {8, {255, 255, 240}}}},
    };
    for (const auto& [family, entries] : listed)
        for (std::size_t byte = 0; byte <= 16; ++byte) {
            const auto found = option_default(family, byte);
            if (family < 2 && byte < 8) {
                EXPECT_EQ(found, std::nullopt) << family << ' ' << byte;
                continue;
            }
            ASSERT_TRUE(found) << family << ' ' << byte;
            const auto entry = entries.find(byte);
            const Option_Default_Byte plain{255, 255, 255};
            EXPECT_EQ(*found, entry == entries.end() ? plain : entry->second)
                << family << ' ' << byte;
        }
}

// ---- the prescaler ------------------------------------------------------------

TEST(Prescaler, LiesInByte3OrByte4) {
    EXPECT_EQ(prescaler_byte(3), 3u);
    EXPECT_EQ(prescaler_byte(4), 3u);
    EXPECT_EQ(prescaler_byte(6), 4u);
    for (const std::int16_t family : std::initializer_list<std::int16_t>{-1, 0, 1, 2, 5, 7, 300})
        EXPECT_EQ(prescaler_byte(family), std::nullopt) << family;
}

TEST(Prescaler, IsATextOfTheListOr256) {
    const std::map<std::string_view, std::int16_t> bits = {
        {"2", 0},   {"4", 1},   {"8", 2},  {"16", 3},  {"32", 4}, {"64", 5},
        {"128", 6}, {"256", 7}, {"", 7},   {"1", 7},   {"3", 7},  {"512", 7},
        {" 2", 7},  {"2 ", 7},  {"02", 7}, {"abc", 7}, {"12", 7}};
    for (const auto& [text, expected] : bits) EXPECT_EQ(prescaler_bits(text), expected) << text;
}

TEST(Prescaler, IsReadFromTheLowThreeBitsOfAnyWord) {
    constexpr int prescalers[] = {2, 4, 8, 16, 32, 64, 128, 256};
    for (int value = 0; value < 256; ++value)
        EXPECT_EQ(prescaler_of(static_cast<std::int16_t>(value)), prescalers[value % 8]) << value;
    EXPECT_EQ(prescaler_of(-1), 256);
    EXPECT_EQ(prescaler_of(-32768), 2);
    EXPECT_EQ(prescaler_of(32767), 256);
    EXPECT_EQ(prescaler_of(256 + 3), 16);
}

}  // namespace
}  // namespace vkm
