#include "project/project_items.h"

#include <algorithm>
#include <set>

#include "options/mcu_options.h"
#include "options/option_schema.h"
#include "text/numbers.h"
#include "text/trimming.h"

namespace vkm {
namespace {

using Rows = std::vector<Option_Row>;

const Rows& general_rows(const frmMain& frm) {
    return frm.options.MCU_Options[general_group];
}

std::string value_text(const Control& control) {
    if (control.Kind == ControlKind::OptionButton) return control.Value != 0 ? "True" : "False";
    return std::to_string(control.Value);
}

std::string property_text(const Control& control, Property_Kind property) {
    switch (property) {
        case Property_Kind::Caption:
            return control.Caption;
        case Property_Kind::Text:
            return std::string(text_of(control));
        case Property_Kind::Value:
            return value_text(control);
    }
    return {};
}

bool is_on(std::string_view value) {
    const std::string text = upper_case(value);
    if (text == "TRUE" || text == "FALSE") return text == "TRUE";
    return leading_number(text) != 0;
}

// One of a set is on. That an option is off follows from another one being on.
void choose_option(Screen& screen, Control& option, bool on) {
    if (!on) return;
    for_each_element(screen, option.Name, [](Control& other) { other.Value = 0; });
    option.Value = 1;
}

void choose_index(Control& list, std::string_view value) {
    const bool digits = std::ranges::all_of(value, [](char c) { return c >= '0' && c <= '9'; });
    const std::int32_t index = leading_integer(value);
    if (digits && static_cast<std::size_t>(index) < list.List.size()) list.ListIndex = index;
}

void set_property(Screen& screen, Control& control, Property_Kind property,
                  const std::string& value) {
    switch (property) {
        case Property_Kind::Caption:
            // The caption of an image without a file ends in a blank, which the file's
            // line has lost.
            if (trimmed(control.Caption) != value) control.Caption = value;
            return;
        case Property_Kind::Text:
            control.Text = value;
            return;
        case Property_Kind::Value:
            if (control.Kind == ControlKind::OptionButton)
                choose_option(screen, control, is_on(value));
            else
                control.Value = is_on(value) ? 1 : 0;
            return;
    }
}

void set_general_item(frmMain& frm, const Project_Row& item) {
    const Option_Row* row = find_row(general_rows(frm), item.key);
    Control* control = row ? control_of(frm.screen, *row) : nullptr;
    if (control) set_property(frm.screen, *control, row->Option_Property, item.value);
}

// Only choices that stand for a bit, and the prescaler: what a family doesn't offer
// stays parked.
void set_option(frmMain& frm, const Project_Row& item) {
    const Rows* rows = family_rows(frm);
    const Option_Row* row = rows ? find_row(*rows, item.key) : nullptr;
    Control* control = row ? control_of(frm.screen, *row) : nullptr;
    if (!control) return;
    if (item.key == option_key::prescaler)
        choose_index(*control, item.value);
    else if (!row->Option_Code.empty())
        set_property(frm.screen, *control, row->Option_Property, item.value);
}

}  // namespace

std::string Project_Value(frmMain& frm, std::string_view key) {
    const Option_Row* row = find_row(general_rows(frm), key);
    const Control* control = row ? control_of(frm.screen, *row) : nullptr;
    return control ? property_text(*control, row->Option_Property) : std::string();
}

std::string Project_Option_Value(frmMain& frm, std::string_view key) {
    const Rows* rows = family_rows(frm);
    const Option_Row* row = rows ? find_row(*rows, key) : nullptr;
    if (!row) return {};
    if (key != option_key::prescaler) return row->Option_State;
    const Control* list = control_of(frm.screen, *row);
    return list ? std::to_string(list->ListIndex) : std::string();
}

Project_Rows project_items(frmMain& frm) {
    Refresh_Option_State(frm);
    Project_Rows items;
    for (const Option_Row& row : general_rows(frm))
        items.push_back({row.Option_Key, Project_Value(frm, row.Option_Key)});
    for (const std::string_view key : option_keys)
        items.push_back({std::string(key), Project_Option_Value(frm, key)});
    return items;
}

void Set_Project_Items(frmMain& frm, const Project_Rows& rows) {
    std::set<std::string_view> seen;
    for (const Project_Row& item : rows) {
        // Of a key that stands twice the first row counts, as in value_of().
        if (!seen.insert(item.key).second) continue;
        if (item.value.empty() || item.key == project_key::model) continue;
        set_general_item(frm, item);
        set_option(frm, item);
    }
}

}  // namespace vkm
