// The two images of a job and the file being loaded.
#pragma once

#include <string>

#include "image/image_buffer.h"

namespace vkm {

struct frmMain;

struct ImageState {
    Image_Buffer AP_Buffer;    // the program file
    Image_Buffer Data_Buffer;  // the data file, for the chip's data memory
    bool File_Loaded = false;  // one flag for both images; a download asks for it
    std::string Current_File;  // path that was chosen last, of either kind
    std::string Program_File;  // path loaded last into AP_Buffer, which a reload takes again

    // AP_Buffer holds a program whose sum was wrong: no file of the other image makes
    // that a job.
    bool Program_Spoilt = false;
    bool Buffer_Edit_OK = false;  // the operator has agreed to change the program image

    // Plugs; a plug that is null is passed over.
    void (*Show_Chosen_Page)(frmMain&) = nullptr;  // TabStrip2: shows the page of its chosen tab
    void (*Load_Project)(frmMain&, const std::string& path) = nullptr;  // a ".VKM" file was chosen
};

}  // namespace vkm
