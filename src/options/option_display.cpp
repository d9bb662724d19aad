#include "options/option_display.h"

#include <string>
#include <string_view>

#include "options/mcu_options.h"
#include "options/option_bytes.h"
#include "options/option_schema.h"
#include "options/option_texts.h"
#include "screen/message_text.h"
#include "text/trimming.h"

namespace vkm {
namespace {

using Rows = std::vector<Option_Row>;

// How the options of a letter are shown: the group of their rows, the first row
// that also stands in LabLock, and the line above them.
struct Read_Form {
    int group;
    std::size_t first_on_page;
    std::string_view heading;
};
constexpr Read_Form form_of_C = {2, 10, option_text::heading};  // speed and gain: the log alone
constexpr Read_Form form_of_DEF = {4, 0, option_text::heading_indented};

constexpr std::uint8_t double_speed_bit = 0x08;  // of the option byte of letter A
constexpr std::size_t heading_line = 1;          // of LabLock
constexpr std::size_t first_option_line = 2;

Rows& rows_of(frmMain& frm, int group) {
    return frm.options.MCU_Options[static_cast<std::size_t>(group)];
}

std::string version_and_letter(const frmMain& frm) {
    return frm.link.Chip_Version + frm.link.Chip_Letter;
}

bool agrees(const Option_Row& row) {
    return row.Option_State == "1";
}

void show_line(frmMain& frm, std::size_t line, std::string_view text) {
    if (line >= frm.screen.LabLock.size()) return;
    Control& label = frm.screen.LabLock[line];
    label.Caption = text;
    label.Enabled = true;
    label.Visible = true;
}

// The prescaler counts only in a chip that starts its watchdog by itself, and the
// text says so.
void decode_prescaler(frmMain& frm, int group) {
    Rows& rows = rows_of(frm, group);
    Option_Row* row = find_row(rows, option_key::prescaler);
    const auto byte = prescaler_byte(family_of_group(group));
    if (!row || !byte) return;
    const Option_Row* watchdog = find_row(rows, option_key::power_on_run_WDT);
    const bool runs = watchdog && agrees(*watchdog);
    row->Option_State = "1";
    row->Option_Text = runs ? option_text::prescaler_runs : option_text::prescaler_rests;
    row->Option_Text += std::to_string(prescaler_of(frm.options.Chip_Bytes[*byte]));
}

void Show_Options_Read(frmMain& frm, const Read_Form& form) {
    Decode_Chip_Options(frm, form.group);
    const Rows& rows = rows_of(frm, form.group);
    for (const Option_Row& row : rows)
        if (agrees(row)) append_message(frm.screen, trimmed(row.Option_Text));

    show_line(frm, heading_line,
              std::string(form.heading) + frm.link.Chip_Name +
                  std::string(option_text::heading_firmware) + version_and_letter(frm));
    std::size_t line = first_option_line;
    for (std::size_t i = form.first_on_page; i < rows.size(); ++i)
        if (agrees(rows[i])) show_line(frm, line++, trimmed(rows[i].Option_Text));
}

void show_speed(frmMain& frm, std::string_view text, bool double_speed) {
    append_message(frm.screen, text);
    frm.link.Chip_Double_Speed = double_speed;
}

}  // namespace

void Show_Chip_Info(frmMain& frm, std::uint8_t, std::uint8_t, std::uint8_t option) {
    using namespace option_text;
    Clear_Read_Lines(frm);
    Screen& screen = frm.screen;
    const LinkState& link = frm.link;
    if (!link.Chip_Name.empty()) append_message(screen, std::string(model) + link.Chip_Name);
    append_message(screen, std::string(firmware) + version_and_letter(frm));
    if (!screen.Show_English)
        append_message(screen, std::string(firmware_CN) + version_and_letter(frm));

    const std::string& letter = link.Chip_Letter;
    const bool speed_set = (option & double_speed_bit) != 0;
    if (letter == "A") show_speed(frm, speed_set ? speed_double : speed_single, speed_set);
    if (letter == "B") show_speed(frm, speed_unknown, false);
    if (letter == "C") Show_Options_Read(frm, form_of_C);
    if (letter == "D" || letter == "E" || letter == "F") Show_Options_Read(frm, form_of_DEF);
    scroll_log_to_end(screen);
}

void Show_Panel_Lines(frmMain& frm, std::uint8_t, std::uint8_t, std::uint8_t option, std::int16_t) {
    using namespace option_text;
    const LinkState& link = frm.link;
    if (link.Chip_Letter != "A" && link.Chip_Letter != "B") return;
    Clear_Read_Lines(frm);
    if (!link.Chip_Name.empty()) show_line(frm, 1, std::string(line_model) + link.Chip_Name);
    if (!link.Chip_Version.empty())
        show_line(frm, 2, std::string(line_firmware) + version_and_letter(frm));
    const bool speed_set = (option & double_speed_bit) != 0;
    const std::string_view speed = speed_set ? line_speed_double : line_speed_single;
    show_line(frm, 3, link.Chip_Letter == "B" ? line_speed_unknown : speed);
}

void Decode_Chip_Options(frmMain& frm, int group) {
    Reset_Option_State(frm);
    for (Option_Row& row : rows_of(frm, group))
        row.Option_State = bit_state(row.Option_Code, frm.options.Chip_Bytes);
    decode_prescaler(frm, group);
}

void Clear_Read_Lines(frmMain& frm) {
    for (Control& label : frm.screen.LabLock) {
        label.Caption.clear();
        label.Visible = false;
    }
}

}  // namespace vkm
