// What is to be erased and programmed, worked out from the chip that answered
// and the size of the image. Values only.
#pragma once

#include <cstdint>
#include <string_view>

#include "catalogue/mcu_record.h"
#include "session/session_state.h"

namespace vkm {

// The firmware letter lies between two letters, both included. Chips that have
// sent no letter have an empty text and lie nowhere.
inline bool letter_within(std::string_view letter, std::string_view first, std::string_view last) {
    return letter >= first && letter <= last;
}

struct Plan_Facts {
    const MCU_Record& Chip_Info;   // model of the chip that answered
    std::string_view Chip_Letter;  // its firmware letter, "A" to "G"
    double version = 0;            // number in Chip_Version
    std::int32_t Image_High = 0;   // last address of the program image
    bool Clear_Unused_AP = false;  // the operator wants the unused program area cleared
};

struct Planned {
    Download_Plan_Record plan;
    bool Over_Limit = false;  // the image is larger than the firmware can reach
};

Planned Make_Download_Plan(const Plan_Facts& facts);

}  // namespace vkm
