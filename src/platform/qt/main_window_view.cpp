#include "platform/qt/main_window_view.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QCloseEvent>
#include <QComboBox>
#include <QDragEnterEvent>
#include <QMimeData>
#include <QScreen>
#include <QSplitter>

#include "platform/qt/disabled_colours.h"
#include "platform/qt/drop_tree.h"
#include "platform/qt/fitting_area.h"
#include "platform/qt/form.h"
#include "platform/qt/left_column.h"
#include "platform/qt/pages.h"
#include "platform/qt/port_list.h"
#include "platform/qt/program_icon.h"
#include "platform/qt/status_line.h"
#include "platform/qt/text_mapping.h"
#include "window/main_window.h"

namespace vkm {
namespace {

// How the two strips share the height at first: a buffer and the assistant need
// more than a form.
constexpr double upper_share = 0.55;

// The two strips with their shares, until the operator moves the bar between them.
class Strips final : public QSplitter {
  public:
    Strips() : QSplitter(Qt::Vertical) {
        setChildrenCollapsible(false);
        connect(this, &QSplitter::splitterMoved, this, [this] { moved_ = true; });
    }

  protected:
    void resizeEvent(QResizeEvent* event) override {
        QSplitter::resizeEvent(event);
        if (moved_) return;
        const int upper = static_cast<int>(height() * upper_share);
        setSizes({upper, height() - upper});
    }

  private:
    bool moved_ = false;
};

// Where not even this much of the steps finds room, nothing can be done here.
constexpr int fewest_lines_of_steps = 10;

// More than any screen has, and less than the toolkit can paint.
constexpr QSize largest_window(16384, 16384);

constexpr int pixels(std::int32_t twips) {
    return twips / twips_per_pixel;
}

// Of captions that can't be operated now, on the ground behind them.
constexpr double disabled_strength = 0.5;

// A place stored with a monitor that isn't there any more is none.
bool is_on_a_screen(const QRect& window) {
    for (const QScreen* screen : QGuiApplication::screens())
        if (screen->availableGeometry().intersects(window)) return true;
    return false;
}

// A file that is dragged, or an empty text.
QString dragged_file(const QMimeData& data) {
    const QList<QUrl> urls = data.urls();
    return urls.isEmpty() ? QString() : urls.front().toLocalFile();
}

}  // namespace

MainWindowView::MainWindowView(frmMain& frm, OperatorQueue& queue, const QtSerialPort& port,
                               const PortRegistry& ports)
    : frm_(frm), queue_(queue), port_(port), ports_(ports), view_(frm, queue) {
    setWindowTitle(QStringLiteral("VKM ISP"));
    setWindowIcon(program_icon());
    setAcceptDrops(true);
    darken_disabled_captions();
    lay_out();
}

void MainWindowView::lay_out() {
    Screen& screen = frm_.screen;
    left_ = new FittingArea(make_left_column(view_, screen), fewest_lines_of_steps);
    left_->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Expanding);
    auto* strips = new Strips;
    strips->addWidget(make_view_strip(view_, screen, queue_, lock_ = new LockMark));
    strips->addWidget(make_tool_strip(view_, screen));
    right_ = strips;
    status_ = new StatusLine(view_(screen.comMastWindow));

    auto* ground = new QWidget;
    auto* lines = column(ground);
    auto* halves = row({left_, right_});
    halves->setStretch(1, 1);
    lines->addLayout(halves, 1);
    lines->addWidget(status_);
    setCentralWidget(ground);

    for (Control* list : {&screen.combCommPort, &screen.com_Debug_COM})
        show_devices_behind(*static_cast<QComboBox*>(view_(*list)), ports_);
    new DropTree(view_, screen, queue_, ground);
}

// Setting a palette is told as a change of it: the second time there is nothing to do.
void MainWindowView::darken_disabled_captions() {
    const QPalette colours = with_disabled_texts(palette(), disabled_strength);
    if (colours != palette()) setPalette(colours);
}

void MainWindowView::changeEvent(QEvent* event) {
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) darken_disabled_captions();
}

void MainWindowView::draw() {
    view_.draw();
    status_->draw(frm_, port_, ports_);
    lock_->set_locked(frm_.session.UI_State == ui_locked ||
                      frm_.session.UI_State == ui_busy_locked);
    if (std::exchange(drawn_ports_, ports_.version()) != ports_.version()) draw_port_lists();
    if (!(frm_.screen.window == drawn_)) draw_window();
    if (frm_.screen.MousePointer != drawn_pointer_) draw_pointer();
}

// A list that stands open tells of a plug at once.
void MainWindowView::draw_port_lists() {
    for (Control* list : {&frm_.screen.combCommPort, &frm_.screen.com_Debug_COM})
        static_cast<QComboBox*>(view_(*list))->view()->viewport()->update();
}

void MainWindowView::draw_window() {
    WindowRecord& now = frm_.screen.window;
    if (std::exchange(now.Close_Requested, false)) ask_to_close();
    const WindowRecord before = std::exchange(drawn_, now);
    const QPoint place(pixels(now.Left), pixels(now.Top));
    const QSize size = QSize(pixels(now.Width), pixels(now.Height)).boundedTo(largest_window);
    if (before.Left != now.Left || before.Top != now.Top)
        if (is_on_a_screen({place, size})) move(place);
    if (before.Shrunk != now.Shrunk) show_right(!now.Shrunk);
    if (now.Shrunk)
        narrow_to_column(size.height());
    else if (isMaximized() || isFullScreen())
        return;  // it has its size from the screen
    else if (before.Width != now.Width || before.Height != now.Height || before.Shrunk)
        resize(size);
}

// Twice: only at its new height it is clear whether the column needs a scroll bar.
void MainWindowView::narrow_to_column(int height) {
    for (int turn = 0; turn < 2; ++turn) {
        resize(column_width(), height);
        centralWidget()->layout()->activate();
    }
}

// A window that fills the screen has no width of its own to narrow; it fills it
// again when it is whole again.
void MainWindowView::show_right(bool shown) {
    constexpr Qt::WindowStates filling = Qt::WindowMaximized | Qt::WindowFullScreen;
    if (!shown) filled_ = windowState() & filling;
    setWindowState(shown ? windowState() | filled_ : windowState() & ~filling);
    right_->setVisible(shown);
    // At once: until then the window can't get smaller than both halves.
    centralWidget()->layout()->activate();
    layout()->activate();
}

// What the steps and the ground around them need.
int MainWindowView::column_width() const {
    const QMargins around = centralWidget()->layout()->contentsMargins();
    return left_->sizeHint().width() + around.left() + around.right();
}

void MainWindowView::draw_pointer() {
    drawn_pointer_ = frm_.screen.MousePointer;
    if (drawn_pointer_ == wait_pointer)
        QApplication::setOverrideCursor(Qt::WaitCursor);
    else
        QApplication::restoreOverrideCursor();
}

// Where the operator has put the window. A window that fills the screen keeps
// the place and the size that it will have again afterwards.
void MainWindowView::hear_geometry() {
    if (!isVisible() || isMaximized() || isFullScreen() || isMinimized()) return;
    WindowRecord& record = frm_.screen.window;
    const WindowRecord before = record;
    record.Left = pos().x() * twips_per_pixel;
    record.Top = pos().y() * twips_per_pixel;
    if (pixels(record.Height) != height()) record.Height = height() * twips_per_pixel;
    if (!record.Shrunk && pixels(record.Width) != width()) record.Width = width() * twips_per_pixel;
    if (record == before) return;
    drawn_ = record;
    queue_.push(ScreenEvent{nullptr, EventKind::Change, 0, {}});
}

void MainWindowView::ask_to_close() {
    queue_.push([this](frmMain& frm) {
        if (over_ || !QueryUnload(frm)) return;
        over_ = true;
        hide();
    });
}

void MainWindowView::closeEvent(QCloseEvent* event) {
    event->ignore();
    ask_to_close();
}

void MainWindowView::resizeEvent(QResizeEvent* event) {
    QMainWindow::resizeEvent(event);
    hear_geometry();
}

void MainWindowView::moveEvent(QMoveEvent* event) {
    QMainWindow::moveEvent(event);
    hear_geometry();
}

void MainWindowView::dragEnterEvent(QDragEnterEvent* event) {
    if (frm_.screen.comLoadFile.Enabled && !dragged_file(*event->mimeData()).isEmpty())
        event->acceptProposedAction();
}

void MainWindowView::dropEvent(QDropEvent* event) {
    const QString file = dragged_file(*event->mimeData());
    if (file.isEmpty()) return;
    event->acceptProposedAction();
    queue_.push(ScreenEvent{nullptr, EventKind::Drop, 0, from_qt(file)});
}

}  // namespace vkm
