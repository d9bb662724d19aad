// Widgets one behind the other like words of a text: what finds no room on its
// line begins the next one.
//
// It tells the height that its lines take at any width, so a page is right the
// first time it is shown. Splitters don't ask for a height by width: for them it
// asks for the height at the width it has, and anew when a new width changes that.
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
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override { return height_at(width); }
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
