#include "project/old_project.h"

#include <span>

namespace vkm {
namespace {

struct Pair {
    std::string_view present;
    std::string_view old;
};

constexpr Pair general[] = {
    {project_key::model, old_model_key},
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
    {project_key::buffer_sum, project_key::buffer_sum},
};

constexpr Pair options[] = {
    {"Double_speed_YES", "Option0(0)"},
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
    {"Clear_EEPROM_Spite", "OptionEraseData(1)"},
};

constexpr Pair options_of_family_2[] = {
    {"Interior_Oscillate", "Option0(0)"},   {"Exterior_Oscillate", "Option0(1)"},
    {"Disregard_P10_P11", "Option1(1)"},    {"P10_P11_00_Download", "Option1(0)"},
    {"Clear_EEPROM_00H", "Option2(0)"},     {"Clear_EEPROM_Spite", "Option2(1)"},
    {"Unchangeable_WDT_YES", "Option8(0)"}, {"Unchangeable_WDT_NO", "Option8(1)"},
    {"Power_On_Run_WDT_YES", "Option9(0)"}, {"Power_On_Run_WDT_NO", "Option9(1)"},
    {"Idle_Run_WDT_YES", "Option10(0)"},    {"Idle_Run_WDT_NO", "Option10(1)"},
};

void convert(std::span<const Pair> pairs, const Project_Rows& old, Project_Rows& rows) {
    for (const Pair& pair : pairs)
        rows.push_back({std::string(pair.present), std::string(value_of(old, pair.old))});
}

}  // namespace

bool is_old_project(const Project_Rows& rows) {
    return rows.empty() || rows.front().key != project_key::version;
}

Project_Rows present_rows(const Project_Rows& old, std::int16_t MCU_Family) {
    Project_Rows rows = {{std::string(project_key::version), std::string(project_version)}};
    convert(general, old, rows);
    if (MCU_Family == 2)
        convert(options_of_family_2, old, rows);
    else
        convert(options, old, rows);
    return rows;
}

}  // namespace vkm
