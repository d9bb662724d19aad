#include "platform/qt/option_panel_view.h"

#include "platform/qt/option_lines.h"
#include "platform/qt/text_mapping.h"

namespace vkm {

OptionLabel::OptionLabel() {
    setTextFormat(Qt::PlainText);
    setWordWrap(true);
}

QSize OptionLabel::sizeHint() const {
    return fontMetrics().size(0, text());
}

OptionPanelView::OptionPanelView() : lines_(new OptionLines(this)) {}

void OptionPanelView::set_lines(const std::vector<Entry>& list) {
    lines_->clear();
    QWidget* before = nullptr;
    for (const Entry& entry : list) {
        auto* child = findChild<QWidget*>(to_qt(entry.Text), Qt::FindDirectChildrenOnly);
        if (!child) continue;
        entry.Parent.empty() ? lines_->add_label(child) : lines_->add_choice(child);
        if (!(child->focusPolicy() & Qt::TabFocus)) continue;
        if (before) setTabOrder(before, child);
        before = child;
    }
}

}  // namespace vkm
