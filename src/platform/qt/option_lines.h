// Lines of a label and its choices. The choices are flush at the right edge: in
// the label's row, or in rows of their own below it where they find no room.
//
// The height follows from the width alone, so it belongs into an area that scrolls.
#pragma once

#include <QLayout>
#include <QList>

namespace vkm {

class OptionLines final : public QLayout {
  public:
    explicit OptionLines(QWidget* parent);
    ~OptionLines() override { clear(); }

    // Lets go of all widgets.
    void clear();
    // A child of the parent: what begins a new line, or a choice of the last one.
    void add_label(QWidget* label);
    void add_choice(QWidget* choice) { addWidget(choice); }

    void addItem(QLayoutItem* item) override { places_.append({item}); }
    int count() const override { return static_cast<int>(places_.size()); }
    QLayoutItem* itemAt(int index) const override { return places_.value(index).item; }
    QLayoutItem* takeAt(int index) override;
    Qt::Orientations expandingDirections() const override { return {}; }
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    QSize sizeHint() const override;
    QSize minimumSize() const override;
    void setGeometry(const QRect& rect) override;

  private:
    struct Place {
        QLayoutItem* item = nullptr;
        bool begins_line = false;
    };
    // What stands side by side.
    struct Row {
        QLayoutItem* label = nullptr;  // none in a row below the label's
        QList<QLayoutItem*> choices;
    };
    QList<QList<Row>> lines_at(int width) const;
    QList<Row> rows_of(const Row& line, int width) const;
    int width_of(const QList<QLayoutItem*>& choices) const;
    int height_of(const Row& row, int width) const;
    void place(const Row& row, const QRect& room) const;
    int gap() const;

    QList<Place> places_;
};

}  // namespace vkm
