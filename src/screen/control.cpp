#include "screen/control.h"

#include "text/trimming.h"

namespace vkm {
namespace {

bool choose(Control& control, std::string_view wanted, std::string Entry::*field) {
    control.ListIndex = -1;
    for (std::size_t i = 0; i < control.List.size(); ++i) {
        if (control.List[i].*field != wanted) continue;
        control.ListIndex = static_cast<std::int32_t>(i);
        return true;
    }
    return false;
}

}  // namespace

std::string full_name(std::string_view name, int index) {
    std::string full(name);
    return index < 0 ? full : full + "(" + std::to_string(index) + ")";
}

std::string full_name(const Control& control) {
    return full_name(control.Name, control.Index);
}

const Entry* chosen_entry(const Control& control) {
    const auto index = static_cast<std::size_t>(control.ListIndex);
    return control.ListIndex >= 0 && index < control.List.size() ? &control.List[index] : nullptr;
}

std::string_view text_of(const Control& control) {
    if (control.Kind != ControlKind::ComboBox && control.Kind != ControlKind::ListBox)
        return control.Text;
    const Entry* entry = chosen_entry(control);
    return entry ? std::string_view(entry->Text) : std::string_view();
}

bool choose_key(Control& control, std::string_view key) {
    return choose(control, key, &Entry::Key);
}

bool choose_text(Control& control, std::string_view text) {
    return choose(control, text, &Entry::Text);
}

void fill_list(Control& control, const std::vector<std::string>& texts) {
    control.List.clear();
    control.ListIndex = -1;
    for (const std::string& text : texts) control.List.push_back({text, {}, {}});
}

void caret_to_end(Control& control) {
    control.SelStart = static_cast<std::int32_t>(character_count(control.Text));
    control.SelLength = 0;
}

}  // namespace vkm
