// A scrolled region that asks for as much room as its content needs, and follows
// when that changes. Where it gets less, it scrolls up and down.
#pragma once

#include <QScrollArea>

namespace vkm {

class FittingArea final : public QScrollArea {
  public:
    // `fewest_lines` of text high at the least.
    FittingArea(QWidget* content, int fewest_lines);
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    int wanted_width() const;
    int height_of(const QSize& asked) const;
    bool scrolls() const;
    void fit();

    int fewest_lines_;
};

}  // namespace vkm
