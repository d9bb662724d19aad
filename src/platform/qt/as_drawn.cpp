#include "platform/qt/as_drawn.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QScrollBar>
#include <QTabBar>
#include <QTreeWidget>

#include "platform/qt/fields.h"
#include "platform/qt/make_widget.h"
#include "platform/qt/marks.h"
#include "platform/qt/row_list.h"
#include "platform/qt/text_mapping.h"

namespace vkm {
namespace {

// A caption without the mark of its letter.
std::string plain(const QString& marked) {
    QString text;
    for (qsizetype i = 0; i < marked.size(); ++i) {
        if (marked[i] == u'&' && i + 1 < marked.size()) ++i;
        text += marked[i];
    }
    return from_qt(text);
}

void read_label(const QLabel& label, Control& drawn) {
    drawn.Caption = label.buddy() ? plain(label.text()) : from_qt(label.text());
    if (const auto* verdict = dynamic_cast<const VerdictMark*>(&label))
        drawn.Value = verdict->result();
}

void read_button(const QAbstractButton& button, Control& drawn) {
    drawn.Caption = plain(button.text());
    drawn.Value = button.isChecked() ? 1 : 0;
}

void read_field(const QLineEdit& field, Control& drawn) {
    drawn.Text = from_qt(field.text());
    const bool selected = field.hasSelectedText();
    const int start = selected ? field.selectionStart() : field.cursorPosition();
    const int end = selected ? field.selectionEnd() : start;
    drawn.SelStart = record_position(drawn.Text, start);
    drawn.SelLength = record_position(drawn.Text, end) - drawn.SelStart;
}

void read_view(const TextView& view, Control& drawn) {
    drawn.Text = view.drawn_text();
    const QTextCursor cursor = view.textCursor();
    const auto place = [&](int position) {
        return record_position(drawn.Text, view.units_at(position));
    };
    drawn.SelStart = place(cursor.selectionStart());
    drawn.SelLength = place(cursor.selectionEnd()) - drawn.SelStart;
}

// `text_at` gives the text of each entry.
template <typename TextAt>
void read_entries(int count, TextAt text_at, Control& drawn) {
    drawn.List.resize(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i)
        drawn.List[static_cast<std::size_t>(i)].Text = from_qt(text_at(i));
}

void read_tree(const QTreeWidget& tree, Control& drawn) {
    std::vector<QTreeWidgetItem*> nodes;
    for (QTreeWidgetItemIterator it(const_cast<QTreeWidget*>(&tree)); *it; ++it)
        nodes.push_back(*it);
    drawn.List.resize(nodes.size());
    for (const QTreeWidgetItem* node : nodes) {
        const auto place = node->data(0, entry_role).toUInt();
        if (place < drawn.List.size()) drawn.List[place].Text = from_qt(node->text(0));
    }
    const QTreeWidgetItem* current = tree.currentItem();
    drawn.ListIndex = current ? current->data(0, entry_role).toInt() : -1;
}

void read_content(const QWidget& widget, Control& drawn) {
    switch (drawn.Kind) {
        case ControlKind::Label:
            return read_label(static_cast<const QLabel&>(widget), drawn);
        case ControlKind::Button:
        case ControlKind::CheckBox:
        case ControlKind::OptionButton:
            return read_button(static_cast<const QAbstractButton&>(widget), drawn);
        case ControlKind::TextBox:
            return read_field(static_cast<const QLineEdit&>(widget), drawn);
        case ControlKind::LogBox:
        case ControlKind::MemoBox:
            return read_view(static_cast<const TextView&>(widget), drawn);
        case ControlKind::ComboBox: {
            const auto& combo = static_cast<const QComboBox&>(widget);
            read_entries(
                combo.count(), [&](int i) { return combo.itemText(i); }, drawn);
            drawn.ListIndex = combo.currentIndex();
            return;
        }
        case ControlKind::ListBox: {
            const auto& list = static_cast<const RowList&>(widget);
            read_entries(
                list.count(), [&](int i) { return list.item(i)->text(); }, drawn);
            drawn.ListIndex = list.currentRow();
            drawn.Selected = list.highlighted();
            drawn.Value = list.top_row();
            return;
        }
        case ControlKind::TabStrip: {
            const auto& tabs = static_cast<const QTabBar&>(widget);
            read_entries(
                tabs.count(), [&](int i) { return tabs.tabText(i); }, drawn);
            drawn.ListIndex = tabs.currentIndex();
            return;
        }
        case ControlKind::TreeView:
            return read_tree(static_cast<const QTreeWidget&>(widget), drawn);
        case ControlKind::ScrollBar: {
            const auto& bar = static_cast<const QScrollBar&>(widget);
            drawn.Min = bar.minimum();
            drawn.Max = bar.maximum();
            drawn.Value = bar.value();
            return;
        }
        case ControlKind::ProgressBar: {
            const auto& bar = static_cast<const QProgressBar&>(widget);
            drawn.Min = bar.minimum();
            drawn.Max = bar.maximum();
            drawn.Value = bar.value();
            return;
        }
        case ControlKind::Frame:
            if (const auto* group = dynamic_cast<const Group*>(&widget))
                drawn.Caption = from_qt(group->caption());
            else
                drawn.Caption = from_qt(widget.accessibleName());
            return;
        case ControlKind::Picture:
            return;
    }
}

}  // namespace

Control as_drawn(const QWidget& widget, const Control& record) {
    Control drawn = record;
    drawn.Enabled = widget.isEnabled();
    drawn.Visible = widget.isVisible();
    read_content(widget, drawn);
    return drawn;
}

}  // namespace vkm
