#include "increase/number_sequence.h"

#include <algorithm>

#include "image/buffer_view.h"
#include "image/hex_page.h"
#include "image/image_files.h"
#include "increase/auto_increase.h"
#include "increase/number_bytes.h"

namespace vkm {
namespace {

// The number stands in the fourth row of the page.
constexpr std::int32_t rows_above_number = 3;

void lock_fields(const NumberPlace& place) {
    for (Control& field : place.fields) field.Enabled = false;
    for (Control& format : place.formats) format.Enabled = false;
}

void enable_click(frmMain& frm, Auto_Increase_Set& set) {
    const NumberPlace place = place_of(frm, set);
    if (place.enable.Value == 0) {
        Free_Number_Fields(frm, place);
        set.Active = false;
        return;
    }
    lock_fields(place);
    Read_Auto_Increase(frm);
    set.Active = false;
    if (Check_Auto_Increase(frm, set) != 0) return;
    Save_Auto_Increase_Settings(frm);
    Patch_Auto_Increase(frm, set);
    Refresh_Buffer_View(frm, place.buffer, set);
    Show_Auto_Increase(frm, set);
}

void advance(frmMain& frm, Auto_Increase_Set& set) {
    Advance_Auto_Increase(frm, set);
    Patch_Auto_Increase(frm, set);
    Redraw_Page(frm, place_of(frm, set).buffer);
    set.Active = true;
}

// True when the set has moved on.
bool advance_counting(frmMain& frm, Auto_Increase_Set& set) {
    if (!set.Active || !counts_up(set)) return false;
    advance(frm, set);
    return true;
}

}  // namespace

void cheAuto_Increase(frmMain& frm) {
    enable_click(frm, frm.increase.Auto_Increase);
}

void cheData_Auto_Increase(frmMain& frm) {
    enable_click(frm, frm.increase.Data_Auto_Increase);
}

void Show_Auto_Increase(frmMain& frm, Auto_Increase_Set& set) {
    const BufferView view = view_of_buffer(frm, place_of(frm, set).buffer);
    const std::int32_t row =
        (set.Address - view.buffer.Image_Low) / static_cast<std::int32_t>(bytes_per_row);
    view.bar.Value =
        std::clamp(row - rows_above_number, view.bar.Min, std::max(view.bar.Min, view.bar.Max));
    vscFile_Change(frm, is_program_image(view.buffer) ? 0 : 1);
}

// Both have moved on before either is saved: a save takes the fields of both, and would
// give the number of this chip's data to the next one if the tool died behind it.
void Advance_Numbers(frmMain& frm) {
    const bool program = advance_counting(frm, frm.increase.Auto_Increase);
    const bool data = advance_counting(frm, frm.increase.Data_Auto_Increase);
    if (program || data) Save_Auto_Increase_Settings(frm);
}

void Advance_Program_Number(frmMain& frm) {
    if (!frm.increase.Auto_Increase.Active) return;
    advance(frm, frm.increase.Auto_Increase);
    Save_Auto_Increase_Settings(frm);
}

}  // namespace vkm
