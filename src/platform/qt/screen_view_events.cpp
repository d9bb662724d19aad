// The other direction: from the widgets to the records, and the events.

#include <QAbstractButton>
#include <QComboBox>
#include <QKeyEvent>
#include <QScrollBar>
#include <QTabBar>
#include <QTreeWidget>

#include "platform/qt/draw_control.h"
#include "platform/qt/fields.h"
#include "platform/qt/key_codes.h"
#include "platform/qt/make_widget.h"
#include "platform/qt/row_list.h"
#include "platform/qt/screen_view.h"
#include "platform/qt/text_mapping.h"
#include "window/wiring.h"

namespace vkm {
namespace {

// What a key types: the toolkit leaves it to the system whether those that edit type
// anything.
QString typed_text(const QKeyEvent& key) {
    switch (key_code(key.key())) {
        case backspace_code:
        case return_code:
        case escape_code:
            return QChar(key_code(key.key()));
        case delete_code:
            return {};
        default:
            return key.text();
    }
}

// The key that types third characters is told as both Ctrl and Alt on some systems.
bool is_command(const QKeyEvent& key, const QString& text) {
    constexpr auto third = Qt::ControlModifier | Qt::AltModifier;
    const bool types_third =
        (key.modifiers() & third) == third && !text.isEmpty() && text[0].isPrint();
    return !types_third && (key.modifiers() & (third | Qt::MetaModifier));
}

}  // namespace

// What the operator changes stands in the record, and counts as drawn.
template <typename Change>
void ScreenView::change(Binding& binding, Change change) {
    change(*binding.record);
    change(binding.drawn);
}

void ScreenView::raise(Binding& binding, EventKind kind, int key, std::string text) {
    queue_.push(ScreenEvent{binding.record, kind, key, std::move(text)});
}

void ScreenView::hear_index(Binding& binding, int index) {
    change(binding, [&](Control& control) { control.ListIndex = index; });
    raise(binding, EventKind::Click);
}

void ScreenView::hear_value(Binding& binding, int value) {
    change(binding, [&](Control& control) { control.Value = value; });
    raise(binding, EventKind::Change);
}

void ScreenView::hear_selection(Binding& binding, int start, int end) {
    const std::int32_t first = record_position(binding.record->Text, start);
    const std::int32_t last = end > start ? record_position(binding.record->Text, end) : first;
    change(binding, [&](Control& control) {
        control.SelStart = first;
        control.SelLength = last - first;
    });
}

void ScreenView::hear_button(Binding& binding) {
    auto* button = static_cast<QAbstractButton*>(binding.widget);
    connect(button, &QAbstractButton::clicked, this, [this, &binding, button] {
        if (button->isCheckable()) {
            for (Binding& other : bindings_)
                if (binding.set && other.set == binding.set)
                    change(other, [](Control& control) { control.Value = 0; });
            change(binding, [&](Control& control) { control.Value = button->isChecked() ? 1 : 0; });
        }
        raise(binding, EventKind::Click);
    });
}

void ScreenView::hear_field(Binding& binding) {
    auto* field = static_cast<QLineEdit*>(binding.widget);
    const auto selection = [this, &binding, field] {
        const int start =
            field->hasSelectedText() ? field->selectionStart() : field->cursorPosition();
        hear_selection(binding, start, start + static_cast<int>(field->selectedText().size()));
    };
    connect(field, &QLineEdit::selectionChanged, this, selection);
    connect(field, &QLineEdit::cursorPositionChanged, this, selection);
    connect(field, &QLineEdit::textEdited, this, [this, &binding, selection](const QString& text) {
        change(binding, [&](Control& control) { control.Text = from_qt(text); });
        selection();
        raise(binding, EventKind::Change);
    });
}

void ScreenView::hear_caret(Binding& binding) {
    const auto* view = static_cast<TextView*>(binding.widget);
    const QTextCursor cursor = view->textCursor();
    hear_selection(binding, view->units_at(cursor.selectionStart()),
                   view->units_at(cursor.selectionEnd()));
}

void ScreenView::follow_caret(Binding& binding) {
    auto* view = static_cast<TextView*>(binding.widget);
    const auto caret = [this, &binding] { hear_caret(binding); };
    connect(view, &QPlainTextEdit::selectionChanged, this, caret);
    connect(view, &QPlainTextEdit::cursorPositionChanged, this, caret);
}

void ScreenView::hear_view(Binding& binding) {
    auto* view = static_cast<TextView*>(binding.widget);
    follow_caret(binding);
    // The widgets outlive what listens to them.
    view->on_resize = [self = QPointer<ScreenView>(this), &binding] {
        if (self) self->hear_rows(binding);
    };
    view->installEventFilter(this);
    view->viewport()->installEventFilter(this);
    by_widget_[view->viewport()] = &binding;
}

void ScreenView::hear_memo(Binding& binding) {
    auto* memo = static_cast<TextView*>(binding.widget);
    follow_caret(binding);
    connect(memo, &QPlainTextEdit::textChanged, this, [this, &binding, memo] {
        change(binding, [&](Control& control) { control.Text = memo->drawn_text(); });
        hear_caret(binding);
        raise(binding, EventKind::Change);
    });
}

void ScreenView::hear_rows(Binding& binding) {
    const int rows = static_cast<TextView*>(binding.widget)->rows_in_sight();
    if (rows == binding.record->Rows) return;
    change(binding, [&](Control& control) { control.Rows = rows; });
    raise(binding, EventKind::Resize);
}

void ScreenView::hear_list(Binding& binding) {
    auto* list = static_cast<RowList*>(binding.widget);
    connect(list, &QListWidget::currentRowChanged, this,
            [this, &binding](int row) { hear_index(binding, row); });
    connect(list, &QListWidget::itemSelectionChanged, this, [this, &binding, list] {
        change(binding, [&](Control& control) { control.Selected = list->highlighted(); });
    });
    connect(list->verticalScrollBar(), &QScrollBar::valueChanged, this, [this, &binding, list] {
        if (list->signalsBlocked()) return;  // it is being drawn
        change(binding, [&](Control& control) { control.Value = list->top_row(); });
    });
}

void ScreenView::hear(Binding& binding) {
    QWidget* widget = binding.widget;
    const auto index = [this, &binding](int chosen) { hear_index(binding, chosen); };
    switch (binding.record->Kind) {
        case ControlKind::Button:
        case ControlKind::CheckBox:
        case ControlKind::OptionButton:
            return hear_button(binding);
        case ControlKind::TextBox:
            return hear_field(binding);
        case ControlKind::LogBox:
            return hear_view(binding);
        case ControlKind::MemoBox:
            return hear_memo(binding);
        case ControlKind::ComboBox:
            widget->installEventFilter(this);
            connect(static_cast<QComboBox*>(widget), &QComboBox::activated, this, index);
            return;
        case ControlKind::ListBox:
            return hear_list(binding);
        case ControlKind::TabStrip:
            widget->installEventFilter(this);
            connect(static_cast<QTabBar*>(widget), &QTabBar::currentChanged, this, index);
            return;
        case ControlKind::TreeView: {
            auto* tree = static_cast<QTreeWidget*>(widget);
            tree->installEventFilter(this);
            connect(tree, &QTreeWidget::currentItemChanged, this,
                    [this, &binding](QTreeWidgetItem* node) {
                        const int entry = node ? node->data(0, entry_role).toInt() : -1;
                        change(binding, [&](Control& control) { control.ListIndex = entry; });
                    });
            connect(tree, &QTreeWidget::itemClicked, this, [this, &binding](QTreeWidgetItem* node) {
                if (node->childCount() > 0) node->setExpanded(!node->isExpanded());
                raise(binding, EventKind::Click);
            });
            return;
        }
        case ControlKind::ScrollBar:
            connect(static_cast<QScrollBar*>(widget), &QScrollBar::valueChanged, this,
                    [this, &binding](int value) { hear_value(binding, value); });
            return;
        case ControlKind::Frame:
        case ControlKind::Picture:
            widget->installEventFilter(this);
            return;
        case ControlKind::Label:
        case ControlKind::ProgressBar:
            return;
    }
}

// A key in a text view is first heard by the logic and then does what it does in
// any text box, unless the logic has answered it with another text: a page that was
// turned would be left again by the caret.
bool ScreenView::hear_key(Binding& binding, QEvent& event) {
    auto& key = static_cast<QKeyEvent&>(event);
    const QString text = typed_text(key);
    if (is_command(key, text)) return false;
    const int code = key_code(key.key());
    if (code == tab_code || (code == 0 && text.isEmpty())) return false;
    // A key that is held down goes no faster than it is worked off, and ends with the finger.
    if (key.isAutoRepeat() && binding.keys_waiting > 0) return true;
    ++binding.keys_waiting;
    // Counted when it is this key's turn: those before it may turn pages too.
    const auto texts_before = std::make_shared<int>(0);
    queue_.push([this, &binding, texts_before](frmMain&) {
        draw(binding);
        *texts_before = binding.texts_drawn;
    });
    if (code != 0) raise(binding, EventKind::KeyDown, code);
    if (!text.isEmpty()) raise(binding, EventKind::KeyPress, 0, from_qt(text));
    queue_.push(
        [this, &binding, texts_before, own = std::shared_ptr<QKeyEvent>(key.clone())](frmMain&) {
            draw(binding);
            if (binding.texts_drawn == *texts_before)
                static_cast<TextView*>(binding.widget)->act_on(*own);
            --binding.keys_waiting;
        });
    return true;
}

bool ScreenView::hear_tree_key(Binding& binding, QEvent& event) {
    const int code = key_code(static_cast<QKeyEvent&>(event).key());
    if (code == return_code) raise(binding, EventKind::Click);
    if (code == escape_code) raise(binding, EventKind::KeyDown, code);
    return code == return_code || code == escape_code;
}

void ScreenView::hear_click(Binding& binding) {
    const bool is_text = binding.record->Kind == ControlKind::LogBox;
    raise(binding, is_text ? EventKind::MouseUp : EventKind::Click);
}

bool ScreenView::eventFilter(QObject* watched, QEvent* event) {
    Binding* bound = binding_of(watched);
    if (!bound) return false;
    const ControlKind kind = bound->record->Kind;
    switch (event->type()) {
        case QEvent::Wheel:
            // The wheel scrolls the page; a list or a tab is chosen by a click.
            if (kind != ControlKind::ComboBox && kind != ControlKind::TabStrip) return false;
            event->ignore();
            return true;
        case QEvent::MouseButtonRelease:
            if (kind == ControlKind::ComboBox || kind == ControlKind::TabStrip ||
                kind == ControlKind::TreeView)
                return false;
            if (static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton) hear_click(*bound);
            return false;
        case QEvent::KeyPress:
            if (kind == ControlKind::LogBox && watched == bound->widget)
                return hear_key(*bound, *event);
            if (kind == ControlKind::TreeView) return hear_tree_key(*bound, *event);
            return false;
        case QEvent::FocusOut:
            // A tree that drops down closes like one that is left by Escape.
            if (kind == ControlKind::TreeView) raise(*bound, EventKind::KeyDown, escape_code);
            return false;
        default:
            return false;
    }
}

}  // namespace vkm
