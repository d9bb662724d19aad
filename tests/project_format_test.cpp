// The text of a project and its lines, as values.
#include <gtest/gtest.h>

#include "project/old_project.h"
#include "project/project_format.h"

namespace vkm {
namespace {

using Bytes = std::vector<std::uint8_t>;

TEST(ProjectText, WithoutADataImageEndsWithTheLastDigit) {
    EXPECT_EQ(text_of_project({{"A", "1"}, {"B", ""}}, Bytes{0x02, 0xFF, 0x0C}, std::nullopt),
              "VER: 1.1\r\nA: 1\r\nB: \r\nbuffer_check_sum: 269\r\nEND\r\n02FF0C");
}

TEST(ProjectText, WithADataImageHasItsSectionBehindTheProgram) {
    const Bytes data = {0xA5, 0x00};
    EXPECT_EQ(text_of_project({}, Bytes{0x01}, std::span<const std::uint8_t>(data)),
              "VER: 1.1\r\nbuffer_check_sum: 1\r\nEND\r\n01\r\n"
              "Data_File_Begin:\r\ndata_buffer_check_sum: 165\r\nA500\r\nData_File_End\r\n");
}

TEST(ProjectText, OfAnEmptyDataImageHasAnEmptyLineOfDigits) {
    EXPECT_EQ(text_of_project({}, Bytes{0x01}, std::span<const std::uint8_t>{}),
              "VER: 1.1\r\nbuffer_check_sum: 1\r\nEND\r\n01\r\n"
              "Data_File_Begin:\r\ndata_buffer_check_sum: 0\r\n\r\nData_File_End\r\n");
}

TEST(ProjectText, SumsTheWholeProgramInDecimal) {
    const std::string text = text_of_project({}, Bytes(0x12001, 0xFF), std::nullopt);
    EXPECT_NE(text.find("buffer_check_sum: 18800895\r\n"), std::string::npos);
}

TEST(ProjectRow, IsSplitAtItsFirstColon) {
    const struct {
        std::string_view line;
        Project_Row row;
    } cases[] = {
        {"VER: 1.1", {"VER", "1.1"}},
        {"File_Name: File Buffer: D:\\a:b.hex", {"File_Name", "File Buffer: D:\\a:b.hex"}},
        {"A:", {"A", ""}},
        {"A:B", {"A", "B"}},
        {"A: \t B \t", {"A", "B"}},
        {": B", {"", "B"}},
        {" A : B", {" A ", "B"}},
    };
    for (const auto& c : cases) EXPECT_EQ(project_row(c.line), c.row) << c.line;
    EXPECT_FALSE(project_row("no colon"));
    EXPECT_FALSE(project_row(""));
}

TEST(ProjectRows, GiveTheFirstValueOfAKey) {
    const Project_Rows rows = {{"A", "1"}, {"B", "2"}, {"A", "3"}};
    EXPECT_EQ(value_of(rows, "A"), "1");
    EXPECT_EQ(value_of(rows, "C"), "");
    EXPECT_EQ(value_of(rows, "a"), "");
}

// ---- older files -------------------------------------------------------------

TEST(OldProject, IsOneWhoseFirstRowTellsNoVersion) {
    EXPECT_FALSE(is_old_project({{"VER", "1.1"}}));
    EXPECT_FALSE(is_old_project({{"VER", ""}, {"MCU type", "X"}}));
    EXPECT_TRUE(is_old_project({{"MCU type", "X"}, {"VER", "1.1"}}));
    EXPECT_TRUE(is_old_project({}));
}

// A value that tells where it came from.
Project_Rows old_rows(const std::vector<std::string>& keys) {
    Project_Rows rows;
    for (const std::string& key : keys) rows.push_back({key, "<" + key + ">"});
    return rows;
}

const std::vector<std::string> old_keys = {"MCU type",
                                           "file name",
                                           "File Check Sum(HEX)",
                                           "Auto_Increase_Check",
                                           "Auto_Increase_Address",
                                           "Auto_Increase_Bytes",
                                           "Auto_Increase_Next",
                                           "Auto_Increase",
                                           "Auto_Increase_HEX",
                                           "Auto_Increase_BCD",
                                           "Auto_Increase_ASCII",
                                           "WDT_Prescalar",
                                           "buffer_check_sum",
                                           "Option0(0)",
                                           "Option0(1)",
                                           "Option1(0)",
                                           "Option1(1)",
                                           "Option2(0)",
                                           "Option2(1)",
                                           "AUX_RAM(0)",
                                           "AUX_RAM(1)",
                                           "RST_CLOSE_WDT(0)",
                                           "RST_CLOSE_WDT(1)",
                                           "OptionEraseData(0)",
                                           "OptionEraseData(1)",
                                           "Option8(0)",
                                           "Option8(1)",
                                           "Option9(0)",
                                           "Option9(1)",
                                           "Option10(0)",
                                           "Option10(1)"};

void expect_mapping(const Project_Rows& rows,
                    const std::vector<std::pair<std::string, std::string>>& mapping) {
    for (const auto& [present, old] : mapping)
        EXPECT_EQ(value_of(rows, present), "<" + old + ">") << present;
}

const std::vector<std::pair<std::string, std::string>> general_mapping = {
    {"MCU_Type", "MCU type"},
    {"File_Name", "file name"},
    {"File_Check_Sum", "File Check Sum(HEX)"},
    {"Auto_Increase_Enable", "Auto_Increase_Check"},
    {"Auto_Increase_Address", "Auto_Increase_Address"},
    {"Auto_Increase_Bytes", "Auto_Increase_Bytes"},
    {"Auto_Increase_Next", "Auto_Increase_Next"},
    {"Auto_Increase", "Auto_Increase"},
    {"Auto_Increase_HEX", "Auto_Increase_HEX"},
    {"Auto_Increase_BCD", "Auto_Increase_BCD"},
    {"Auto_Increase_ASCII", "Auto_Increase_ASCII"},
    {"WDT_Prescalar", "WDT_Prescalar"},
    {"buffer_check_sum", "buffer_check_sum"}};

TEST(OldProject, OfEveryFamilyButTheSecondTakesTheFirstListOfOptions) {
    for (const int family : {0, 1, 3, 4, 5, 6}) {
        SCOPED_TRACE(family);
        const Project_Rows rows =
            present_rows(old_rows(old_keys), static_cast<std::int16_t>(family));
        EXPECT_EQ(rows.front(), (Project_Row{"VER", "1.1"}));
        EXPECT_EQ(rows.size(), 1 + 13 + 12u);
        expect_mapping(rows, general_mapping);
        expect_mapping(rows, {{"Double_speed_YES", "Option0(0)"},
                              {"Double_speed_NO", "Option0(1)"},
                              {"Half_Gain_YES", "Option1(0)"},
                              {"Half_Gain_NO", "Option1(1)"},
                              {"Disregard_P10_P11", "Option2(1)"},
                              {"P10_P11_00_Download", "Option2(0)"},
                              {"AUX_RAM_Enable_NO", "AUX_RAM(0)"},
                              {"AUX_RAM_Enable_YES", "AUX_RAM(1)"},
                              {"Reset_Close_WDT_NO", "RST_CLOSE_WDT(0)"},
                              {"Reset_Close_WDT_YES", "RST_CLOSE_WDT(1)"},
                              {"Clear_EEPROM_FFH", "OptionEraseData(0)"},
                              {"Clear_EEPROM_Spite", "OptionEraseData(1)"}});
    }
}

TEST(OldProject, OfTheSecondFamilyTakesTheOtherList) {
    const Project_Rows rows = present_rows(old_rows(old_keys), 2);
    EXPECT_EQ(rows.size(), 1 + 13 + 12u);
    expect_mapping(rows, general_mapping);
    expect_mapping(rows, {{"Interior_Oscillate", "Option0(0)"},
                          {"Exterior_Oscillate", "Option0(1)"},
                          {"Disregard_P10_P11", "Option1(1)"},
                          {"P10_P11_00_Download", "Option1(0)"},
                          {"Clear_EEPROM_00H", "Option2(0)"},
                          {"Clear_EEPROM_Spite", "Option2(1)"},
                          {"Unchangeable_WDT_YES", "Option8(0)"},
                          {"Unchangeable_WDT_NO", "Option8(1)"},
                          {"Power_On_Run_WDT_YES", "Option9(0)"},
                          {"Power_On_Run_WDT_NO", "Option9(1)"},
                          {"Idle_Run_WDT_YES", "Option10(0)"},
                          {"Idle_Run_WDT_NO", "Option10(1)"}});
}

TEST(OldProject, WithoutAKeyHasAnEmptyValue) {
    for (const int family : {0, 2})
        for (const Project_Row& row : present_rows({}, static_cast<std::int16_t>(family)))
            EXPECT_EQ(row.value, row.key == "VER" ? "1.1" : "") << row.key;
}

}  // namespace
}  // namespace vkm
