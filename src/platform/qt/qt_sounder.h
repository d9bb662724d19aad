#pragma once

#include "platform/sounder.h"

namespace vkm {

class QtSounder final : public Sounder {
  public:
    void beep() override;

    int beeps() const { return beeps_; }  // so far

  private:
    int beeps_ = 0;
};

}  // namespace vkm
