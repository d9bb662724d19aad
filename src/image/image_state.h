// The two images of a job and the file being loaded.
#pragma once

#include <string>

#include "image/image_buffer.h"

namespace vkm {

struct ImageState {
    Image_Buffer AP_Buffer;    // the program file
    Image_Buffer Data_Buffer;  // the data file, for the chip's data memory
    bool File_Loaded = false;  // one flag for both images; a download asks for it
    std::string Current_File;  // path of the file being loaded, or loaded last
};

}  // namespace vkm
