#include "platform/qt/selection_colours.h"

namespace vkm {

// Setting a palette is told as a change of it: the second time there is nothing to do.
void show_selection_always(QWidget& widget) {
    QPalette colours = widget.palette();
    for (const auto role : {QPalette::Highlight, QPalette::HighlightedText})
        colours.setBrush(QPalette::Inactive, role, colours.brush(QPalette::Active, role));
    if (colours != widget.palette()) widget.setPalette(colours);
}

}  // namespace vkm
