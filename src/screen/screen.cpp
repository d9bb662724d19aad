#include "screen/screen.h"

#include <unordered_map>

namespace vkm {
namespace {

enum class StartState { shown, off, hidden };

// The piece of a "first|second|third" text that belongs to an array's element.
// A text without bars belongs to all elements.
std::string_view piece(std::string_view pieces, int index) {
    if (pieces.find('|') == std::string_view::npos) return pieces;
    for (; index > 0; --index) {
        const auto bar = pieces.find('|');
        if (bar == std::string_view::npos) return {};
        pieces.remove_prefix(bar + 1);
    }
    return pieces.substr(0, pieces.find('|'));
}

bool starts_with_text(ControlKind kind) {
    return kind == ControlKind::TextBox || kind == ControlKind::LogBox ||
           kind == ControlKind::MemoBox;
}

void start(Control& control, std::string_view name, int index, ControlKind kind,
           std::string_view text, StartState state) {
    control.Name = name;
    control.Index = index;
    control.Kind = kind;
    (starts_with_text(kind) ? control.Text : control.Caption) = piece(text, index < 0 ? 0 : index);
    control.Enabled = state != StartState::off;
    control.Visible = state != StartState::hidden;
}

template <std::size_t count>
void start(std::array<Control, count>& controls, std::string_view name, int, ControlKind kind,
           std::string_view text, StartState state) {
    for (std::size_t i = 0; i < count; ++i)
        start(controls[i], name, static_cast<int>(i), kind, text, state);
}

void visit_each(Control& control, const std::function<void(Control&)>& visit) {
    visit(control);
}

template <std::size_t count>
void visit_each(std::array<Control, count>& controls, const std::function<void(Control&)>& visit) {
    for (Control& control : controls) visit(control);
}

Control* element(Control& control, int) {
    return &control;
}

template <std::size_t count>
Control* element(std::array<Control, count>& controls, int index) {
    return index >= 0 && static_cast<std::size_t>(index) < count
               ? &controls[static_cast<std::size_t>(index)]
               : nullptr;
}

}  // namespace

Screen::Screen() {
#define CONTROL(name, kind, count, text, state) \
    start(name, #name, -1, ControlKind::kind, text, StartState::state);
#include "screen/controls.def"
#undef CONTROL
}

Control* find_control(Screen& screen, std::string_view name, int index) {
    using Finder = Control* (*)(Screen&, int);
    static const std::unordered_map<std::string_view, Finder> finders = {
#define CONTROL(name, kind, count, text, state) \
    {#name, [](Screen& s, int i) { return element(s.name, i); }},
#include "screen/controls.def"
#undef CONTROL
    };
    const auto found = finders.find(name);
    return found == finders.end() ? nullptr : found->second(screen, index);
}

void for_each_element(Screen& screen, std::string_view name,
                      const std::function<void(Control&)>& visit) {
    for (int index = 0; Control* control = find_control(screen, name, index); ++index) {
        visit(*control);
        if (control->Index < 0) return;
    }
}

void for_each_control(Screen& screen, const std::function<void(Control&)>& visit) {
#define CONTROL(name, kind, count, text, state) visit_each(screen.name, visit);
#include "screen/controls.def"
#undef CONTROL
}

}  // namespace vkm
