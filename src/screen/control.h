// A control of the window as a value record. The logic reads and writes these;
// the edge keeps each record and its drawn widget alike in both directions.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace vkm {

enum class ControlKind {
    Label,         // Caption
    Button,        // Caption
    TextBox,       // Text, one line; SelStart, SelLength
    LogBox,        // Text, many lines, monospaced, not typed into; SelStart, SelLength
    MemoBox,       // Text, many lines, typed into; SelStart, SelLength
    CheckBox,      // Caption, Value 0 or 1
    OptionButton,  // Caption, Value 0 or 1; one of a set
    ComboBox,      // List, ListIndex; its text is that of the entry
    ListBox,       // List, ListIndex, Selected; Value: the first row in sight
    TabStrip,      // List (captions and keys), ListIndex
    TreeView,      // List (texts, keys, parents), ListIndex
    ScrollBar,     // Min, Max, Value, SmallChange, LargeChange
    ProgressBar,   // Min, Max, Value
    Frame,         // Caption; a titled group or a page of a strip
    Picture,       // shown or not
};

// An entry of a list, a tab or a node of a tree.
struct Entry {
    std::string Text;
    std::string Key;     // tabs and nodes; empty where entries have none
    std::string Parent;  // key of the node above; empty at the root
    bool operator==(const Entry&) const = default;
};

struct Control {
    std::string_view Name;  // as in the table, without its index
    int Index = -1;         // place in its array, -1 for a control that is none
    ControlKind Kind = ControlKind::Label;

    bool Enabled = true;
    bool Visible = true;
    std::string Caption;
    std::string Text;        // line breaks are CR LF
    std::int32_t Value = 0;  // check box, option, bars; a label's colour code; a list's top row
    std::int32_t Min = 0;
    std::int32_t Max = 0;
    std::int32_t SmallChange = 1;
    std::int32_t LargeChange = 1;
    std::int32_t SelStart = 0;  // in characters, CR and LF counting one each
    std::int32_t SelLength = 0;
    std::int32_t Rows = 0;  // of a LogBox: lines that the box has room for; 0 before it is drawn
    std::int32_t ListIndex = -1;  // -1: nothing chosen
    std::vector<Entry> List;
    std::vector<std::int32_t> Selected;  // rows of a ListBox that are highlighted, ascending

    bool operator==(const Control&) const = default;
};

// How a control is named outside: "txtDevice", "comDownload(0)". An index below 0 is
// that of a control that stands in no array.
std::string full_name(std::string_view name, int index);
std::string full_name(const Control& control);

// The entry that is chosen, or null.
const Entry* chosen_entry(const Control& control);

// What the control shows as its text: the chosen entry's for the lists, Text for the others.
std::string_view text_of(const Control& control);

// Chooses the entry with this key or, in a list without keys, this text. False,
// with nothing chosen any more, when there is none.
bool choose_key(Control& control, std::string_view key);
bool choose_text(Control& control, std::string_view text);

// Empties the list and fills it with these texts; nothing is chosen afterwards.
void fill_list(Control& control, const std::vector<std::string>& texts);

// Puts the insertion point behind the last character.
void caret_to_end(Control& control);

}  // namespace vkm
