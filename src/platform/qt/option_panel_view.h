// The option panel as widgets: lines in the order of its record's List, each with
// its label at the left and its choices at the right edge, so that the choices
// of all lines stand in columns.
#pragma once

#include <QLabel>
#include <QWidget>
#include <vector>

#include "screen/control.h"

namespace vkm {

class OptionLines;

// A label that asks for one line, and breaks it where that finds no room.
class OptionLabel final : public QLabel {
  public:
    OptionLabel();
    QSize sizeHint() const override;
};

class OptionPanelView final : public QWidget {
  public:
    OptionPanelView();

    // Lays out the children that the list names: an entry without a parent begins
    // a line, the entries that name it as their parent stand beside it. The
    // tabulator goes through them as they stand.
    void set_lines(const std::vector<Entry>& list);

  private:
    OptionLines* lines_;
};

}  // namespace vkm
