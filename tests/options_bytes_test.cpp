// From the panel's choices to the bytes, and from a chip's bytes to choices.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <map>
#include <string>
#include <vector>

#include "options/mcu_options.h"
#include "options/option_panel.h"
#include "options_bit_map.h"
#include "support/virtual_world.h"

namespace vkm {
namespace {

using test::families_unknown;
using test::families_with_options;
using test::keys_with_a_state;
using test::Mapped_Bit;
using test::option_bit_map;

using Words = std::array<std::int16_t, 17>;
// A control of the panel: its array and its place in there.
using Choice = std::pair<std::string, int>;

Words filled(std::int16_t value) {
    Words words;
    words.fill(value);
    return words;
}

// All words 255 but these.
Words all_255_but(const std::map<std::size_t, std::int16_t>& others) {
    Words words = filled(255);
    for (const auto& [byte, value] : others) words[byte] = value;
    return words;
}

std::vector<std::int16_t> all_families() {
    std::vector<std::int16_t> families(std::begin(families_with_options),
                                       std::end(families_with_options));
    families.insert(families.end(), std::begin(families_unknown), std::end(families_unknown));
    return families;
}

// Every value of a byte, and words that hold more than a byte.
std::vector<std::int16_t> all_words() {
    std::vector<std::int16_t> words;
    for (std::int16_t value = 0; value < 256; ++value) words.push_back(value);
    for (const std::int16_t value :
         std::initializer_list<std::int16_t>{-1, -2, -256, -32768, 256, 511, 4096, 32767})
        words.push_back(value);
    return words;
}

// What a key of the family must read as.
std::string expected_state(std::int16_t family, std::string_view key, const Words& bytes) {
    for (const Mapped_Bit& m : option_bit_map) {
        if (m.family != family || (key != m.zero && key != m.one)) continue;
        const bool set = ((bytes[m.byte] >> m.bit) & 1) != 0;
        return set == (key == m.one) ? "1" : "0";
    }
    return "";
}

struct OptionBytes : testing::Test {
    OptionBytes() {
        Fill_Options(frm);
        fill_list(frm.screen.comWDT_Prescalar, {"2", "4", "8", "16", "32", "64", "128", "256"});
    }

    void select_family(std::int16_t family) { frm.catalogue.MCU_Info.MCU_Family = family; }

    void lay_out(std::int16_t family) {
        select_family(family);
        Arrange_Options(frm);
    }

    // As the operator's click does: the others of the set go off.
    void choose(const Choice& choice) {
        for (int i = 0;; ++i) {
            Control* control = find_control(frm.screen, choice.first, i);
            if (!control) break;
            control->Value = i == choice.second ? 1 : 0;
        }
    }

    Words& bytes() { return frm.options.Option_Bytes[0]; }

    test::VirtualWorld world;
    frmMain& frm = world.frm;
};

// ---- reading ------------------------------------------------------------------

TEST_F(OptionBytes, ReadEveryKeyByTheMapForEveryValueOfEveryByte) {
    for (const std::int16_t family : all_families()) {
        select_family(family);
        for (std::size_t byte = 0; byte < 17; ++byte)
            for (const std::int16_t word : all_words()) {
                // The others hold the opposite, so that reading a wrong byte shows.
                Words words = filled(static_cast<std::int16_t>(~word & 255));
                words[byte] = word;
                frm.options.Chip_Bytes = words;
                for (const std::string_view key : keys_with_a_state)
                    ASSERT_EQ(Read_Option(frm, key), expected_state(family, key, words))
                        << "family " << family << ", " << key << ", byte " << byte << " = " << word;
            }
    }
}

TEST_F(OptionBytes, PreviewEveryKeyByTheMapFromTheBytesToBeWritten) {
    for (const std::int16_t family : all_families()) {
        select_family(family);
        for (const std::int16_t word : all_words()) {
            bytes() = filled(word);
            frm.options.Chip_Bytes = filled(static_cast<std::int16_t>(~word));
            for (const std::string_view key : keys_with_a_state)
                ASSERT_EQ(Preview_Option(frm, key), expected_state(family, key, bytes()))
                    << "family " << family << ", " << key << ", " << word;
        }
    }
}

TEST_F(OptionBytes, HaveNoStateForAKeyThatTheFamilyLacksOrThatHasNoBit) {
    select_family(2);
    EXPECT_EQ(Read_Option(frm, "Interior_Oscillate"), "");
    EXPECT_EQ(Preview_Option(frm, "Clear_EEPROM_00H"), "");
    select_family(4);
    EXPECT_EQ(Read_Option(frm, "WDT_Prescalar"), "");
    EXPECT_EQ(Preview_Option(frm, "WDT_Prescalar"), "");
    EXPECT_EQ(Read_Option(frm, "Clock_Source_Clew"), "");
    EXPECT_EQ(Read_Option(frm, "Clew"), "");
    EXPECT_EQ(Read_Option(frm, "MCU_Type"), "");
    EXPECT_EQ(Read_Option(frm, "No_such_key"), "");
    EXPECT_EQ(Read_Option(frm, ""), "");
}

TEST_F(OptionBytes, ResolveAKeyInTheRowsOfTheSelectedFamily) {
    frm.options.Chip_Bytes = filled(255);
    frm.options.Chip_Bytes[1] = 255 - 8;  // bit 3
    select_family(2);
    EXPECT_EQ(Read_Option(frm, "Clear_EEPROM_Spite"), "0");
    select_family(3);
    EXPECT_EQ(Read_Option(frm, "Clear_EEPROM_Spite"), "1");
    select_family(6);
    EXPECT_EQ(Read_Option(frm, "Clear_EEPROM_Spite"), "1");
}

TEST_F(OptionBytes, ReadByte16ForTheCodeThatBeginsWith16) {
    select_family(3);
    frm.options.Chip_Bytes = filled(255);
    EXPECT_EQ(Read_Option(frm, "Clear_Unused_AP_YES"), "0");
    frm.options.Chip_Bytes[16] = 254;
    EXPECT_EQ(Read_Option(frm, "Clear_Unused_AP_YES"), "1");
    EXPECT_EQ(Read_Option(frm, "Clear_Unused_AP_NO"), "0");
}

TEST_F(OptionBytes, KeepAStateForEachKeyAfterReading) {
    for (const std::int16_t family : all_families()) {
        select_family(family);
        for (const std::int16_t word :
             std::initializer_list<std::int16_t>{0, 255, 0x57, 0xA8, -1}) {
            frm.options.Chip_Bytes = filled(word);
            Read_All_Options(frm);
            ASSERT_EQ(frm.options.Read_State.size(), 28u);
            for (const std::string_view key : keys_with_a_state)
                EXPECT_EQ(frm.options.Read_State.find(key)->second,
                          expected_state(family, key, frm.options.Chip_Bytes))
                    << family << ' ' << key;
        }
    }
}

TEST_F(OptionBytes, HoldTheDefaultsAndNoChoiceAfterReading) {
    const std::map<std::int16_t, Words> defaults = {{2, all_255_but({{1, 253}})},
                                                    {3, all_255_but({{8, 247}})},
                                                    {4, all_255_but({{8, 247}})},
                                                    {6, filled(255)}};
    for (const auto& [family, expected] : defaults) {
        lay_out(family);
        choose({"Option0", 0});
        choose({"Option10", family == 2 ? 1 : 0});
        Compose_Options(frm);
        ASSERT_NE(bytes(), expected) << family;
        Read_All_Options(frm);
        EXPECT_EQ(bytes(), expected) << family;
    }
}

TEST_F(OptionBytes, StayAsTheyAreWhenAFamilyWithoutATableIsRead) {
    for (const std::int16_t family : std::initializer_list<std::int16_t>{-1, 0, 1, 5, 7, 300}) {
        select_family(family);
        bytes() = filled(77);
        frm.options.Chip_Bytes = filled(13);
        Read_All_Options(frm);
        EXPECT_EQ(bytes(), filled(77)) << family;
        EXPECT_EQ(frm.options.Chip_Bytes, filled(13)) << family;
    }
}

// ---- composing ------------------------------------------------------------------

TEST_F(OptionBytes, AreComposedFromTheDefaultPanel) {
    const std::map<std::int16_t, Words> expected = {{0, filled(0)},
                                                    {1, filled(0)},
                                                    {2, all_255_but({{1, 253}})},
                                                    {3, all_255_but({{8, 247}})},
                                                    {4, all_255_but({{8, 247}})},
                                                    {6, all_255_but({{0, 63}})}};
    for (const auto& [family, words] : expected) {
        frm.options.Option_Bytes = {};
        lay_out(family);
        Compose_Options(frm);
        EXPECT_EQ(bytes(), words) << family;
    }
}

TEST_F(OptionBytes, HaveTheBitOfEveryOtherChoice) {
    struct Case {
        std::int16_t family;
        Choice choice;
        std::size_t byte;
        std::int16_t value;
    };
    // clang-format off
    const Case cases[] = {
        {0, {"Option0", 0},  1,   8},

        {2, {"Option0", 0},  1, 252},
        {2, {"Option1", 0},  1, 237},
        {2, {"Option3", 0},  1, 249},
        {2, {"Option4", 0},  1, 189},
        {2, {"Option5", 0},  1, 245},
        {2, {"Option10", 1}, 1, 125},

        {3, {"Option0", 0},  2, 253},
        {3, {"Option1", 0},  8, 246},
        {3, {"Option2", 0},  8, 245},
        {3, {"Option4", 0}, 16, 254},
        {3, {"Option9", 0},  3, 127},
        {3, {"Option10", 0}, 3, 223},
        {3, {"Option11", 0}, 3, 247},

        {4, {"Option0", 0},  2, 253},
        {4, {"Option1", 0},  8, 246},
        {4, {"Option2", 0},  8, 245},
        {4, {"Option4", 0}, 16, 254},
        {4, {"Option9", 0},  3, 127},
        {4, {"Option10", 0}, 3, 223},
        {4, {"Option11", 0}, 3, 247},

        {6, {"Option0", 0},  3, 253},
        {6, {"Option1", 0},  3, 191},
        {6, {"Option2", 0},  8, 254},
        {6, {"Option3", 0},  8, 239},
        {6, {"Option3", 1},  8, 253},
        {6, {"Option4", 0},  8, 247},
        {6, {"Option8", 0},  4, 127},
        {6, {"Option9", 0},  4, 223},
        {6, {"Option10", 0}, 4, 247},
        {6, {"Option11", 1}, 0, 191},
        {6, {"Option12", 1}, 0, 127},
    };
    // clang-format on
    for (const Case& c : cases) {
        frm.options.Option_Bytes = {};
        lay_out(c.family);
        Compose_Options(frm);
        Words expected = bytes();
        choose(c.choice);
        Compose_Options(frm);
        expected[c.byte] = c.value;
        EXPECT_EQ(bytes(), expected)
            << "family " << c.family << ", " << c.choice.first << '(' << c.choice.second << ')';
        Arrange_Options(frm);
        Compose_Options(frm);
        EXPECT_NE(bytes()[c.byte], c.value) << "an old choice is kept, family " << c.family;
    }
}

TEST_F(OptionBytes, HaveTheThreeWaysWithTheDataMemoryOfFamily6) {
    lay_out(6);
    const std::map<int, std::int16_t> byte_8 = {{0, 0xEF}, {1, 0xFD}, {2, 0xFF}};
    for (const int from : {0, 1, 2})
        for (const auto& [way, expected] : byte_8) {
            choose({"Option3", from});
            Compose_Options(frm);
            choose({"Option3", way});
            Compose_Options(frm);
            EXPECT_EQ(bytes()[8], expected) << from << " to " << way;
        }
}

TEST_F(OptionBytes, HaveThePrescalerInTheirLowBits) {
    constexpr std::string_view texts[] = {"2", "4", "8", "16", "32", "64", "128", "256"};
    const std::map<std::int16_t, std::size_t> byte_of = {{3, 3}, {4, 3}, {6, 4}};
    for (const auto& [family, byte] : byte_of) {
        lay_out(family);
        for (std::int16_t n = 0; n < 8; ++n) {
            ASSERT_TRUE(choose_text(frm.screen.comWDT_Prescalar, texts[n]));
            Compose_Options(frm);
            EXPECT_EQ(bytes()[byte], 248 + n) << family << ' ' << texts[n];
        }
        choose({family == 6 ? "Option9" : "Option10", 0});
        choose_text(frm.screen.comWDT_Prescalar, "16");
        Compose_Options(frm);
        EXPECT_EQ(bytes()[byte], 255 - 32 - 4) << family;
    }
}

TEST_F(OptionBytes, TakeAPrescalerThatIsNotInTheListFor256) {
    lay_out(4);
    for (const char* text : {"512", "1", "two", ""}) {
        choose_text(frm.screen.comWDT_Prescalar, "2");
        Compose_Options(frm);
        ASSERT_EQ(bytes()[3], 248);
        fill_list(frm.screen.comWDT_Prescalar, {"2", text});
        choose_text(frm.screen.comWDT_Prescalar, text);
        Compose_Options(frm);
        EXPECT_EQ(bytes()[3], 255) << text;
    }
    frm.screen.comWDT_Prescalar.ListIndex = -1;
    Compose_Options(frm);
    EXPECT_EQ(bytes()[3], 255);
}

TEST_F(OptionBytes, OfFamilies0And2HaveNoPrescaler) {
    for (const std::int16_t family : std::initializer_list<std::int16_t>{0, 2}) {
        lay_out(family);
        choose_text(frm.screen.comWDT_Prescalar, "2");
        const auto before = (Compose_Options(frm), bytes());
        choose_text(frm.screen.comWDT_Prescalar, "256");
        Compose_Options(frm);
        EXPECT_EQ(bytes(), before) << family;
    }
}

TEST_F(OptionBytes, KeepTheBitsThatNoChoiceOwnsWhateverIsChosen) {
    struct Case {
        std::int16_t family;
        std::vector<std::string> pairs;
        std::map<std::size_t, std::pair<int, int>> fixed;  // byte: bits looked at, their value
    };
    const Case cases[] = {
        {2,
         {"Option0", "Option1", "Option3", "Option4", "Option5", "Option10"},
         {{1, {0x22, 0x20}}, {16, {255, 255}}}},
        {4,
         {"Option0", "Option1", "Option2", "Option4", "Option9", "Option10", "Option11"},
         {{2, {0xFD, 0xFD}}, {3, {0x50, 0x50}}, {8, {0xFC, 0xF4}}, {16, {0xFE, 0xFE}}}},
        {6,
         {"Option0", "Option1", "Option2", "Option4", "Option8", "Option9", "Option10", "Option11",
          "Option12"},
         {{0, {0x3F, 0x3F}}, {3, {0xBD, 0xBD}}, {4, {0x50, 0x50}}, {8, {0xF6, 0xF6}}}},
    };
    for (const Case& c : cases) {
        lay_out(c.family);
        for (unsigned picture = 0; picture < 1u << c.pairs.size(); ++picture) {
            for (std::size_t i = 0; i < c.pairs.size(); ++i)
                choose({c.pairs[i], static_cast<int>(picture >> i & 1)});
            Compose_Options(frm);
            for (std::size_t byte = 0; byte < 17; ++byte) {
                const auto fixed = c.fixed.find(byte);
                const auto [mask, value] =
                    fixed == c.fixed.end() ? std::pair{0xFFFF, 255} : fixed->second;
                ASSERT_EQ(bytes()[byte] & mask, value) << c.family << ' ' << byte;
            }
        }
    }
}

TEST_F(OptionBytes, HaveTheirMasksInTheNextColumns) {
    select_family(4);
    Fill_Option_Defaults(frm);
    EXPECT_EQ(frm.options.Option_Bytes[0], all_255_but({{8, 247}}));
    EXPECT_EQ(frm.options.Option_Bytes[1], all_255_but({{8, 247}}));
    EXPECT_EQ(frm.options.Option_Bytes[2], all_255_but({{2, 253}, {3, 80}, {8, 240}}));
    EXPECT_EQ(frm.options.Option_Bytes[3], filled(0));
    select_family(2);
    Fill_Option_Defaults(frm);
    EXPECT_EQ(frm.options.Option_Bytes[0], all_255_but({{1, 253}}));
    EXPECT_EQ(frm.options.Option_Bytes[1], all_255_but({{1, 253}}));
    EXPECT_EQ(frm.options.Option_Bytes[2], all_255_but({{1, 32}, {16, 252}}));
    select_family(6);
    Fill_Option_Defaults(frm);
    EXPECT_EQ(frm.options.Option_Bytes[0], filled(255));
    EXPECT_EQ(frm.options.Option_Bytes[1], filled(255));
    EXPECT_EQ(frm.options.Option_Bytes[2], all_255_but({{0, 63}, {3, 189}, {4, 80}, {8, 240}}));
}

TEST_F(OptionBytes, OfFamily0KeepWhatTheyHeldButTheSpeedBit) {
    lay_out(2);
    Compose_Options(frm);
    lay_out(0);
    const auto masks = frm.options.Option_Bytes[1];
    Compose_Options(frm);
    EXPECT_EQ(bytes(), all_255_but({{1, 245}}));
    EXPECT_EQ(frm.options.Option_Bytes[1], masks);
    choose({"Option0", 0});
    Compose_Options(frm);
    EXPECT_EQ(bytes(), all_255_but({{1, 253}}));
}

TEST_F(OptionBytes, OfFamily1AreNotTouched) {
    for (const std::int16_t word : std::initializer_list<std::int16_t>{0, 77, 255, -1}) {
        lay_out(1);
        for (auto& column : frm.options.Option_Bytes) column = filled(word);
        Compose_Options(frm);
        for (const auto& column : frm.options.Option_Bytes) EXPECT_EQ(column, filled(word));
    }
    ASSERT_EQ(frm.options.Panel_State.size(), 28u);
    for (const auto& [key, state] : frm.options.Panel_State) EXPECT_EQ(state, "") << key;
}

TEST_F(OptionBytes, OfUnknownFamiliesAreNotTouched) {
    lay_out(2);
    Compose_Options(frm);
    const auto kept = frm.options.Option_Bytes;
    const auto states = frm.options.Panel_State;
    choose({"Option0", 0});
    for (const std::int16_t family : families_unknown) {
        select_family(family);
        Compose_Options(frm);
        EXPECT_EQ(frm.options.Option_Bytes, kept) << family;
        EXPECT_EQ(frm.options.Panel_State, states) << family;
        EXPECT_EQ(family_rows(frm), nullptr) << family;
    }
}

TEST_F(OptionBytes, TellWhichChoiceIsOnThePanelAfterComposing) {
    lay_out(6);
    choose({"Option3", 1});
    choose({"Option9", 0});
    Compose_Options(frm);
    const auto on = [this](std::string_view key) {
        return option_on(frm.options.Panel_State, key);
    };
    EXPECT_TRUE(on("Clear_EEPROM_FFH"));
    EXPECT_FALSE(on("Clear_EEPROM_00H"));
    EXPECT_TRUE(on("Clear_EEPROM_Spite"));  // its bit is free of the one that erasing clears
    EXPECT_TRUE(on("Power_On_Run_WDT_YES"));
    EXPECT_FALSE(on("Power_On_Run_WDT_NO"));
    EXPECT_TRUE(on("LowU_Unwrite_YES"));
    EXPECT_FALSE(on("Double_speed_YES"));
    EXPECT_EQ(frm.options.Panel_State.find("Double_speed_YES")->second, "");
    EXPECT_EQ(frm.options.Panel_State.find("WDT_Prescalar")->second, "");
    for (const std::string_view key : keys_with_a_state)
        EXPECT_EQ(frm.options.Panel_State.find(key)->second, expected_state(6, key, bytes()))
            << key;
}

// ---- the states of the rows -------------------------------------------------------

TEST_F(OptionBytes, ComeFromStatesOfThePanelWrittenAnew) {
    for (const std::int16_t family : std::initializer_list<std::int16_t>{0, 2, 3, 4, 6}) {
        lay_out(family);
        choose({"Option0", 0});
        for (Option_Row& row : *family_rows(frm)) row.Option_State = "1";
        Refresh_Option_State(frm);
        for (const Option_Row& row : *family_rows(frm)) {
            std::string expected;
            if (!row.Option_Code.empty()) {
                const Control* control =
                    find_control(frm.screen, row.Option_Control, row.Option_Index);
                expected = control->Value != 0 ? "True" : "False";
            }
            if (row.Option_Key == "WDT_Prescalar") expected = "256";
            EXPECT_EQ(row.Option_State, expected) << family << ' ' << row.Option_Key;
        }
    }
}

TEST_F(OptionBytes, NeedNoStateOfTheRowsBeforeComposing) {
    lay_out(2);
    for (Option_Row& row : *family_rows(frm)) row.Option_State = "True";
    Compose_Options(frm);
    EXPECT_EQ(bytes()[1], 253);
}

TEST_F(OptionBytes, HaveRowsWithoutStatesAfterAReset) {
    for (const std::int16_t family : families_with_options) {
        select_family(family);
        for (auto& rows : frm.options.MCU_Options)
            for (Option_Row& row : rows) row.Option_State = "x";
        Reset_Option_State(frm);
        for (const Option_Row& row : *family_rows(frm)) EXPECT_EQ(row.Option_State, "") << family;
        EXPECT_EQ(frm.options.MCU_Options[7][0].Option_State, "x");
    }
}

TEST_F(OptionBytes, AreAllZeroBeforeTheFirstUse) {
    for (const auto& column : frm.options.Option_Bytes) EXPECT_EQ(column, filled(0));
    EXPECT_EQ(frm.options.Chip_Bytes, filled(0));
}

}  // namespace
}  // namespace vkm
