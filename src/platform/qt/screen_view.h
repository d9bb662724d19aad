// The screen as widgets: every control of the table with its widget, kept alike
// in both directions.
//
// What the operator changes is in the record before the event is handed in; what
// the logic changes is drawn at the next turn, each changed control once. A
// change by the logic raises no event.
#pragma once

#include <QButtonGroup>
#include <QObject>
#include <QPointer>
#include <string>
#include <unordered_map>
#include <vector>

#include "frmMain.h"
#include "platform/qt/operator_queue.h"

namespace vkm {

class Field;
class TextView;

class ScreenView final : public QObject {
  public:
    // Both must outlive the view.
    ScreenView(frmMain& frm, OperatorQueue& queue);

    // The control's widget, made by its kind when it is first asked for.
    QWidget* operator()(Control& control);
    QWidget* operator()(const char* name, int index = -1);

    // Takes this widget for the control. It has to be of the class that
    // make_widget() gives for the kind, or of one derived from it; a frame and a
    // picture may be any widget.
    template <typename Widget>
    Widget* use(Control& control, Widget* widget) {
        take(control, widget);
        return widget;
    }

    // The widgets of some kinds as what they are.
    Field* field(Control& control, int columns);
    TextView* text_view(Control& control, int rows, int columns);

    // Radio buttons of which one is on: the elements of an array, or the two of a pair.
    void make_set(std::initializer_list<Control*> controls);

    // Records to widgets.
    void draw();

    // Names of the controls that have no widget.
    std::vector<std::string> without_widget() const;

    // The record that the widget draws; null for other widgets.
    Control* control_of(const QObject* widget) const;

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    struct Binding {
        Control* record = nullptr;
        Control drawn;  // the record as it was last drawn or heard
        QWidget* widget = nullptr;
        QButtonGroup* set = nullptr;
        int keys_waiting = 0;  // typed into a text view, not yet worked off
        int texts_drawn = 0;   // counts the changes of Text by the logic
    };

    Binding& binding(const Control& control);
    Binding* binding_of(const QObject* widget);
    void take(Control& control, QWidget* widget);
    void draw(Binding& binding);
    void draw_focus();
    void keep_focus_of(Binding& binding);

    // From here on: what the operator does.
    void hear(Binding& binding);
    void hear_button(Binding& binding);
    void hear_field(Binding& binding);
    void hear_view(Binding& binding);
    void hear_memo(Binding& binding);
    void hear_caret(Binding& binding);
    void follow_caret(Binding& binding);
    void hear_rows(Binding& binding);
    void hear_list(Binding& binding);
    void hear_selection(Binding& binding, int start, int end);
    void hear_index(Binding& binding, int index);
    void hear_value(Binding& binding, int value);
    bool hear_key(Binding& binding, QEvent& event);
    bool hear_tree_key(Binding& binding, QEvent& event);
    void hear_click(Binding& binding);
    template <typename Change>
    void change(Binding& binding, Change change);
    void raise(Binding& binding, EventKind kind, int key = 0, std::string text = {});

    frmMain& frm_;
    OperatorQueue& queue_;
    std::vector<Binding> bindings_;  // in the order of the table; never resized
    std::unordered_map<const Control*, Binding*> by_control_;
    std::unordered_map<const QObject*, Binding*> by_widget_;
    std::vector<QButtonGroup*> sets_;
    // The widget that lost the keyboard because the logic disabled it, for the
    // time when it can be used again.
    QPointer<QWidget> parked_focus_;
};

}  // namespace vkm
