#pragma once

namespace vkm {

class Sounder {
  public:
    virtual ~Sounder() = default;

    // One short sound. Returns at once.
    virtual void beep() = 0;
};

}  // namespace vkm
