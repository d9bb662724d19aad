#include "options/option_panel.h"

#include <algorithm>
#include <string>

#include "options/mcu_options.h"
#include "options/option_schema.h"
#include "options/option_texts.h"

namespace vkm {
namespace {

using Rows = std::vector<Option_Row>;
using Entries = std::vector<Entry>;

// ---- what is on the panel --------------------------------------------------

template <std::size_t count>
void show(std::array<Control, count>& controls, bool visible) {
    for (Control& control : controls) control.Visible = visible;
}

// What only the newer families have: pins for an external circuit, and a choice
// of the pause between two chips.
void show_extras(Screen& s, bool visible) {
    show(s.opt_485_pin, visible);
    show(s.opt_485_logic, visible);
    for (Control* control : {&s.Lab_485_pin, &s.comb_485_pin, &s.Lab_485_logic, &s.Picture4,
                             &s.Picture7, &s.Label6, &s.comDalay_ReDownLoad})
        control->Visible = visible;
}

void set_default(Control& control, const Option_Row& row) {
    if (row.Option_Default.empty()) return;
    switch (row.Option_Property) {
        case Property_Kind::Caption:
            control.Caption = row.Option_Default;
            break;
        case Property_Kind::Value:
            control.Value = row.Option_Default == "1" ? 1 : 0;
            break;
        case Property_Kind::Text:
            choose_text(control, row.Option_Default);
            break;
    }
}

void apply_rows(frmMain& frm, const Rows& rows) {
    for (const Option_Row& row : rows)
        if (Control* control = control_of(frm.screen, row)) {
            set_default(*control, row);
            control->Visible = row.Option_Visible;
        }
}

// ---- the order of its lines ------------------------------------------------

constexpr std::string_view label_control = "LabOption";

std::string name_of(const Option_Row& row) {
    return full_name(row.Option_Control, row.Option_Index);
}

// A label begins a line; the choices behind it stand beside it.
Entries lines_of(const Screen& s, const Rows& rows) {
    Entries lines;
    std::string line;
    for (const Option_Row& row : rows) {
        if (!row.Option_Visible) continue;
        if (row.Option_Control == label_control) {
            line = name_of(row);
            lines.push_back({line, "", ""});
        } else if (row.Option_Key == option_key::prescaler) {
            lines.push_back({full_name(s.Label20), "", ""});
            lines.push_back({name_of(row), "", full_name(s.Label20)});
        } else if (row.Option_Property == Property_Kind::Value) {
            lines.push_back({name_of(row), "", line});
        }
    }
    return lines;
}

// Below the line that the row with this key begins.
void insert_below(Entries& lines, const Rows& rows, std::string_view key, const Control& remark) {
    const Option_Row* row = find_row(rows, key);
    const std::string line = row ? name_of(*row) : std::string();
    const auto last = std::find_if(lines.rbegin(), lines.rend(), [&](const Entry& entry) {
        return entry.Text == line || entry.Parent == line;
    });
    lines.insert(last.base(), {full_name(remark), "", ""});
}

// ---- each family -------------------------------------------------------------

void show_remark(Control& label, std::string_view text) {
    label.Caption = text;
    label.Visible = true;
}

void arrange_family_0(Screen& s) {
    s.LabOption[0].Caption =
        s.Show_English ? option_text::double_speed_english : option_text::double_speed;
    show_remark(s.LabOptionC, option_text::double_speed_is_burnt);
    s.Frame16.List.push_back({full_name(s.LabOptionC), "", ""});
}

void arrange_family_1(Screen& s) {
    show_remark(s.LabOption[0], option_text::no_options);
    s.Frame16.List = {{full_name(s.LabOption[0]), "", ""}};
}

void arrange_newer_family(Screen& s, bool has_watchdog_list) {
    s.Frame2.Caption = option_text::step_4;
    s.Label20.Visible = has_watchdog_list;
}

void arrange_family_6(Screen& s, const Rows& rows) {
    show_remark(s.Label7, option_text::half_gain_remark);
    insert_below(s.Frame16.List, rows, option_key::half_gain_label, s.Label7);
}

// ---- what can be operated ------------------------------------------------------

bool enabled_in(const Option_Row& row, std::int16_t state) {
    switch (state) {
        case ui_idle:
            return row.Option_Enable_0;
        case ui_busy:
            return row.Option_Enable_1;
        case ui_locked:
            return row.Option_Enable_2;
        default:
            return false;
    }
}

void enable_rows(frmMain& frm, const Rows& rows, std::int16_t state) {
    for (const Option_Row& row : rows)
        if (Control* control = control_of(frm.screen, row))
            control->Enabled = enabled_in(row, state);
}

void enable_key(frmMain& frm, const Rows& rows, std::string_view key, bool enabled) {
    const Option_Row* row = find_row(rows, key);
    if (Control* control = row ? control_of(frm.screen, *row) : nullptr) control->Enabled = enabled;
}

void follow_watchdog(frmMain& frm, std::int16_t state) {
    const Rows* rows = family_rows(frm);
    const Option_Row* power_on = rows ? find_row(*rows, option_key::power_on_run_WDT) : nullptr;
    const Control* choice = power_on ? control_of(frm.screen, *power_on) : nullptr;
    if (!choice) return;
    const bool runs = choice->Value != 0;
    for (const auto key :
         {option_key::idle_WDT_yes, option_key::idle_WDT_no, option_key::prescaler})
        enable_key(frm, *rows, key, runs && state == ui_idle);
    enable_key(frm, *rows, option_key::idle_WDT_label, runs && state != ui_busy_locked);
    frm.screen.Label20.Enabled = runs && state != ui_busy_locked;
}

void enable_family(frmMain& frm, std::int16_t state) {
    const Rows* rows = family_rows(frm);
    if (!rows) return;
    enable_rows(frm, *rows, state);
    follow_watchdog(frm, state);
}

}  // namespace

void for_each_option_control(Screen& s, const std::function<void(Control&)>& visit) {
    std::ranges::for_each(s.LabOption, visit);
    for (auto* pair : {&s.Option0, &s.Option1, &s.Option2, &s.Option4, &s.Option5, &s.Option6,
                       &s.Option7, &s.Option8, &s.Option9, &s.Option10, &s.Option11, &s.Option12})
        std::ranges::for_each(*pair, visit);
    std::ranges::for_each(s.Option3, visit);
    for (Control* control : {&s.LabOptionC, &s.Label7, &s.Label20, &s.comWDT_Prescalar})
        visit(*control);
}

void Arrange_Options(frmMain& frm) {
    const Rows* rows = family_rows(frm);
    if (!rows) return;
    Screen& s = frm.screen;
    const std::int16_t family = frm.catalogue.MCU_Info.MCU_Family;
    for_each_option_control(s, [](Control& control) { control.Visible = false; });
    show_extras(s, family >= 2);
    apply_rows(frm, *rows);
    s.Frame16.List = lines_of(s, *rows);
    if (family == 0) arrange_family_0(s);
    if (family == 1) arrange_family_1(s);
    if (family >= 2) arrange_newer_family(s, family >= 3);
    if (family == 6) arrange_family_6(s, *rows);
    enable_family(frm, frm.session.UI_State);
    Follow_485_Choice(frm);
    Follow_External_WDT_Choice(frm);
}

void Apply_Option_Enable(frmMain& frm, std::int16_t state) {
    enable_rows(frm, frm.options.MCU_Options[general_group], state);
    enable_family(frm, state);
}

void Follow_Watchdog_Choice(frmMain& frm) {
    follow_watchdog(frm, frm.session.UI_State);
}

void Follow_485_Choice(frmMain& frm) {
    Screen& s = frm.screen;
    const bool used = s.opt_485_pin[1].Value != 0;
    for (Control* control :
         {&s.comb_485_pin, &s.Lab_485_logic, &s.opt_485_logic[0], &s.opt_485_logic[1]})
        control->Enabled = used;
}

void Follow_External_WDT_Choice(frmMain& frm) {
    Screen& s = frm.screen;
    s.comb_External_WDT.Enabled = s.opt_External_WDT[1].Value != 0;
}

void Check_Pin_Clash(frmMain& frm) {
    const Screen& s = frm.screen;
    const Entry* pin = chosen_entry(s.comb_485_pin);
    if (pin && pin->Text == text_of(s.comb_External_WDT))
        frm.platform.dialogs.show_text(option_text::pin_clash);
}

}  // namespace vkm
