// The number that is counted up in each chip's image: one set per image.
#pragma once

#include <cstdint>
#include <string>

namespace vkm {

struct Auto_Increase_Set {
    std::string Set_Name;        // "AP_AUTO_INCREASE" or "Data_Auto_Increase"
    std::int32_t Address = 0;    // of the lowest-order byte; the number extends downward
    std::int16_t Length = 0;     // bytes
    std::string Next_Value{};    // decimal digits for the next chip
    std::int16_t Increase = 0;   // added after each good download
    bool Active = false;         // the number is patched into the image
    std::int32_t Sel_Start = 0;  // where it stands in the view's text
    std::int32_t Sel_Length = 0;
    std::int32_t Numeral = 0;  // 0 hexadecimal, 1 packed decimal, 2 ASCII
};

struct IncreaseState {
    Auto_Increase_Set Auto_Increase{.Set_Name = "AP_AUTO_INCREASE"};         // program image
    Auto_Increase_Set Data_Auto_Increase{.Set_Name = "Data_Auto_Increase"};  // data image
};

}  // namespace vkm
