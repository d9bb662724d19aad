// The option schema: the one description of every option. The panel, the
// read-back lines, project files and the option bytes are all driven by it.
//
// A new choice is one new line in option_schema.cpp; a key that no family had
// before also goes into option_keys. The family of the selected model decides which
// rows apply, and a key is looked up in that family's rows and nowhere else: families
// give the same key other bits.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "options/options_state.h"

namespace vkm {

inline constexpr int general_group = 7;  // the general items of a project; no bits

// The rows of a group, 0 to 7, as they are at start-up; none for the groups that
// stay empty.
std::vector<Option_Row> option_rows(int group);

// The group of a family; none for a family without one. And the family of a group,
// 0 to 5; for the groups 3 and 4 the same rows stand twice.
std::optional<int> option_group(std::int16_t MCU_Family);
std::int16_t family_of_group(int group);

// Keys that the code asks for by name.
namespace option_key {
inline constexpr std::string_view double_speed = "Double_speed_YES";
inline constexpr std::string_view clear_unused_AP = "Clear_Unused_AP_YES";
inline constexpr std::string_view half_gain_label = "Half_Gain_Clew";
inline constexpr std::string_view power_on_run_WDT = "Power_On_Run_WDT_YES";
inline constexpr std::string_view idle_WDT_label = "Idle_Run_WDT_Clew";
inline constexpr std::string_view idle_WDT_yes = "Idle_Run_WDT_YES";
inline constexpr std::string_view idle_WDT_no = "Idle_Run_WDT_NO";
inline constexpr std::string_view prescaler = "WDT_Prescalar";
}  // namespace option_key

// The keys that projects store, in their order; all but the last, which has no bit,
// have states.
inline constexpr std::array<std::string_view, 28> option_keys = {
    "Double_speed_YES",    "Double_speed_NO",      "Interior_Oscillate",  "Exterior_Oscillate",
    "Half_Gain_YES",       "Half_Gain_NO",         "Disregard_P10_P11",   "P10_P11_00_Download",
    "AUX_RAM_Enable_NO",   "AUX_RAM_Enable_YES",   "Reset_Close_WDT_NO",  "Reset_Close_WDT_YES",
    "Clear_EEPROM_00H",    "Clear_EEPROM_FFH",     "Clear_EEPROM_Spite",  "Clear_Unused_AP_YES",
    "Clear_Unused_AP_NO",  "Unchangeable_WDT_YES", "Unchangeable_WDT_NO", "Power_On_Run_WDT_YES",
    "Power_On_Run_WDT_NO", "Idle_Run_WDT_YES",     "Idle_Run_WDT_NO",     "LowU_Unwrite_YES",
    "LowU_Unwrite_NO",     "LowU_Reset_YES",       "LowU_Reset_NO",       "WDT_Prescalar",
};

// The first row of this key, or null.
Option_Row* find_row(std::vector<Option_Row>& rows, std::string_view key);
const Option_Row* find_row(const std::vector<Option_Row>& rows, std::string_view key);

}  // namespace vkm
