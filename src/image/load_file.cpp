// The driver of every load.
#include <algorithm>

#include "catalogue/mcu_catalogue.h"
#include "image/buffer_view.h"
#include "image/image_files.h"
#include "image/image_messages.h"
#include "image/readers.h"
#include "image/start_address.h"
#include "increase/auto_increase.h"

namespace vkm {
namespace {

// Where a range stands that no file has touched yet: any file widens it.
constexpr std::int32_t untouched_low = 0x10FFFF;
constexpr std::int32_t untouched_high = 0;

void tell_start_out_of_range(frmMain& frm, const Image_Buffer& buffer) {
    frm.platform.dialogs.show_text(
        chosen_text(frm.screen, is_program_image(buffer) ? image_text::start_out_of_range_program
                                                         : image_text::start_out_of_range_data));
}

// The image stays when something is loaded and the operator wants to add to it.
// One flag speaks for both images, so a data file that comes first always clears.
void keep_or_clear(frmMain& frm, Image_Buffer& buffer) {
    if (frm.images.File_Loaded && !buffer.Clear_First) {
        buffer.Image_Low = std::min(buffer.Image_Low, buffer.File_Low);
        buffer.Image_High = std::max(buffer.Image_High, buffer.File_High);
        return;
    }
    Fill_Bytes(0, buffer.Bytes);
    frm.images.File_Loaded = false;
    buffer.Image_Low = untouched_low;
    buffer.File_Low = untouched_low;
    buffer.Image_High = untouched_high;
    buffer.File_High = untouched_high;
}

void clear_highlights(IncreaseState& increase) {
    increase.Auto_Increase.Sel_Length = 0;
    increase.Data_Auto_Increase.Sel_Length = 0;
}

}  // namespace

void Read_Buffer_Options(frmMain& frm, Image_Buffer& buffer) {
    const BufferView view = view_of_buffer(frm, buffer);
    buffer.Start_Add = start_address(view.start.Text);
    buffer.Clear_First = view.clear_first.Value != 0;
}

bool Load_File(frmMain& frm, const std::string& path, Image_Buffer& buffer) {
    if (path.empty()) return false;
    Settle_ISP_Range(frm);

    Read_Buffer_Options(frm, buffer);
    if (!start_in_range(buffer.Start_Add, frm.catalogue.MCU_Info, is_program_image(buffer))) {
        tell_start_out_of_range(frm, buffer);
        return false;
    }
    const std::uint32_t number = ++buffer.Load_Number;
    if (is_program_image(buffer)) {
        frm.images.Program_File = path;
        frm.images.Program_Spoilt = false;
    }
    keep_or_clear(frm, buffer);
    clear_highlights(frm.increase);
    frm.images.Buffer_Edit_OK = false;
    if (!Load_Any_File(frm, path, buffer)) return false;
    // The numbering must be enabled anew for each file.
    Switch_Numbering_Off(frm);
    Read_Auto_Increase(frm);
    Refresh_Buffer_View(frm, buffer, view_of_buffer(frm, buffer).set);
    buffer.Has_File = true;
    // A file that was refused has reset its image.
    return buffer.Load_Number == number;
}

}  // namespace vkm
