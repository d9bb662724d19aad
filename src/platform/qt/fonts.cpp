#include "platform/qt/fonts.h"

#include <QApplication>
#include <QFontDatabase>

namespace vkm {
namespace {

constexpr const char* two_column_families[] = {
    "Noto Sans Mono CJK SC",
    "Sarasa Mono SC",
    "WenQuanYi Zen Hei Mono",
    "NSimSun",
};

}  // namespace

QFont monospaced_font() {
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    // As large as the rest of the window, whatever size the operator has chosen.
    font.setPointSizeF(QApplication::font().pointSizeF());
    font.setStyleHint(QFont::Monospace);
    font.setFixedPitch(true);
    for (const char* family : two_column_families)
        if (QFontDatabase::hasFamily(QLatin1String(family))) {
            font.setFamilies({QLatin1String(family)});
            break;
        }
    return font;
}

}  // namespace vkm
