// Where project files are kept unless the operator wants them elsewhere.
#pragma once

#include <string>

#include "frmMain.h"

namespace vkm {

inline std::string project_folder(const frmMain& frm) {
    return frm.platform.files.program_folder() + "/VKM_Project";
}

}  // namespace vkm
