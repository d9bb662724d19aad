#include "image/image_files.h"

#include <algorithm>

#include "image/buffer_view.h"
#include "image/hex_page.h"

namespace vkm {
namespace {

// An emptied image still shows 1 KB, of which its view holds a page.
constexpr std::int32_t empty_image_high = 0x3FF;
constexpr std::int32_t empty_view_rows = 64;

}  // namespace

void Allocate_Buffers(frmMain& frm) {
    frm.images.AP_Buffer.Buffer_Name = "AP_FILE";
    frm.images.AP_Buffer.Bytes.assign(ap_buffer_size, 0);
    frm.images.Data_Buffer.Buffer_Name = "Data_File";
    frm.images.Data_Buffer.Bytes.assign(data_buffer_size, 0);
}

void Fill_Bytes(std::uint8_t value, std::span<std::uint8_t> bytes) {
    std::ranges::fill(bytes, value);
}

void Reset_Buffer(frmMain& frm, std::uint8_t value, Image_Buffer& buffer) {
    ++buffer.Load_Number;
    Fill_Bytes(value, buffer.Bytes);
    buffer.File_High = empty_image_high;
    buffer.Image_High = empty_image_high;
    buffer.File_Low = 0;
    buffer.Image_Low = 0;
    buffer.Sum = 0;
    buffer.Has_File = false;
    if (is_program_image(buffer)) {
        frm.images.File_Loaded = false;
        frm.images.Program_Spoilt = false;
    }

    const BufferView view = view_of_buffer(frm, buffer);
    view.bar.Min = 0;
    view.bar.Max = empty_view_rows;
    view.bar.Value = 0;
    const std::int64_t page_end = buffer.File_Low + rows_per_page * bytes_per_row - 1;
    Draw_Page(frm, view, buffer.File_Low, std::min<std::int64_t>(page_end, buffer.File_High));
    view.frame.Caption = view.caption;
    view.sum.Text.clear();
}

}  // namespace vkm
