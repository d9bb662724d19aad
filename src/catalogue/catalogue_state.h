// The selected model and what follows from it.
#pragma once

#include <cstdint>
#include <string>

#include "catalogue/mcu_record.h"

namespace vkm {

struct frmMain;

struct CatalogueState {
    MCU_Record MCU_Info;            // the model that the operator selected
    MCU_Record Chip_Info;           // the model of the chip that answered
    std::int16_t Block_Size = 128;  // bytes; unit in which programming is retried, 128 or 512
    std::string SoftICE_File;       // trimmed SoftICE_ROM of the selected model
    bool SoftICE_Enable = false;    // it names one

    // A plug; null is passed over.
    void (*Rebuild_Register_List)(frmMain&) = nullptr;  // registers of the target monitor
};

}  // namespace vkm
