// The tree of models, which drops down over the box that shows the chosen one.
#pragma once

#include <QObject>
#include <QPointer>
#include <QWidget>

#include "platform/qt/screen_view.h"

namespace vkm {

class DropTree final : public QObject {
  public:
    // A click on the box opens the tree as the arrow beside it does. `ground` is
    // what the tree lies upon and may not leave.
    DropTree(ScreenView& view, Screen& screen, OperatorQueue& queue, QWidget* ground);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void place();

    Screen& screen_;
    OperatorQueue& queue_;
    QPointer<QWidget> ground_;
    QPointer<QWidget> box_;
    QPointer<QWidget> tree_;
};

}  // namespace vkm
