// Widgets one behind the other like words of a text: what finds no room on its
// line begins the next one.
//
// It asks for the height that its lines take at the width it has, and asks anew
// when a new width changes that, so it works inside of splitters and scrolled
// pages, which don't ask for a height by width.
#pragma once

#include <QLayout>
#include <QList>

namespace vkm {

class FlowLayout final : public QLayout {
  public:
    FlowLayout();
    ~FlowLayout() override;

    void addItem(QLayoutItem* item) override { items_.append(item); }
    int count() const override { return static_cast<int>(items_.size()); }
    QLayoutItem* itemAt(int index) const override { return items_.value(index); }
    QLayoutItem* takeAt(int index) override;
    Qt::Orientations expandingDirections() const override { return {}; }
    QSize sizeHint() const override;
    QSize minimumSize() const override;
    void setGeometry(const QRect& rect) override;

  private:
    // The items of one line: those from `first` to before `end`.
    struct Line {
        qsizetype first = 0;
        qsizetype end = 0;
        int height = 0;
    };
    Line line_from(qsizetype first, int width) const;
    int height_at(int width) const;
    int button_height(const Line& line) const;
    void place(const Line& line, QPoint corner, int width);
    int gap(Qt::Orientation orientation) const;

    QList<QLayoutItem*> items_;
    int width_ = QLAYOUTSIZE_MAX;  // the one it was laid out at
};

}  // namespace vkm
