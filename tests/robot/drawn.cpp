#include "robot/drawn.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QJsonArray>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPointer>
#include <QRadioButton>
#include <QRegularExpression>
#include <QScrollArea>
#include <QScrollBar>
#include <QStyleOptionButton>
#include <QTabBar>
#include <QTest>
#include <QTextBlock>
#include <QTreeView>
#include <set>

#include "platform/qt/as_drawn.h"
#include "platform/qt/fields.h"
#include "platform/qt/make_widget.h"
#include "platform/qt/text_mapping.h"
#include "robot/refusal.h"
#include "text/trimming.h"

namespace vkm::robot {
namespace {

constexpr const char* hidden = "hidden";
constexpr const char* disabled = "disabled";

// ---- properties ------------------------------------------------------------------

QJsonValue json(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

QJsonValue texts_of(const Control& control) {
    QJsonArray texts;
    for (const Entry& entry : control.List) texts.append(json(entry.Text));
    return texts;
}

QJsonValue selected_rows_of(const Control& control) {
    QJsonArray rows;
    for (const std::int32_t row : control.Selected) rows.append(row);
    return rows;
}

bool is_flag(ControlKind kind) {
    return kind == ControlKind::CheckBox || kind == ControlKind::OptionButton;
}

QJsonValue value_of(const Control& control) {
    return is_flag(control.Kind) ? QJsonValue(control.Value != 0) : QJsonValue(control.Value);
}

struct Property {
    const char* name;
    std::set<ControlKind> kinds;  // that have it; none named: all
    QJsonValue (*of)(const Control&);
};

const std::vector<Property>& properties() {
    using enum ControlKind;
    const std::set<ControlKind> lists = {ComboBox, ListBox, TabStrip, TreeView};
    const std::set<ControlKind> texts = {TextBox, LogBox, MemoBox, ComboBox, ListBox};
    const std::set<ControlKind> typed = {TextBox, LogBox, MemoBox};
    const std::set<ControlKind> captions = {Label, Button, CheckBox, OptionButton, Frame};
    const std::set<ControlKind> values = {CheckBox, OptionButton, ScrollBar, ProgressBar, ListBox};
    const std::set<ControlKind> bars = {ScrollBar, ProgressBar};
    static const std::vector<Property> table = {
        {"Text", texts, [](const Control& c) { return json(text_of(c)); }},
        {"Caption", captions, [](const Control& c) { return json(c.Caption); }},
        {"Value", values, value_of},
        {"Enabled", {}, [](const Control& c) { return QJsonValue(c.Enabled); }},
        {"Visible", {}, [](const Control& c) { return QJsonValue(c.Visible); }},
        {"List", lists, texts_of},
        {"ListIndex", lists, [](const Control& c) { return QJsonValue(c.ListIndex); }},
        {"Selected", {ListBox}, selected_rows_of},
        {"SelStart", typed, [](const Control& c) { return QJsonValue(c.SelStart); }},
        {"SelLength", typed, [](const Control& c) { return QJsonValue(c.SelLength); }},
        {"Min", bars, [](const Control& c) { return QJsonValue(c.Min); }},
        {"Max", bars, [](const Control& c) { return QJsonValue(c.Max); }},
    };
    return table;
}

// ---- whether a person could do it ---------------------------------------------------

bool under_a_box(const QWidget* widget) {
    const QWidget* box = QApplication::activeModalWidget();
    return box && box != widget->window();
}

// Scrolls to it where it lies in a part that scrolls.
void bring_into_view(QWidget* widget) {
    for (QWidget* above = widget->parentWidget(); above; above = above->parentWidget())
        if (auto* area = qobject_cast<QScrollArea*>(above)) area->ensureWidgetVisible(widget);
}

// Whether a mouse at this point of the widget meets it and nothing that lies over it.
bool meets(const QWidget* widget, QPoint point) {
    const QWidget* window = widget->window();
    const QPoint there = widget->mapTo(window, point);
    if (!window->rect().contains(there)) return false;
    const QWidget* met = window->childAt(there);
    return met && (met == widget || widget->isAncestorOf(met));
}

void must_be_operable(QWidget* widget) {
    if (!widget->isVisible()) throw Refusal{hidden};
    if (!widget->isEnabled() || under_a_box(widget)) throw Refusal{disabled};
    bring_into_view(widget);
}

// Where a click works: on the mark and text of a check box, on the ground of a frame.
QPoint working_point(QWidget* widget) {
    QStyleOptionButton option;
    option.initFrom(widget);
    if (auto* box = qobject_cast<QCheckBox*>(widget)) {
        option.text = box->text();
        return widget->style()
            ->subElementRect(QStyle::SE_CheckBoxClickRect, &option, widget)
            .center();
    }
    if (auto* radio = qobject_cast<QRadioButton*>(widget)) {
        option.text = radio->text();
        return widget->style()
            ->subElementRect(QStyle::SE_RadioButtonClickRect, &option, widget)
            .center();
    }
    return widget->rect().center();
}

QPoint ground_point(QWidget* frame) {
    constexpr int step = 2;
    for (int y = frame->height() - 1; y >= 0; y -= step)
        for (int x = frame->width() - 1; x >= 0; x -= step)
            if (frame->window()->childAt(frame->mapTo(frame->window(), QPoint(x, y))) == frame)
                return {x, y};
    throw Refusal{hidden};
}

QPoint reachable_point(const Drawn& control) {
    must_be_operable(control.widget);
    if (control.record->Kind == ControlKind::Frame) return ground_point(control.widget);
    const QPoint point = working_point(control.widget);
    if (!meets(control.widget, point)) throw Refusal{hidden};
    return point;
}

// ---- mouse and keys ----------------------------------------------------------------

// The mouse goes to the innermost widget at the point, as the system would send it.
void click_at(QWidget* widget, QPoint point) {
    QWidget* inner = widget->childAt(point);
    while (inner && inner->testAttribute(Qt::WA_TransparentForMouseEvents))
        inner = inner->parentWidget();
    if (!inner || !widget->isAncestorOf(inner)) inner = widget;
    QTest::mouseClick(inner, Qt::LeftButton, {}, inner->mapFrom(widget, point));
}

void press(QWidget* widget, Qt::Key code, const QString& text = {}) {
    QTest::sendKeyEvent(QTest::Click, widget, code, text, Qt::NoModifier);
}

void type(const QPointer<QWidget>& widget, const QString& text) {
    for (const QChar character : text) {
        if (!widget) return;
        if (character == u'\n') {
            press(widget, Qt::Key_Return, QStringLiteral("\r"));
            continue;
        }
        const char latin = character.toLatin1();
        const Qt::Key code = latin > 0 ? QTest::asciiToKey(latin) : Qt::Key_unknown;
        press(widget, code, QString(character));
    }
}

void must_be_in_the_open(QWidget* widget) {
    must_be_operable(widget);
    if (!meets(widget, widget->rect().center())) throw Refusal{hidden};
}

void must_take_keys(const Drawn& control) {
    must_be_in_the_open(control.widget);
    if (control.widget->focusPolicy() == Qt::NoFocus) throw Refusal{disabled};
}

Qt::Key key_named(const QString& name) {
    static const QHash<QString, Qt::Key> named = {
        {"PageUp", Qt::Key_PageUp}, {"PageDown", Qt::Key_PageDown}, {"Up", Qt::Key_Up},
        {"Down", Qt::Key_Down},     {"Return", Qt::Key_Return},     {"Escape", Qt::Key_Escape},
        {"Tab", Qt::Key_Tab}};
    if (!named.contains(name)) throw Refusal{"unknown key " + name};
    return named.value(name);
}

// ---- a place in a text ---------------------------------------------------------------

// Clicks between two characters of a line; one that is longer than its box shows
// the piece around the caret.
void click_in_line(QLineEdit* line, int units) {
    const int y = line->height() / 2;
    for (const bool in_sight : {false, true}) {
        if (in_sight) line->setCursorPosition(units);
        for (int x = 0; x < line->width(); ++x)
            if (line->cursorPositionAt({x, y}) == units) return click_at(line, {x, y});
    }
}

// Clicks between two characters of a text, which is first scrolled to them.
void click_in_box(QPlainTextEdit* box, int position) {
    QTextCursor cursor(box->document());
    cursor.setPosition(position);
    const QRect sight = box->viewport()->rect();
    if (!sight.contains(box->cursorRect(cursor)))
        box->verticalScrollBar()->setValue(cursor.block().firstLineNumber());
    QScrollBar* sideways = box->horizontalScrollBar();
    const int beyond = box->cursorRect(cursor).center().x() - sight.center().x();
    if (!sight.contains(box->cursorRect(cursor))) sideways->setValue(sideways->value() + beyond);
    QTest::mouseClick(box->viewport(), Qt::LeftButton, {}, box->cursorRect(cursor).center());
}

// ---- choosing ------------------------------------------------------------------------

bool is_list(ControlKind kind) {
    return kind == ControlKind::ComboBox || kind == ControlKind::ListBox ||
           kind == ControlKind::TabStrip || kind == ControlKind::TreeView;
}

int entry_index(const Drawn& control, const QJsonValue& index, const QJsonValue& text,
                const QJsonValue& entry_key) {
    const auto& list = control.record->List;
    const auto place = [&](const QString& wanted, std::string Entry::*field) {
        for (std::size_t i = 0; i < list.size(); ++i)
            if (QString::fromStdString(list[i].*field) == wanted) return static_cast<int>(i);
        throw Refusal{"no entry " + wanted};
    };
    if (entry_key.isString()) return place(entry_key.toString(), &Entry::Key);
    if (text.isString()) return place(text.toString(), &Entry::Text);
    if (!index.isDouble()) throw Refusal{"index, text or key is missing"};
    const int number = index.toInt(-1);
    if (number < 0 || static_cast<std::size_t>(number) >= list.size())
        throw Refusal{"no entry " + QString::number(index.toDouble())};
    return number;
}

Act choose_tab(QTabBar* tabs, int index) {
    must_be_operable(tabs);
    if (index >= tabs->count() || !tabs->isTabVisible(index)) throw Refusal{hidden};
    if (!tabs->isTabEnabled(index)) throw Refusal{disabled};
    return [tabs, index] {
        const auto shown = [&] { return tabs->tabRect(index); };
        // Tabs that don't fit are reached by the strip's own arrows.
        for (auto* arrow : tabs->findChildren<QAbstractButton*>())
            for (int i = 0; i < tabs->count() && arrow->isVisible() && arrow->isEnabled() &&
                            !tabs->rect().contains(shown());
                 ++i)
                QTest::mouseClick(arrow, Qt::LeftButton);
        QTest::mouseClick(tabs, Qt::LeftButton, {}, shown().center());
    };
}

Act choose_in_combo(QComboBox* combo, int index) {
    must_be_operable(combo);
    if (!meets(combo, combo->rect().center())) throw Refusal{hidden};
    return [combo, index] {
        QTest::mouseClick(combo, Qt::LeftButton);
        QPointer<QAbstractItemView> entries = combo->view();
        press(entries, Qt::Key_Home);
        for (int i = 0; entries && i < index; ++i) press(entries, Qt::Key_Down);
        if (entries) press(entries, Qt::Key_Return);
    };
}

// A tree's nodes know their places in the list of entries; a list's rows are theirs.
QModelIndex entry_of(const QAbstractItemView* view, int index) {
    const QAbstractItemModel* model = view->model();
    if (!qobject_cast<const QTreeView*>(view)) return model->index(index, 0);
    return model->match(model->index(0, 0), entry_role, index, 1, Qt::MatchRecursive).value(0);
}

Act choose_in_view(QAbstractItemView* view, int index) {
    must_be_operable(view);
    const QModelIndex node = entry_of(view, index);
    if (!node.isValid()) throw Refusal{"entry " + QString::number(index) + " is not drawn"};
    return [view, node] {
        view->scrollTo(node);  // also opens what lies above it
        QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, view->visualRect(node).center());
    };
}

}  // namespace

Drawn find_drawn(QWidget& window, Screen& screen, const QString& name) {
    static const QRegularExpression pattern("^([A-Za-z0-9_]+)(?:\\((\\d+)\\))?$");
    const QRegularExpressionMatch match = pattern.match(name);
    const bool indexed = match.hasCaptured(2);
    Control* record = match.hasMatch() ? find_control(screen, match.captured(1).toStdString(),
                                                      indexed ? match.captured(2).toInt() : -1)
                                       : nullptr;
    if (!record || (record->Index >= 0) != indexed) throw Refusal{"unknown control " + name};
    QWidget* widget = window.findChild<QWidget*>(name);
    if (!widget) throw Refusal{"control " + name + " is not drawn"};
    return {widget, record};
}

QJsonValue property_of(const Drawn& control, const QString& property) {
    for (const Property& known : properties()) {
        if (property != known.name) continue;
        if (!known.kinds.empty() && !known.kinds.contains(control.record->Kind))
            throw Refusal{control.widget->objectName() + " has no property " + property};
        return known.of(as_drawn(*control.widget, *control.record));
    }
    throw Refusal{"unknown property " + property};
}

Act click(const Drawn& control) {
    const QPoint point = reachable_point(control);
    return [widget = control.widget, point] { click_at(widget, point); };
}

Act keys(const Drawn& control, const QString& text) {
    must_take_keys(control);
    return [widget = control.widget, text] {
        widget->setFocus();
        type(widget, text);
    };
}

Act enter(const Drawn& control, const QString& text) {
    must_take_keys(control);
    if (!control.widget->inherits("QLineEdit") && !control.widget->inherits("QPlainTextEdit"))
        throw Refusal{control.widget->objectName() + " takes no text"};
    return [widget = control.widget, text] {
        widget->setFocus();
        QTest::sendKeyEvent(QTest::Click, widget, Qt::Key_A, QString(), Qt::ControlModifier);
        if (text.isEmpty()) press(widget, Qt::Key_Delete);
        type(widget, text);
    };
}

Act key(const Drawn& control, const QString& name) {
    // What these keys carry as text besides.
    static const QHash<Qt::Key, QString> texts = {
        {Qt::Key_Return, "\r"}, {Qt::Key_Tab, "\t"}, {Qt::Key_Escape, "\x1b"}};
    const Qt::Key code = key_named(name);
    must_take_keys(control);
    return [widget = control.widget, code] {
        widget->setFocus();
        press(widget, code, texts.value(code));
    };
}

Act caret(const Drawn& control, int at) {
    must_be_in_the_open(control.widget);
    auto* line = qobject_cast<QLineEdit*>(control.widget);
    auto* box = qobject_cast<QPlainTextEdit*>(control.widget);
    if (!line && !box) throw Refusal{control.widget->objectName() + " is no text box"};
    const std::string text = as_drawn(*control.widget, *control.record).Text;
    if (at < 0 || static_cast<std::size_t>(at) > character_count(text))
        throw Refusal{"no position " + QString::number(at)};
    const int units = widget_position(text, at);
    if (line) return [line, units] { click_in_line(line, units); };
    const int position = static_cast<TextView*>(box)->document_position(units);
    return [box, position] { click_in_box(box, position); };
}

Act check(const Drawn& control, bool on) {
    auto* button = qobject_cast<QAbstractButton*>(control.widget);
    if (!button || !button->isCheckable())
        throw Refusal{control.widget->objectName() + " is no check box or option"};
    const Act act = click(control);
    return button->isChecked() == on ? Act([] {}) : act;
}

Act choose(const Drawn& control, const QJsonValue& index, const QJsonValue& text,
           const QJsonValue& entry_key) {
    if (!is_list(control.record->Kind)) throw Refusal{control.widget->objectName() + " is no list"};
    const int entry = entry_index(control, index, text, entry_key);
    if (auto* tabs = qobject_cast<QTabBar*>(control.widget)) return choose_tab(tabs, entry);
    if (auto* combo = qobject_cast<QComboBox*>(control.widget))
        return choose_in_combo(combo, entry);
    return choose_in_view(qobject_cast<QAbstractItemView*>(control.widget), entry);
}

void click_widget(QWidget& widget) {
    QTest::mouseClick(&widget, Qt::LeftButton, {}, widget.rect().center());
}

}  // namespace vkm::robot
