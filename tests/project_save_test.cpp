// What stands in a project that the operator saved, to the byte.
#include "project_bench.h"

#include "project/project_items.h"
#include "session/download_session.h"

namespace vkm::test {
namespace {

// The keys of the file, in its order; they are read by tools of all versions.
const std::vector<std::string> general_keys = {"MCU_Type",
                                               "File_Name",
                                               "File_Check_Sum",
                                               "Dtat_File_Name",
                                               "Dtat_File_CheckSum",
                                               "Auto_Increase_Enable",
                                               "Auto_Increase_Address",
                                               "Auto_Increase_Bytes",
                                               "Auto_Increase_Next",
                                               "Auto_Increase",
                                               "Auto_Increase_HEX",
                                               "Auto_Increase_BCD",
                                               "Auto_Increase_ASCII",
                                               "Data_Increase_Enable",
                                               "Data_Increase_Address",
                                               "Data_Increase_Bytes",
                                               "Data_Increase_Next",
                                               "Data_Increase",
                                               "Data_Increase_HEX",
                                               "Data_Increase_BCD",
                                               "Data_Increase_ASCII"};

const std::vector<std::string> keys_of_options = {
    "Double_speed_YES",    "Double_speed_NO",      "Interior_Oscillate",  "Exterior_Oscillate",
    "Half_Gain_YES",       "Half_Gain_NO",         "Disregard_P10_P11",   "P10_P11_00_Download",
    "AUX_RAM_Enable_NO",   "AUX_RAM_Enable_YES",   "Reset_Close_WDT_NO",  "Reset_Close_WDT_YES",
    "Clear_EEPROM_00H",    "Clear_EEPROM_FFH",     "Clear_EEPROM_Spite",  "Clear_Unused_AP_YES",
    "Clear_Unused_AP_NO",  "Unchangeable_WDT_YES", "Unchangeable_WDT_NO", "Power_On_Run_WDT_YES",
    "Power_On_Run_WDT_NO", "Idle_Run_WDT_YES",     "Idle_Run_WDT_NO",     "LowU_Unwrite_YES",
    "LowU_Unwrite_NO",     "LowU_Reset_YES",       "LowU_Reset_NO",       "WDT_Prescalar"};

std::string lines(const std::vector<std::string>& keys, const std::vector<std::string>& values) {
    std::string text;
    EXPECT_EQ(keys.size(), values.size());
    for (std::size_t i = 0; i < std::min(keys.size(), values.size()); ++i)
        text += keys[i] + ": " + values[i] + "\r\n";
    return text;
}

struct Panel {
    std::string model;
    std::vector<std::string> options;  // as they are laid out
};

// clang-format off
const std::string T = "True", F = "False", none;
const std::vector<Panel> panels = {
    // Family 0: double speed alone.
    {"VKM47H58RK",  {F, T, none, none, none, none, none, none, none, none, none, none, none, none,
                     none, none, none, none, none, none, none, none, none, none, none, none, none,
                     none}},
    // Family 1 has no options.
    {"VKM47W58AD",  std::vector<std::string>(28)},
    {"VKM47H58RK+", {F, T, none, none, F, T, T, F, F, T, F, T, none, F,
                     T, none, none, none, none, none, none, none, none, none, none, none, none,
                     none}},
    {"VKM26H2052",  {none, none, F, T, none, none, T, F, none, none, none, none, F, none,
                     T, F, T, F, T, F, T, F, T, none, none, none, none,
                     "7"}},
    {"VKM26H5404",  {none, none, F, T, none, none, T, F, none, none, none, none, F, none,
                     T, F, T, F, T, F, T, F, T, none, none, none, none,
                     "7"}},
    {"VKM27J060",   {none, none, F, T, F, T, T, F, none, none, none, none, F, F,
                     T, F, T, F, T, F, T, F, T, T, F, T, F,
                     "7"}},
};
// clang-format on

struct SavedPanel : ::testing::TestWithParam<std::size_t> {};

TEST_P(SavedPanel, StandsInTheFileOfEveryFamilyByAll28Keys) {
    const Panel& panel = panels[GetParam()];
    ProjectBench bench(panel.model);
    const Bytes program = bytes_without_zero(20);
    bench.load_bytes(program);
    EXPECT_EQ(bench.save(), "VER: 1.1\r\n" + lines(general_keys, {panel.model,
                                                                  "File Buffer: ",
                                                                  "",
                                                                  "Data File: ",
                                                                  "",
                                                                  "0",
                                                                  "FFFF",
                                                                  "8",
                                                                  "0000",
                                                                  "1",
                                                                  F,
                                                                  T,
                                                                  F,
                                                                  "0",
                                                                  "FFFF",
                                                                  "8",
                                                                  "0000",
                                                                  "1",
                                                                  F,
                                                                  T,
                                                                  F}) +
                                lines(keys_of_options, panel.options) + "buffer_check_sum: " +
                                decimal_sum(program) + "\r\nEND\r\n" + hexadecimal(program));
}

INSTANTIATE_TEST_SUITE_P(OfAllFamilies, SavedPanel, ::testing::Range<std::size_t>(0, 6));

TEST(SavedProject, HoldsEverythingThatTheScreenShows) {
    ProjectBench bench("VKM26H5404");
    Screen& s = bench.frm.screen;
    const Bytes program = bytes_without_zero(700, 2);
    const Bytes data = bytes_without_zero(33, 3);
    bench.load_bytes(program);
    bench.load_data_bytes(data);
    s.Frame7.Caption = "File Buffer: D:\\程序\\a:1.hex";
    s.txtFileCheckSum.Text = "12AB";
    s.frmDataFlash.Caption = "Data File: D:\\data: 2.bin";
    s.txtDataFileCheckSum.Text = "34CD";
    s.cheAuto_Increase.Value = 1;
    s.cheData_Auto_Increase.Value = 0;
    const char* fields[2][4] = {{"0123", "4", "00077", "3"}, {"0010", "2", "5", "-1"}};
    for (std::size_t i = 0; i < 4; ++i) {
        s.texAuto_Increase[i].Text = fields[0][i];
        s.texData_Auto_Increase[i].Text = fields[1][i];
    }
    for (std::size_t i = 0; i < 3; ++i) {
        s.optAuto_Increase[i].Value = i == 2;
        s.optData_Auto_Increase[i].Value = i == 0;
    }
    s.Option0[0].Value = 1;
    s.Option0[1].Value = 0;
    s.comWDT_Prescalar.ListIndex = 3;

    const std::string text = bench.save();
    const std::vector<std::string> options = {none, none, T, F,    none, none, T,    F,  none, none,
                                              none, none, F, none, T,    F,    T,    F,  T,    F,
                                              T,    F,    T, none, none, none, none, "3"};
    EXPECT_EQ(text, "VER: 1.1\r\n" +
                        // The path in GBK.
                        lines(general_keys, {"VKM26H5404",
                                             "File Buffer: D:\\\xB3\xCC\xD0\xF2\\a:1.hex",
                                             "12AB",
                                             "Data File: D:\\data: 2.bin",
                                             "34CD",
                                             "1",
                                             "0123",
                                             "4",
                                             "00077",
                                             "3",
                                             F,
                                             F,
                                             T,
                                             "0",
                                             "0010",
                                             "2",
                                             "5",
                                             "-1",
                                             T,
                                             F,
                                             F}) +
                        lines(keys_of_options, options) +
                        "buffer_check_sum: " + decimal_sum(program) + "\r\nEND\r\n" +
                        hexadecimal(program) + data_section(data));
}

TEST(SavedProject, WritesTheProgramFromAddress0WhereverItBegins) {
    ProjectBench bench;
    bench.load_bytes(Bytes{0xAB, 0xCD}, 3);
    const std::string text = bench.save();
    EXPECT_TRUE(ends_with(text, "\r\nEND\r\n000000ABCD")) << text;
    EXPECT_EQ(line_value(text, "buffer_check_sum"), std::to_string(0xAB + 0xCD));
}

TEST(SavedProject, HasNoMoreBytesThanTheImage) {
    ProjectBench bench;
    bench.load_bytes(Bytes{1});
    bench.frm.images.AP_Buffer.Image_High = 0x20000;
    const std::string text = bench.save();
    EXPECT_EQ(text.size() - (text.find("\r\nEND\r\n") + 7), 2 * 0x12001u);
}

TEST(SavedProject, ReadsThePanelAnew) {
    ProjectBench bench("VKM47H58RK");
    bench.load_bytes(Bytes{1});
    bench.save();
    bench.frm.screen.Option0[0].Value = 1;
    bench.frm.screen.Option0[1].Value = 0;
    EXPECT_EQ(line_value(bench.save(), "Double_speed_YES"), T);
    EXPECT_EQ(line_value(bench.text_on_disk(), "Double_speed_NO"), F);
}

TEST(ProjectItem, OfNoKeyIsEmpty) {
    ProjectBench bench;
    EXPECT_EQ(Project_Value(bench.frm, "MCU_Type"), "VKM47H58RK+");
    EXPECT_EQ(Project_Value(bench.frm, "No_Such_Key"), "");
    EXPECT_EQ(Project_Option_Value(bench.frm, "No_Such_Key"), "");
    // Not an item of this family.
    EXPECT_EQ(Project_Option_Value(bench.frm, "WDT_Prescalar"), "");
}

}  // namespace
}  // namespace vkm::test
