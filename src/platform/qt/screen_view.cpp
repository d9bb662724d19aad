#include "platform/qt/screen_view.h"

#include <QAbstractButton>
#include <algorithm>

#include "platform/qt/draw_control.h"
#include "platform/qt/fields.h"
#include "platform/qt/make_widget.h"

namespace vkm {

ScreenView::ScreenView(frmMain& frm, OperatorQueue& queue) : frm_(frm), queue_(queue) {
    for_each_control(frm.screen, [this](Control& control) {
        Binding binding;
        binding.record = &control;
        binding.drawn.Kind = control.Kind;
        bindings_.push_back(std::move(binding));
    });
    for (Binding& binding : bindings_) by_control_[binding.record] = &binding;
}

QWidget* ScreenView::operator()(Control& control) {
    Binding& bound = binding(control);
    if (!bound.widget) take(control, make_widget(control));
    return bound.widget;
}

QWidget* ScreenView::operator()(const char* name, int index) {
    return (*this)(*find_control(frm_.screen, name, index));
}

void ScreenView::take(Control& control, QWidget* widget) {
    Binding& bound = binding(control);
    bound.widget = widget;
    by_widget_[widget] = &bound;
    name_widget(control, *widget);
    hear(bound);
    // The elements of an array of options are a set.
    if (control.Kind != ControlKind::OptionButton || control.Index < 0) return;
    for (const Binding& other : bindings_)
        if (other.record->Name == control.Name && other.set) bound.set = other.set;
    if (!bound.set) bound.set = new QButtonGroup(this);
    bound.set->addButton(static_cast<QAbstractButton*>(widget));
}

Field* ScreenView::field(Control& control, int columns) {
    auto* field = static_cast<Field*>((*this)(control));
    field->set_columns(columns);
    return field;
}

TextView* ScreenView::text_view(Control& control, int rows, int columns) {
    auto* view = static_cast<TextView*>((*this)(control));
    view->set_size_in_characters(rows, columns);
    return view;
}

void ScreenView::make_set(std::initializer_list<Control*> controls) {
    auto* set = new QButtonGroup(this);
    for (Control* control : controls) {
        set->addButton(static_cast<QAbstractButton*>((*this)(*control)));
        binding(*control).set = set;
    }
}

void ScreenView::draw() {
    // A page that goes makes room for the one that comes: both at once would squeeze it.
    for (const bool visible : {false, true})
        for (Binding& binding : bindings_)
            if (binding.widget && binding.record->Visible == visible &&
                !(*binding.record == binding.drawn))
                draw(binding);
    if (!frm_.screen.Focus_Request.empty()) draw_focus();
}

void ScreenView::draw(Binding& binding) {
    const Control before = std::exchange(binding.drawn, *binding.record);
    if (before.Text != binding.drawn.Text) ++binding.texts_drawn;
    if (before.Enabled != binding.drawn.Enabled) keep_focus_of(binding);
    draw_control(binding.drawn, before, *binding.widget);
}

void ScreenView::draw_focus() {
    const Control* control = find_control(frm_.screen, frm_.screen.Focus_Request);
    frm_.screen.Focus_Request = {};
    if (control && binding(*control).widget) binding(*control).widget->setFocus();
}

// An operator who works by keyboard presses Download again and again: the button
// gets the keyboard back when the job has ended, unless it was moved meanwhile.
// Left alone, the toolkit would hand it on to whatever comes next.
void ScreenView::keep_focus_of(Binding& binding) {
    QWidget* widget = binding.widget;
    const QWidget* owner = widget->window()->focusWidget();
    if (!binding.drawn.Enabled && owner == widget) {
        parked_focus_ = widget;
        widget->clearFocus();
    } else if (binding.drawn.Enabled && parked_focus_ == widget) {
        parked_focus_ = nullptr;
        if (owner) return;
        widget->setEnabled(true);
        widget->setFocus();
    }
}

std::vector<std::string> ScreenView::without_widget() const {
    std::vector<std::string> names;
    for (const Binding& binding : bindings_)
        if (!binding.widget) names.push_back(full_name(*binding.record));
    return names;
}

Control* ScreenView::control_of(const QObject* widget) const {
    const auto found = by_widget_.find(widget);
    return found == by_widget_.end() ? nullptr : found->second->record;
}

ScreenView::Binding& ScreenView::binding(const Control& control) {
    return *by_control_.at(&control);
}

ScreenView::Binding* ScreenView::binding_of(const QObject* widget) {
    const auto found = by_widget_.find(widget);
    return found == by_widget_.end() ? nullptr : found->second;
}

}  // namespace vkm
