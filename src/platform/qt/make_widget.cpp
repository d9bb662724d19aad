#include "platform/qt/make_widget.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollBar>
#include <QTabBar>
#include <QTreeWidget>

#include "platform/qt/control_hints.h"
#include "platform/qt/fields.h"
#include "platform/qt/marks.h"
#include "platform/qt/row_list.h"

namespace vkm {
namespace {

QWidget* make_label() {
    auto* label = new QLabel;
    label->setTextFormat(Qt::PlainText);
    return label;
}

QWidget* make_memo() {
    auto* memo = new TextView;
    memo->allow_typing();
    return memo;
}

QWidget* make_combo() {
    auto* combo = new QComboBox;
    combo->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    combo->setMaxVisibleItems(16);
    // The wheel moves the page below the mouse and no setting: it has to be
    // chosen first.
    combo->setFocusPolicy(Qt::StrongFocus);
    return combo;
}

QWidget* make_tabs() {
    auto* tabs = new QTabBar;
    tabs->setExpanding(false);
    tabs->setUsesScrollButtons(true);
    tabs->setElideMode(Qt::ElideNone);
    return tabs;
}

QWidget* make_tree() {
    auto* tree = new QTreeWidget;
    tree->setColumnCount(1);
    tree->setHeaderHidden(true);
    tree->setUniformRowHeights(true);
    return tree;
}

QWidget* make(ControlKind kind) {
    switch (kind) {
        case ControlKind::Label:
            return make_label();
        case ControlKind::Button:
            return new QPushButton;
        case ControlKind::TextBox:
            return new Field;
        case ControlKind::LogBox:
            return new TextView;
        case ControlKind::MemoBox:
            return make_memo();
        case ControlKind::CheckBox:
            return new QCheckBox;
        case ControlKind::OptionButton:
            return new QRadioButton;
        case ControlKind::ComboBox:
            return make_combo();
        case ControlKind::ListBox:
            return new RowList;
        case ControlKind::TabStrip:
            return make_tabs();
        case ControlKind::TreeView:
            return make_tree();
        case ControlKind::ScrollBar:
            return new QScrollBar(Qt::Vertical);
        case ControlKind::ProgressBar:
            return new QProgressBar;
        case ControlKind::Frame:
            return new Group;
        case ControlKind::Picture:
            return new Lamp(false);
    }
    return nullptr;
}

}  // namespace

QWidget* make_widget(const Control& control) {
    QWidget* widget = make(control.Kind);
    name_widget(control, *widget);
    return widget;
}

void name_widget(const Control& control, QWidget& widget) {
    widget.setObjectName(QString::fromStdString(full_name(control)));
    if (const ControlHint* hint = hint_of(control))
        widget.setToolTip(QString::fromUtf8(hint->hint));
}

}  // namespace vkm
