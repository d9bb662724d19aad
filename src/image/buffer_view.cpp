#include "image/buffer_view.h"

#include <algorithm>

#include "image/hex_page.h"
#include "image/image_files.h"
#include "image/image_messages.h"
#include "increase/auto_increase.h"
#include "text/hexadecimal.h"

namespace vkm {
namespace {

// A page drawn by the scroll bar ends two bytes short of its last row.
constexpr std::int64_t page_reach = 989;
// The bar stops where the last rows of the image still have company.
constexpr std::int32_t rows_kept_in_view = 3;
// Above the rows of a page there are two empty ones.
constexpr std::int32_t empty_rows = 2;

// As many as the box has room for; a page that isn't drawn yet has its most.
std::int64_t rows_of(const Control& box) {
    if (box.Rows <= 0) return rows_per_page;
    return std::clamp<std::int64_t>(box.Rows - empty_rows, 1, rows_per_page);
}

// The program's number is shown while its numbering is enabled, the data's only
// while it stands in the image.
bool number_is_shown(const frmMain& frm, const BufferView& view) {
    return is_program_image(view.buffer) ? frm.screen.cheAuto_Increase.Value != 0 : view.set.Active;
}

// The insertion point stays at the number's place in the page also when the page is
// scrolled away from it.
void select_number(const frmMain& frm, const BufferView& view) {
    if (view.set.Length <= 0) return;
    const auto end = static_cast<std::int32_t>(view.page.Text.size());
    view.page.SelStart = std::min(view.set.Sel_Start, end);
    view.page.SelLength = number_is_shown(frm, view) ? view.set.Sel_Length : 0;
}

void copy_to_operator(const BufferView& view) {
    view.shown.Text = view.page.Text;
    view.shown.SelStart = view.page.SelStart;
    view.shown.SelLength = view.page.SelLength;
}

}  // namespace

BufferView view_of_element(frmMain& frm, int element) {
    Screen& screen = frm.screen;
    if (element == 0)
        return {.buffer = frm.images.AP_Buffer,
                .set = frm.increase.Auto_Increase,
                .page = screen.txtBuffer,
                .shown = screen.txtBuffer2,
                .bar = screen.vscFile[0],
                .frame = screen.Frame7,
                .caption = image_text::program_caption,
                .sum = screen.txtFileCheckSum,
                .start = screen.txtAP_FileStart,
                .clear_first = screen.cheClearAP_Buffer};
    return {.buffer = frm.images.Data_Buffer,
            .set = frm.increase.Data_Auto_Increase,
            .page = screen.txtDataFlash1,
            .shown = screen.tetDataFlash2,
            .bar = screen.vscFile[1],
            .frame = screen.frmDataFlash,
            .caption = image_text::data_caption,
            .sum = screen.txtDataFileCheckSum,
            .start = screen.txtDataFileStart,
            .clear_first = screen.cheClearDataBuffer};
}

BufferView view_of_buffer(frmMain& frm, const Image_Buffer& buffer) {
    return view_of_element(frm, is_program_image(buffer) ? 0 : 1);
}

void Refresh_Buffer_View(frmMain& frm, Image_Buffer& buffer, Auto_Increase_Set& set) {
    buffer.Image_Low = std::min(buffer.Image_Low, buffer.File_Low);
    buffer.Image_High = std::max(buffer.Image_High, buffer.File_High);
    const int element = is_program_image(buffer) ? 0 : 1;
    if (set.Active) {
        // A number outside the file is shown and programmed too; the low end goes
        // one byte further than the number reaches, as far as there is one.
        buffer.Image_High = std::max(buffer.Image_High, set.Address);
        buffer.Image_Low = std::min(buffer.Image_Low, std::max(set.Address - set.Length, 0));
    }
    Control& bar = view_of_element(frm, element).bar;
    bar.Max = (buffer.Image_High - buffer.Image_Low) / static_cast<std::int32_t>(bytes_per_row) -
              rows_kept_in_view;
    bar.Value = std::clamp(bar.Value, bar.Min, std::max(bar.Min, bar.Max));
    vscFile_Change(frm, element);
}

void vscFile_Change(frmMain& frm, int element) {
    if (element < 0 || element > 1) return;
    const BufferView view = view_of_element(frm, element);
    Redraw_Page(frm, view.buffer);
    if (view.frame.Visible) frm.screen.Focus_Request = view.shown.Name;
}

void Redraw_Page(frmMain& frm, const Image_Buffer& buffer) {
    const BufferView view = view_of_buffer(frm, buffer);
    const std::int64_t low = view.buffer.Image_Low;
    const std::int64_t first_row = low / bytes_per_row;
    std::int64_t first = (view.bar.Value + first_row) * bytes_per_row;
    if (first < low) first = first_row * bytes_per_row;
    const std::int64_t last = std::min<std::int64_t>(first + page_reach, view.buffer.Image_High);
    view.set.Sel_Length = 0;
    Draw_Page(frm, view, first, last);
    select_number(frm, view);
    copy_to_operator(view);
}

void Fit_Page(frmMain& frm, const Image_Buffer& buffer) {
    const BufferView view = view_of_buffer(frm, buffer);
    const std::string length = frm.screen.txt_length.Text;
    const std::int32_t start = view.shown.SelStart;
    const std::int32_t chosen = view.shown.SelLength;
    const bool operators = start != view.page.SelStart || chosen != view.page.SelLength;
    Redraw_Page(frm, buffer);
    frm.screen.txt_length.Text = length;
    Enable_Save_File(frm);
    if (!operators) return;
    const auto end = static_cast<std::int32_t>(view.shown.Text.size());
    view.shown.SelStart = std::min(start, end);
    view.shown.SelLength = std::min(chosen, end - view.shown.SelStart);
}

// No turn of the event loop in here: a page takes some microseconds, and text
// and selection stay together.
void Draw_Page(frmMain& frm, const BufferView& view, std::int64_t first, std::int64_t last) {
    Read_Auto_Increase(frm);
    const std::int64_t rows = rows_of(view.shown);
    view.page.Text = hex_page(view.buffer.Bytes, first, last, rows);
    view.page.SelStart = 0;
    view.page.SelLength = 0;
    const std::int64_t number_start = std::int64_t{view.set.Address} - (view.set.Length - 1);
    if (const auto place = place_in_page(view.page.Text, first, number_start, view.set.Length)) {
        view.set.Sel_Start = place->start;
        view.set.Sel_Length = place->length;
    }
    copy_to_operator(view);
    view.bar.LargeChange = static_cast<std::int32_t>(rows);
    const std::int64_t length = std::int64_t{view.buffer.Image_High} + 1;
    frm.screen.txt_length.Text =
        hex_text(static_cast<std::uint64_t>(std::max<std::int64_t>(length, 0)));
    Enable_Save_File(frm);
}

}  // namespace vkm
