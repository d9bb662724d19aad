#include "platform/qt/disabled_colours.h"

namespace vkm {
namespace {

struct Text_On_Ground {
    QPalette::ColorRole text;
    QPalette::ColorRole ground;
};

constexpr Text_On_Ground pairs[] = {
    {QPalette::WindowText, QPalette::Window},
    {QPalette::ButtonText, QPalette::Button},
    {QPalette::Text, QPalette::Base},
};

}  // namespace

QPalette with_disabled_texts(QPalette colours, double strength) {
    for (const Text_On_Ground& pair : pairs) {
        const QColor text = colours.color(QPalette::Active, pair.text);
        const QColor ground = colours.color(QPalette::Disabled, pair.ground);
        const auto mixed = [&](int of_text, int of_ground) {
            return static_cast<int>(strength * of_text + (1 - strength) * of_ground);
        };
        colours.setColor(
            QPalette::Disabled, pair.text,
            QColor(mixed(text.red(), ground.red()), mixed(text.green(), ground.green()),
                   mixed(text.blue(), ground.blue())));
    }
    return colours;
}

}  // namespace vkm
