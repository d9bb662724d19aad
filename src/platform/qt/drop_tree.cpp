#include "platform/qt/drop_tree.h"

#include <QEvent>
#include <algorithm>

namespace vkm {
namespace {

constexpr int rows_shown = 18;

}  // namespace

DropTree::DropTree(ScreenView& view, Screen& screen, OperatorQueue& queue, QWidget* ground)
    : QObject(ground),
      screen_(screen),
      queue_(queue),
      ground_(ground),
      box_(view(screen.txtDevice)),
      arrow_(view(screen.Command3)),
      tree_(view(screen.TreeViewDevice)) {
    tree_->setParent(ground);
    tree_->hide();
    tree_->installEventFilter(this);
    box_->installEventFilter(this);
    ground->installEventFilter(this);
}

bool DropTree::eventFilter(QObject* watched, QEvent* event) {
    if (watched == box_ && event->type() == QEvent::MouseButtonRelease && box_->isEnabled())
        queue_.push(ScreenEvent{&screen_.Command3, EventKind::Click, 0, {}});
    const bool moved = watched == ground_ && event->type() == QEvent::Resize;
    const bool shown = watched == tree_ && event->type() == QEvent::ShowToParent;
    if ((moved || shown) && tree_ && !tree_->isHidden()) place();
    return false;
}

// Over the box and its arrow, downward as far as there is room.
void DropTree::place() {
    const QPoint corner = box_->mapTo(ground_, QPoint(0, 0));
    const int right = arrow_->mapTo(ground_, QPoint(arrow_->width(), 0)).x();
    const int wanted = rows_shown * tree_->fontMetrics().lineSpacing();
    const int room = ground_->height() - corner.y();
    tree_->setGeometry(corner.x(), corner.y(), right - corner.x(), std::min(wanted, room));
    tree_->raise();
}

}  // namespace vkm
