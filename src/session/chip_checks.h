// The chip that answered, held against what the operator chose, and its clock as
// the log shows it. Values only.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "catalogue/mcu_record.h"

namespace vkm {

struct Model_Facts {
    std::string_view Chip_Letter;  // firmware letter of the chip
    std::string_view Chip_Name;    // its model, empty when its code told none
    std::string_view chip_code;    // Chip_ID_High and Chip_ID_Low together
    std::string_view txtDevice;    // the selected model, as it stands in the box
    const MCU_Record& MCU_Info;    // its record
    std::int32_t Block_Size = 128;
    std::int32_t Chunk_Size = 128;
};

// Each firmware letter has its rule; a letter without one fits anything.
bool chip_fits_model(const Model_Facts& facts);

struct Clock_Facts {
    std::string_view Chip_Letter;
    float Chip_Clock = 0;         // Hz
    bool double_speed_C = false;  // letter C: the chip's option says double speed
    bool double_speed = false;    // letters without a line of their own: Chip_Double_Speed
};

// The clock lines of the log, one text a line.
std::vector<std::string> clock_lines(const Clock_Facts& facts, bool Show_English);

}  // namespace vkm
