// Whether parameters and options are locked, as a padlock and a word.
#pragma once

#include <QLabel>
#include <QWidget>

namespace vkm {

class LockMark final : public QWidget {
  public:
    LockMark();
    void set_locked(bool locked);

  private:
    class Padlock;

    Padlock* padlock_;
    QLabel* word_;
};

}  // namespace vkm
