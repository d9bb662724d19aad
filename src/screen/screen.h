// The screen as values: one record of all controls, made from the one table
// controls.def, and the look-up by name that files, settings and the robot need.
#pragma once

#include <array>
#include <functional>
#include <string_view>
#include <type_traits>

#include "screen/control.h"

namespace vkm {

// The window itself. Sizes and places in twips, 15 to the logical pixel, as the
// settings keep them.
inline constexpr std::int32_t twips_per_pixel = 15;

struct WindowRecord {
    std::int32_t Left = 0;
    std::int32_t Top = 0;
    std::int32_t Width = 12000;
    std::int32_t Height = 9045;
    std::int32_t Frame24_Width = 2000;  // width of the panel fraDebug
    bool Shrunk = false;                // narrowed to the step column
    bool Close_Requested = false;       // the logic asks the edge to close the window
    bool operator==(const WindowRecord&) const = default;
};

inline constexpr std::int32_t default_pointer = 0;
inline constexpr std::int32_t wait_pointer = 11;

template <int count>
using ControlMember =
    std::conditional_t<count == 0, Control, std::array<Control, static_cast<std::size_t>(count)>>;

struct Screen {
    Screen();  // every control with the start values of the table

    WindowRecord window;
    std::int32_t MousePointer = default_pointer;
    // Message language: false shows the bilingual texts. Nothing sets it; the
    // English texts stay selectable by it.
    bool Show_English = false;
    // Name of the control that the logic gives the keyboard to; the edge moves the
    // focus at its next turn and empties this.
    std::string_view Focus_Request;

#define CONTROL(name, kind, count, start, state) ControlMember<count> name;
#include "screen/controls.def"
#undef CONTROL
};

// The control of this name; index is its place in its array, and is not looked
// at for a control that is none. Null when there is no such control.
Control* find_control(Screen& screen, std::string_view name, int index = -1);

// The elements of the array of this name, or the one control of it.
void for_each_element(Screen& screen, std::string_view name,
                      const std::function<void(Control&)>& visit);

// Every control once, in the order of the table, arrays from element 0 on.
void for_each_control(Screen& screen, const std::function<void(Control&)>& visit);

}  // namespace vkm
