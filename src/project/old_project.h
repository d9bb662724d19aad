// Project files of before version 1.1: their keys are the names of the panel's
// controls of that time.
#pragma once

#include <cstdint>

#include "project/project_format.h"

namespace vkm {

// The first row of a present file tells the version.
bool is_old_project(const Project_Rows& rows);

// The rows of a present file. The family decides what an old panel's control stood
// for; the model stands in the row "MCU type".
Project_Rows present_rows(const Project_Rows& old, std::int16_t MCU_Family);

inline constexpr std::string_view old_model_key = "MCU type";

}  // namespace vkm
