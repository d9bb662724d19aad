// The bits of the option bytes by family, written again: what the schema, the
// reading and the composing must agree with.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace vkm::test {

struct Mapped_Bit {
    std::int16_t family;
    std::size_t byte;
    std::size_t bit;
    std::string_view zero;  // key of the choice that stands for 0
    std::string_view one;
};

// clang-format off
inline constexpr Mapped_Bit option_bit_map[] = {
    {0,  1, 3, "Double_speed_NO",      "Double_speed_YES"},

    {2,  1, 0, "Double_speed_YES",     "Double_speed_NO"},
    {2,  1, 2, "P10_P11_00_Download",  "Disregard_P10_P11"},
    {2,  1, 3, "Clear_EEPROM_FFH",     "Clear_EEPROM_Spite"},
    {2,  1, 4, "Half_Gain_YES",        "Half_Gain_NO"},
    {2,  1, 6, "AUX_RAM_Enable_NO",    "AUX_RAM_Enable_YES"},
    {2,  1, 7, "Reset_Close_WDT_NO",   "Reset_Close_WDT_YES"},

    {3,  2, 1, "Interior_Oscillate",   "Exterior_Oscillate"},
    {3,  3, 7, "Unchangeable_WDT_YES", "Unchangeable_WDT_NO"},
    {3,  3, 5, "Power_On_Run_WDT_YES", "Power_On_Run_WDT_NO"},
    {3,  3, 3, "Idle_Run_WDT_YES",     "Idle_Run_WDT_NO"},
    {3,  8, 0, "P10_P11_00_Download",  "Disregard_P10_P11"},
    {3,  8, 1, "Clear_EEPROM_00H",     "Clear_EEPROM_Spite"},
    {3, 16, 0, "Clear_Unused_AP_YES",  "Clear_Unused_AP_NO"},

    {4,  2, 1, "Interior_Oscillate",   "Exterior_Oscillate"},
    {4,  3, 7, "Unchangeable_WDT_YES", "Unchangeable_WDT_NO"},
    {4,  3, 5, "Power_On_Run_WDT_YES", "Power_On_Run_WDT_NO"},
    {4,  3, 3, "Idle_Run_WDT_YES",     "Idle_Run_WDT_NO"},
    {4,  8, 0, "P10_P11_00_Download",  "Disregard_P10_P11"},
    {4,  8, 1, "Clear_EEPROM_00H",     "Clear_EEPROM_Spite"},
    {4, 16, 0, "Clear_Unused_AP_YES",  "Clear_Unused_AP_NO"},

    {6,  0, 7, "LowU_Unwrite_YES",     "LowU_Unwrite_NO"},
    {6,  0, 6, "LowU_Reset_YES",       "LowU_Reset_NO"},
    {6,  3, 1, "Interior_Oscillate",   "Exterior_Oscillate"},
    {6,  3, 6, "Half_Gain_YES",        "Half_Gain_NO"},
    {6,  4, 7, "Unchangeable_WDT_YES", "Unchangeable_WDT_NO"},
    {6,  4, 5, "Power_On_Run_WDT_YES", "Power_On_Run_WDT_NO"},
    {6,  4, 3, "Idle_Run_WDT_YES",     "Idle_Run_WDT_NO"},
    {6,  8, 0, "P10_P11_00_Download",  "Disregard_P10_P11"},
    {6,  8, 3, "Clear_Unused_AP_YES",  "Clear_Unused_AP_NO"},
    // One set of three: the data memory is zeroed, left alone, or erased. Nothing
    // sets bit 1; it is 1 from the start.
    {6,  8, 4, "Clear_EEPROM_00H",     "Clear_EEPROM_Spite"},
    {6,  8, 1, "Clear_EEPROM_FFH",     ""},
};

inline constexpr std::array<std::string_view, 28> keys_with_a_state = {
    "Double_speed_YES",    "Double_speed_NO",      "Interior_Oscillate",  "Exterior_Oscillate",
    "Half_Gain_YES",       "Half_Gain_NO",         "Disregard_P10_P11",   "P10_P11_00_Download",
    "AUX_RAM_Enable_NO",   "AUX_RAM_Enable_YES",   "Reset_Close_WDT_NO",  "Reset_Close_WDT_YES",
    "Clear_EEPROM_00H",    "Clear_EEPROM_FFH",     "Clear_EEPROM_Spite",  "Clear_Unused_AP_YES",
    "Clear_Unused_AP_NO",  "Unchangeable_WDT_YES", "Unchangeable_WDT_NO", "Power_On_Run_WDT_YES",
    "Power_On_Run_WDT_NO", "Idle_Run_WDT_YES",     "Idle_Run_WDT_NO",     "LowU_Unwrite_YES",
    "LowU_Unwrite_NO",     "LowU_Reset_YES",       "LowU_Reset_NO",       "WDT_Prescalar",
};
// clang-format on

inline constexpr std::int16_t families_with_options[] = {0, 1, 2, 3, 4, 6};
inline constexpr std::int16_t families_unknown[] = {-1, 5, 7, 300};

}  // namespace vkm::test
