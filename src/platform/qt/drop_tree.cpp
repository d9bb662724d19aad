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

// Over the box, downward as far as there is room; the arrow stays free and closes it.
void DropTree::place() {
    const QPoint corner = box_->mapTo(ground_, QPoint(0, 0));
    const int wanted = rows_shown * tree_->fontMetrics().lineSpacing();
    const int room = ground_->height() - corner.y();
    tree_->setGeometry(corner.x(), corner.y(), box_->width(), std::min(wanted, room));
    tree_->raise();
}

}  // namespace vkm
