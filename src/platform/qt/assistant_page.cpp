#include <QComboBox>
#include <QEvent>
#include <QPushButton>
#include <QScrollArea>
#include <QSplitter>
#include <QSplitterHandle>

#include "platform/qt/fields.h"
#include "platform/qt/flow_layout.h"
#include "platform/qt/form.h"
#include "platform/qt/marks.h"
#include "platform/qt/pages.h"
#include "window/main_window.h"

namespace vkm {
namespace {

// Frame24_Width as long as nobody has moved the splitter. It is no whole number
// of pixels, so no splitter ever comes to stand there: the panels then share the
// page.
constexpr std::int32_t width_not_chosen = 2000;
static_assert(width_not_chosen % twips_per_pixel != 0);

// The two panels. The splitter takes the width of the first from the window's
// record, and tells the logic when it was released.
class PanelSplitter final : public QSplitter {
  public:
    PanelSplitter(const WindowRecord& window, OperatorQueue& queue)
        : QSplitter(Qt::Horizontal), window_(window), queue_(queue) {
        setChildrenCollapsible(false);
    }

  protected:
    QSplitterHandle* createHandle() override {
        QSplitterHandle* handle = QSplitter::createHandle();
        handle->installEventFilter(this);
        return handle;
    }

    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::MouseButtonPress) queue_.push(ImgSplitter_Pressed);
        if (event->type() == QEvent::MouseButtonRelease)
            queue_.push([width = sizes().value(0) * twips_per_pixel](frmMain& frm) {
                ImgSplitter_Released(frm, width);
            });
        return false;
    }

    void resizeEvent(QResizeEvent* event) override {
        QSplitter::resizeEvent(event);
        const int room = width() - handleWidth();
        const bool chosen = window_.Frame24_Width != width_not_chosen;
        const int first = chosen ? window_.Frame24_Width / twips_per_pixel : room / 2;
        setSizes({first, room - first});
    }

  private:
    const WindowRecord& window_;
    OperatorQueue& queue_;
};

// The tab shows and hides the panel fraDebug; the page around it goes with it.
class Follower final : public QObject {
  public:
    Follower(QWidget* leader, QWidget* follower) : QObject(follower), follower_(follower) {
        leader->installEventFilter(this);
    }

  protected:
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::ShowToParent) follower_->show();
        if (event->type() == QEvent::HideToParent) follower_->hide();
        return false;
    }

  private:
    QWidget* follower_;
};

// The bar that lies on the splitter while it is being moved.
void fill(QWidget* handle, QWidget* bar) {
    bar->setBackgroundRole(QPalette::Highlight);
    bar->setAutoFillBackground(true);
    bar->setAttribute(Qt::WA_TransparentForMouseEvents);
    auto* layout = new QVBoxLayout(handle);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(bar);
}

constexpr int receive_rows = 3;
constexpr int receive_columns = 12;

QWidget* make_receive_panel(ScreenView& view, Screen& s) {
    QWidget* panel = view(s.fraDebug);
    auto* lines = column(panel);
    TextView* text = view.text_view(s.texReceive, receive_rows, receive_columns);
    text->setLineWrapMode(QPlainTextEdit::WidgetWidth);
    lines->addWidget(text, 1);
    lines->addWidget(
        flow_widget({view(s.optReceiveHex[0]), view(s.optReceiveHex[1]), view(s.comDebugClear[0]),
                     view(s.comDebugHelp[0]), view(s.labReceiveCount), view(s.labSendCount),
                     view(s.comClearCount)}));
    return panel;
}

QWidget* make_single_panel(ScreenView& view, Screen& s) {
    auto* panel = new Group;
    panel->set_caption(QStringLiteral("单字符串发送区 / One text"));
    auto* lines = column(panel);
    lines->addWidget(view.field(s.texSend, 0));
    lines->addWidget(flow_widget({view(s.optHexSend[0]), view(s.optHexSend[1]),
                                  view(s.comDebugSend), view(s.comClearSend), view(s.comAutoSend),
                                  caption("周期/Cycle (ms):"), view.field(s.texSendCycle, 6)}));
    return panel;
}

QWidget* make_list_of_texts(ScreenView& view, Screen& s) {
    auto* list = new QWidget;
    auto* grid = new QGridLayout(list);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setVerticalSpacing(0);
    for (int i = 0; i < static_cast<int>(s.texSpreadSend.size()); ++i) {
        const auto place = static_cast<std::size_t>(i);
        auto* number = static_cast<QPushButton*>(view(s.comSpreadSendCom[place]));
        number->setMaximumWidth(number->fontMetrics().horizontalAdvance(QStringLiteral("0000000")));
        grid->addWidget(view(s.cheSpreadHex[place]), i, 0);
        grid->addWidget(view.field(s.texSpreadSend[place], 0), i, 1);
        grid->addWidget(number, i, 2);
    }
    grid->setRowStretch(static_cast<int>(s.texSpreadSend.size()), 1);
    return list;
}

QWidget* make_spread_panel(ScreenView& view, Screen& s) {
    auto* panel = new Group;
    panel->set_caption(QStringLiteral("多字符串发送区 / 25 texts"));
    auto* lines = column(panel);
    lines->addWidget(scrolling(make_list_of_texts(view, s)), 1);
    lines->addWidget(flow_widget({view(s.comSpreadAutoSend), caption("间隔/Cycle (ms):"),
                                  view.field(s.texSpreadSendCycle, 6)}));
    return panel;
}

QWidget* make_port_panel(ScreenView& view, Screen& s) {
    return flow_widget({caption("串口/Port:"), view(s.com_Debug_COM), view(s.com_Debug_Baud),
                        view(s.com_Debug_DataBits), view(s.com_Debug_ParityCheck),
                        view(s.com_Debug_StopBits), view(s.comOpenCOM),
                        view.use(s.imgOpen, new Lamp(true)), view(s.imgNotOpen),
                        view(s.che_AutoOpenPort)});
}

}  // namespace

QWidget* make_assistant_page(ScreenView& view, Screen& s, OperatorQueue& queue) {
    auto* sending = new QWidget;
    auto* lines = new QVBoxLayout(sending);
    lines->setContentsMargins(0, 0, 0, 0);
    lines->addWidget(make_single_panel(view, s));
    lines->addWidget(make_spread_panel(view, s), 1);

    auto* panels = new PanelSplitter(s.window, queue);
    panels->addWidget(make_receive_panel(view, s));
    panels->addWidget(sending);
    view.use(s.ImgSplitter, panels->handle(1));
    fill(panels->handle(1), view.use(s.picSplitter, new QWidget));

    auto* page = new QWidget;
    auto* column_of_page = column(page);
    column_of_page->addWidget(panels, 1);
    column_of_page->addWidget(make_port_panel(view, s));
    QWidget* area = scrolling(page);
    new Follower(view(s.fraDebug), area);
    return area;
}

}  // namespace vkm
