// What the tool knows of one model: a row of the catalogue with its numbers
// converted. Addresses are those of the image (src/image), in bytes.
#pragma once

#include <cstdint>
#include <string>

namespace vkm {

struct MCU_Record {
    std::int16_t MCU_Family = 0;  // 0, 1, 2, 3, 4, 6; anything else does nothing
    std::string MCU_ID;           // ID code that the boot firmware reports, 2 or 4 hex digits
    std::int32_t AP_Start = 0;    // first program address
    std::int32_t AP_End = 0;      // last program address
    std::int32_t AP_End_Alt = 0;  // carried along, nothing reads it
    std::int32_t Data_Start = 0;  // first address of the data memory
    std::int32_t Data_End = 0;    // its last; below Data_Start there is none
    std::int32_t Code_Top = 0;    // one past the code space
    std::int32_t ISP_Start = 0;   // first address of the boot block; computed on selection
    std::int32_t Memory_Top = 0;  // last address that a file may reach
    bool Split_Flag = false;      // the program area reaches up to ISP_Start - 1
    std::string MCU_Name;
    std::string Old_ID;       // code of the same model with older firmware, else empty
    std::string SoftICE_ROM;  // image file of the debug monitor, else empty
};

}  // namespace vkm
