// The codes by which the logic knows keys.
#pragma once

#include <Qt>

namespace vkm {

inline constexpr int backspace_code = 8;
inline constexpr int tab_code = 9;
inline constexpr int return_code = 13;
inline constexpr int escape_code = 27;
inline constexpr int delete_code = 46;

// 8 Backspace, 9 Tab, 13 Return, 27 Escape, 33 Page Up, 34 Page Down, 35 End,
// 36 Home, 37 to 40 the arrows left, up, right, down, 45 Insert, 46 Delete, and
// the ASCII code of space, digits and capital letters. 0 for any other key.
constexpr int key_code(int qt_key) {
    switch (qt_key) {
        case Qt::Key_Backspace:
            return backspace_code;
        case Qt::Key_Tab:
        case Qt::Key_Backtab:
            return tab_code;
        case Qt::Key_Return:
        case Qt::Key_Enter:
            return return_code;
        case Qt::Key_Escape:
            return escape_code;
        case Qt::Key_PageUp:
            return 33;
        case Qt::Key_PageDown:
            return 34;
        case Qt::Key_End:
            return 35;
        case Qt::Key_Home:
            return 36;
        case Qt::Key_Left:
            return 37;
        case Qt::Key_Up:
            return 38;
        case Qt::Key_Right:
            return 39;
        case Qt::Key_Down:
            return 40;
        case Qt::Key_Insert:
            return 45;
        case Qt::Key_Delete:
            return delete_code;
        default:
            break;
    }
    const bool digit = qt_key >= Qt::Key_0 && qt_key <= Qt::Key_9;
    const bool letter = qt_key >= Qt::Key_A && qt_key <= Qt::Key_Z;
    return digit || letter || qt_key == Qt::Key_Space ? qt_key : 0;
}

}  // namespace vkm
