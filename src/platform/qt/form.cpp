#include "platform/qt/form.h"

#include <QEvent>
#include <QScrollArea>
#include <QStyle>

#include "platform/qt/flow_layout.h"

namespace vkm {
namespace {

// Its content may be as high as it likes: what lies around it shall not scroll
// for the sake of something that scrolls by itself.
class ScrolledPage final : public QScrollArea {
  public:
    QSize sizeHint() const override { return minimumSizeHint(); }
};

class Unit final : public QLabel {
  public:
    Unit(const QString& text, QWidget* control) : QLabel(text) {
        control->installEventFilter(this);
    }

  protected:
    bool eventFilter(QObject* control, QEvent* event) override {
        if (event->type() == QEvent::ShowToParent || event->type() == QEvent::HideToParent)
            setHidden(static_cast<QWidget*>(control)->isHidden());
        return QLabel::eventFilter(control, event);
    }
};

}  // namespace

QLabel* caption(const char* text, QWidget* buddy) {
    auto* label = new QLabel(QString::fromUtf8(text));
    label->setBuddy(buddy);
    return label;
}

QLabel* unit(const char* text, QWidget* control) {
    return new Unit(QString::fromUtf8(text), control);
}

QLabel* remark(const char* text) {
    auto* label = new QLabel(QString::fromUtf8(text));
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    return label;
}

QHBoxLayout* row(std::initializer_list<QWidget*> widgets) {
    auto* layout = new QHBoxLayout;
    for (QWidget* widget : widgets) widget ? layout->addWidget(widget) : layout->addStretch();
    return layout;
}

QLayout* flow(std::initializer_list<QWidget*> widgets) {
    auto* layout = new FlowLayout;
    for (QWidget* widget : widgets) layout->addWidget(widget);
    return layout;
}

QWidget* flow_widget(std::initializer_list<QWidget*> widgets) {
    auto* widget = new QWidget;
    widget->setLayout(flow(widgets));
    return widget;
}

QVBoxLayout* column(QWidget* parent) {
    auto* layout = new QVBoxLayout(parent);
    narrow_margins(layout);
    return layout;
}

void narrow_margins(QLayout* layout) {
    const QStyle* style = layout->parentWidget()->style();
    const int side = style->pixelMetric(QStyle::PM_LayoutHorizontalSpacing);
    const int edge = style->pixelMetric(QStyle::PM_LayoutVerticalSpacing) / 2;
    layout->setContentsMargins(side, edge, side, edge);
    layout->setSpacing(edge);
}

QFormLayout* form() {
    auto* layout = new QFormLayout;
    layout->setRowWrapPolicy(QFormLayout::WrapLongRows);
    layout->setFieldGrowthPolicy(QFormLayout::FieldsStayAtSizeHint);
    return layout;
}

QWidget* scrolling(QWidget* page) {
    auto* area = new ScrolledPage;
    area->setWidgetResizable(true);
    area->setFrameShape(QFrame::NoFrame);
    area->setFocusPolicy(Qt::NoFocus);
    area->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    area->setWidget(page);
    return area;
}

}  // namespace vkm
