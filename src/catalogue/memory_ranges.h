// Addresses that follow from a model's record instead of standing in it.
#pragma once

#include <cstdint>
#include <string_view>

#include "catalogue/mcu_record.h"

namespace vkm {

struct IspRange {
    std::int32_t ISP_Start = 0;  // first address of the boot block; 0 for families without a rule
    std::int32_t shown_end = 0;  // last address of the program area as the operator sees it
};

// The boot block's place by family. chosen_name is the text of txtDevice: the
// size of the block goes by it and not by the record.
IspRange isp_range(const MCU_Record& record, std::string_view chosen_name);

// The 5416, 5420 and 5424 models: family 4, more than 12 K of program, and a data
// memory behind it.
bool Is_Large_54xx(const MCU_Record& record);

}  // namespace vkm
