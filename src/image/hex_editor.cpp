#include "image/hex_editor.h"

#include <algorithm>
#include <string>

#include "image/buffer_view.h"
#include "image/hex_edit.h"
#include "image/image_files.h"
#include "image/image_messages.h"
#include "text/hexadecimal.h"
#include "text/trimming.h"
#include "waiting/waiting.h"

namespace vkm {
namespace {

constexpr int page_up_key = 33;
constexpr int page_down_key = 34;
constexpr int up_key = 38;
constexpr int down_key = 40;

// The insertion point has come to the first empty rows, or to the last digits.
constexpr std::int32_t top_of_page = 3;
constexpr std::int32_t foot_of_page = 10;

constexpr std::int32_t edit_permission_ms = 20000;

void scroll(frmMain& frm, int element, std::int32_t rows) {
    Control& bar = view_of_element(frm, element).bar;
    const std::int32_t value = std::clamp(bar.Value + rows, bar.Min, std::max(bar.Min, bar.Max));
    if (value == bar.Value) return;
    bar.Value = value;
    vscFile_Change(frm, element);
}

void scroll_below_caret(frmMain& frm, int element, std::int32_t rows) {
    Control& box = view_of_element(frm, element).shown;
    const std::int32_t caret = box.SelStart;
    scroll(frm, element, rows);
    box.SelStart = caret;
    box.SelLength = 0;
}

bool digit_selected(const Control& box) {
    return box.SelLength == 1 && stands_on_digit(box.Text, box.SelStart);
}

bool may_edit(frmMain& frm) {
    if (frm.images.Buffer_Edit_OK) return true;
    if (!frm.platform.dialogs.ask_yes_no(chosen_text(frm.screen, image_text::ask_to_edit)))
        return false;
    if (!frm.images.File_Loaded) {
        frm.platform.dialogs.show_text(chosen_text(frm.screen, image_text::nothing_to_edit));
        return false;
    }
    frm.images.Buffer_Edit_OK = true;
    restart_timer(frm, frm.timers.Timer11, edit_permission_ms);
    return true;
}

// The byte as the text shows it goes into the program image, whichever view it is.
void store_byte_before(frmMain& frm, const Control& box) {
    const auto byte = byte_before(box.Text, box.SelStart);
    std::vector<std::uint8_t>& image = frm.images.AP_Buffer.Bytes;
    if (byte && byte->address >= 0 && byte->address < static_cast<std::int32_t>(image.size()))
        image[static_cast<std::size_t>(byte->address)] = byte->value;
}

}  // namespace

void Buffer_Key_Down(frmMain& frm, int element, int key) {
    const BufferView view = view_of_element(frm, element);
    const auto length = static_cast<std::int32_t>(character_count(view.shown.Text));
    switch (key) {
        case page_up_key:
            return scroll(frm, element, -view.bar.LargeChange);
        case page_down_key:
            return scroll(frm, element, view.bar.LargeChange);
        case up_key:
            if (view.shown.SelStart < top_of_page)
                scroll_below_caret(frm, element, -view.bar.SmallChange);
            return;
        case down_key:
            if (view.shown.SelStart > length - foot_of_page)
                scroll_below_caret(frm, element, view.bar.SmallChange);
            return;
        default:
            return;
    }
}

void Buffer_Key_Press(frmMain& frm, int element, std::string_view text) {
    if (text.size() != 1 || hex_digit(text.front()) < 0) return;
    Control& box = view_of_element(frm, element).shown;
    if (digit_selected(box)) {
        // Behind the question the page may be another one.
        if (!may_edit(frm) || !digit_selected(box)) return;
        box.Text.replace(static_cast<std::size_t>(box.SelStart), 1, upper_case(text));
        ++box.SelStart;
        store_byte_before(frm, box);
        restart_timer(frm, frm.timers.Timer11, edit_permission_ms);
    }
    Snap_Cursor(box);
}

void Snap_Cursor(Control& box) {
    box.SelStart = next_digit(box.Text, box.SelStart);
    box.SelLength = stands_on_digit(box.Text, box.SelStart) ? 1 : 0;
}

void Timer11_Tick(frmMain& frm) {
    stop_timer(frm.timers.Timer11);
    frm.images.Buffer_Edit_OK = false;
}

}  // namespace vkm
