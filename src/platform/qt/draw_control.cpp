#include "platform/qt/draw_control.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QProgressBar>
#include <QRadioButton>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QTabBar>
#include <QTreeWidget>
#include <algorithm>

#include "catalogue/tab_strips.h"
#include "platform/qt/control_hints.h"
#include "platform/qt/fields.h"
#include "platform/qt/make_widget.h"
#include "platform/qt/marks.h"
#include "platform/qt/option_panel_view.h"
#include "platform/qt/row_list.h"
#include "platform/qt/text_mapping.h"

namespace vkm {
namespace {

// ---- labels, buttons, frames ----------------------------------------------

void draw_label(const Control& now, QLabel& label) {
    // The letter of a caption goes to the control beside it.
    label.setText(label.buddy() ? marked_caption(now) : to_qt(now.Caption));
    if (auto* verdict = dynamic_cast<VerdictMark*>(&label)) {
        verdict->set_result(now.Value);
        verdict->setToolTip(verdict->text());
    }
}

// A set of options may stand with none on, which a group of buttons refuses as
// long as it sees to it that one is.
void set_checked(QAbstractButton& button, bool on) {
    QButtonGroup* set = button.group();
    if (set) set->setExclusive(false);
    button.setChecked(on);
    if (set) set->setExclusive(true);
}

void draw_button(const Control& now, QAbstractButton& button) {
    button.setText(marked_caption(now));
    if (button.isCheckable()) set_checked(button, now.Value != 0);
}

void draw_frame(const Control& now, const Control& before, QWidget& frame) {
    if (auto* panel = dynamic_cast<OptionPanelView*>(&frame))
        if (now.List != before.List) panel->set_lines(now.List);
    if (auto* group = dynamic_cast<Group*>(&frame))
        group->set_caption(to_qt(now.Caption));
    else
        frame.setAccessibleName(to_qt(now.Caption));  // a page: its tab shows the caption
}

// ---- texts --------------------------------------------------------------------

void draw_field(const Control& now, const Control& before, QLineEdit& field) {
    if (now.Text != before.Text) field.setText(to_qt(now.Text));
    const int start = widget_position(now.Text, now.SelStart);
    const int end = widget_position(now.Text, now.SelStart + now.SelLength);
    if (end > start)
        field.setSelection(start, end - start);
    else
        field.setCursorPosition(start);
}

void draw_view(const Control& now, const Control& before, TextView& view) {
    const int sideways = view.horizontalScrollBar()->value();
    // A text that only grew is added to, so that a long log costs no more than a short one.
    const bool grew = now.Text.starts_with(before.Text);
    if (now.Text != before.Text) view.draw_text(now.Text, grew ? before.Text.size() : 0);
    QTextCursor cursor = view.textCursor();
    const auto place = [&](std::int32_t position) {
        return view.document_position(widget_position(now.Text, position));
    };
    cursor.setPosition(place(now.SelStart));
    if (now.SelLength > 0)
        cursor.setPosition(place(now.SelStart + now.SelLength), QTextCursor::KeepAnchor);
    view.setTextCursor(cursor);
    view.ensureCursorVisible();
    // A page that is scrolled shows the columns that the one before showed.
    if (now.SelStart == 0 && now.SelLength == 0) view.horizontalScrollBar()->setValue(sideways);
}

// ---- lists ----------------------------------------------------------------------

void draw_combo(const Control& now, const Control& before, QComboBox& combo) {
    if (now.List != before.List) {
        combo.clear();
        for (const Entry& entry : now.List) combo.addItem(to_qt(entry.Text));
    }
    combo.setCurrentIndex(now.ListIndex);
}

// What the logic has not changed stays as the operator has put it.
void draw_list(const Control& now, const Control& before, RowList& list) {
    const bool anew = now.List.size() != before.List.size();
    if (now.List != before.List) {
        QStringList texts;
        for (const Entry& entry : now.List) texts.append(to_qt(entry.Text));
        list.set_texts(texts);
    }
    if (anew || now.ListIndex != before.ListIndex) list.set_current(now.ListIndex);
    if (anew || now.Selected != before.Selected) list.highlight(now.Selected);
    if (anew || now.Value != before.Value) list.set_top_row(now.Value);
}

void draw_tabs(const Control& now, QTabBar& tabs) {
    const int count = static_cast<int>(now.List.size());
    while (tabs.count() > count) tabs.removeTab(tabs.count() - 1);
    while (tabs.count() < count) tabs.addTab(QString());
    for (int i = 0; i < count; ++i) {
        const std::string& text = now.List[static_cast<std::size_t>(i)].Text;
        tabs.setTabText(i, to_qt(text));
        tabs.setTabVisible(i, text != absent_caption);
    }
    tabs.setCurrentIndex(now.ListIndex);
    tabs.updateGeometry();  // a strip that is filled while it is hidden forgets to
}

QTreeWidgetItem* node_of(QTreeWidget& tree, int entry) {
    for (QTreeWidgetItemIterator it(&tree); *it; ++it)
        if ((*it)->data(0, entry_role).toInt() == entry) return *it;
    return nullptr;
}

void fill_tree(const Control& now, QTreeWidget& tree) {
    tree.clear();
    std::vector<QTreeWidgetItem*> nodes;
    for (const Entry& entry : now.List) {
        const auto parent = std::find_if(now.List.begin(), now.List.end(), [&](const Entry& each) {
            return !entry.Parent.empty() && each.Key == entry.Parent;
        });
        const auto place = static_cast<std::size_t>(parent - now.List.begin());
        auto* node =
            place < nodes.size() ? new QTreeWidgetItem(nodes[place]) : new QTreeWidgetItem(&tree);
        node->setText(0, to_qt(entry.Text));
        node->setData(0, entry_role, static_cast<int>(nodes.size()));
        nodes.push_back(node);
    }
}

void draw_tree(const Control& now, const Control& before, QTreeWidget& tree) {
    if (now.List != before.List) fill_tree(now, tree);
    QTreeWidgetItem* node = node_of(tree, now.ListIndex);
    tree.setCurrentItem(node);
    if (node) tree.scrollToItem(node);
}

// ---- bars --------------------------------------------------------------------------

void draw_scroll_bar(const Control& now, QScrollBar& bar) {
    bar.setRange(now.Min, std::max(now.Min, now.Max));
    bar.setSingleStep(now.SmallChange);
    bar.setPageStep(now.LargeChange);
    bar.setValue(now.Value);
}

void draw_progress(const Control& now, QProgressBar& bar) {
    // An empty range would show a bar that runs to and fro.
    bar.setRange(now.Min, std::max(now.Min + 1, now.Max));
    bar.setValue(now.Value);
}

// ---- by kind -------------------------------------------------------------------------

void draw_content(const Control& now, const Control& before, QWidget& widget) {
    switch (now.Kind) {
        case ControlKind::Label:
            return draw_label(now, static_cast<QLabel&>(widget));
        case ControlKind::Button:
        case ControlKind::CheckBox:
        case ControlKind::OptionButton:
            return draw_button(now, static_cast<QAbstractButton&>(widget));
        case ControlKind::TextBox:
            return draw_field(now, before, static_cast<QLineEdit&>(widget));
        case ControlKind::LogBox:
        case ControlKind::MemoBox:
            return draw_view(now, before, static_cast<TextView&>(widget));
        case ControlKind::ComboBox:
            return draw_combo(now, before, static_cast<QComboBox&>(widget));
        case ControlKind::ListBox:
            return draw_list(now, before, static_cast<RowList&>(widget));
        case ControlKind::TabStrip:
            return draw_tabs(now, static_cast<QTabBar&>(widget));
        case ControlKind::TreeView:
            return draw_tree(now, before, static_cast<QTreeWidget&>(widget));
        case ControlKind::ScrollBar:
            return draw_scroll_bar(now, static_cast<QScrollBar&>(widget));
        case ControlKind::ProgressBar:
            return draw_progress(now, static_cast<QProgressBar&>(widget));
        case ControlKind::Frame:
            return draw_frame(now, before, widget);
        case ControlKind::Picture:
            return;
    }
}

}  // namespace

void draw_control(const Control& now, const Control& before, QWidget& widget) {
    if (now == before) return;
    const QSignalBlocker quiet(&widget);
    draw_content(now, before, widget);
    if (now.Enabled != before.Enabled) widget.setEnabled(now.Enabled);
    if (now.Visible != before.Visible) widget.setVisible(now.Visible);
}

}  // namespace vkm
