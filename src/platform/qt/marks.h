// What has to be seen at a glance: the one button that stands out, the verdict
// of the last job, and the lamp of a port.
#pragma once

#include <QLabel>
#include <QPushButton>
#include <QWidget>

namespace vkm {

// A button in the accent colour of the system's palette, as long as it can be
// pressed.
class AccentButton final : public QPushButton {
  public:
    AccentButton();

  protected:
    void initStyleOption(QStyleOptionButton* option) const override;
};

// A word with a sign and a colour, large enough to be read from two metres. What
// stands behind a colon, the step that failed, goes on a smaller line below it.
class VerdictMark final : public QLabel {
  public:
    VerdictMark();
    // The number of a Job_Result; it chooses the colour.
    void set_result(int result);
    int result() const { return result_; }
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    int result_ = 0;
};

// A small round lamp: lit, or dark with a rim.
class Lamp final : public QWidget {
  public:
    explicit Lamp(bool lit);
    QSize sizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    bool lit_;
};

}  // namespace vkm
