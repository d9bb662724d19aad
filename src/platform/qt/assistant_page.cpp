#include <QComboBox>
#include <QEvent>
#include <QPushButton>
#include <QScrollArea>
#include <QSplitter>
#include <QSplitterHandle>

#include "platform/qt/fields.h"
#include "platform/qt/flow_layout.h"
#include "platform/qt/form.h"
#include "platform/qt/long_text_view.h"
#include "platform/qt/marks.h"
#include "platform/qt/pages.h"
#include "platform/qt/text_mapping.h"
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
constexpr int send_rows = 2;
constexpr int text_columns = 12;

// A count of bytes behind its caption; 32 bits go round at 4294967295.
QWidget* make_count(ScreenView& view, Control& count) {
    return view.use(count, new Readout(to_qt(count.Caption) + QString(9, u'0'), Qt::AlignLeft));
}

// Holds a widget to the width of its longest text, where the style would give it that
// of a usual one.
class Narrow final : public QObject {
  public:
    // `around` is what lies beside the text, in heights of the font.
    Narrow(QWidget* widget, const QString& longest, double around)
        : QObject(widget), widget_(widget), longest_(longest), around_(around) {
        widget->installEventFilter(this);
        fit();
    }

  protected:
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::FontChange) fit();
        return false;
    }

  private:
    void fit() {
        const QFontMetrics font = widget_->fontMetrics();
        widget_->setMaximumWidth(font.horizontalAdvance(longest_) +
                                 static_cast<int>(around_ * font.height()));
    }

    QWidget* widget_;
    QString longest_;
    double around_;
};

QWidget* narrow_button(ScreenView& view, Control& button, const QString& longest) {
    constexpr double edges = 1.2;
    new Narrow(view(button), longest, edges);
    return view(button);
}

QWidget* narrow_button(ScreenView& view, Control& button) {
    return narrow_button(view, button, to_qt(button.Caption));
}

QWidget* narrow_list(ScreenView& view, Control& list, const char* longest) {
    constexpr double edges_and_arrow = 2.2;
    new Narrow(view(list), QString::fromLatin1(longest), edges_and_arrow);
    return view(list);
}

QWidget* make_receive_panel(ScreenView& view, Screen& s) {
    QWidget* panel = view(s.fraDebug);
    auto* text = view.use(s.texReceive, new LongTextView);
    text->set_size_in_characters(receive_rows, text_columns);
    column(panel)->addWidget(text);
    return panel;
}

// Across the whole page: below the panel they would take its height where it is narrow.
QWidget* make_receive_controls(ScreenView& view, Screen& s) {
    return flow_widget({view(s.optReceiveHex[0]), view(s.optReceiveHex[1]),
                        narrow_button(view, s.comDebugClear[0]),
                        narrow_button(view, s.comDebugHelp[0]), make_count(view, s.labReceiveCount),
                        make_count(view, s.labSendCount), narrow_button(view, s.comClearCount)});
}

QWidget* make_single_panel(ScreenView& view, Screen& s) {
    auto* panel = new Group;
    panel->set_caption(QStringLiteral("单字符串发送区 / One text"));
    auto* lines = column(panel);
    TextView* text = view.text_view(s.texSend, send_rows, text_columns);
    text->setLineWrapMode(QPlainTextEdit::WidgetWidth);
    text->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    lines->addWidget(text);
    lines->addWidget(flow_widget({view(s.optHexSend[0]), view(s.optHexSend[1]),
                                  narrow_button(view, s.comDebugSend),
                                  narrow_button(view, s.comClearSend), view(s.comAutoSend),
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
        grid->addWidget(view(s.cheSpreadHex[place]), i, 0);
        grid->addWidget(view.field(s.texSpreadSend[place], 0), i, 1);
        grid->addWidget(narrow_button(view, s.comSpreadSendCom[place], "000"), i, 2);
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

QWidget* clickable(QWidget* lamp) {
    lamp->setCursor(Qt::PointingHandCursor);
    return lamp;
}

QWidget* make_port_panel(ScreenView& view, Screen& s) {
    return flow_widget({view(s.com_Debug_COM), view(s.com_Debug_Baud),
                        narrow_list(view, s.com_Debug_DataBits, "8"), view(s.com_Debug_ParityCheck),
                        narrow_list(view, s.com_Debug_StopBits, "1.5"), view(s.comOpenCOM),
                        clickable(view.use(s.imgOpen, new Lamp(true))),
                        clickable(view(s.imgNotOpen)), view(s.che_AutoOpenPort)});
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
    panels->addWidget(scrolling(sending));
    view.use(s.ImgSplitter, panels->handle(1));
    fill(panels->handle(1), view.use(s.picSplitter, new QWidget));

    auto* page = new QWidget;
    auto* column_of_page = column(page);
    column_of_page->addWidget(panels, 1);
    column_of_page->addWidget(make_receive_controls(view, s));
    column_of_page->addWidget(make_port_panel(view, s));
    QWidget* area = scrolling(page);
    new Follower(view(s.fraDebug), area);
    return area;
}

}  // namespace vkm
