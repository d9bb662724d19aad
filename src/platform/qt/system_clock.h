// The clock on the wall.
#pragma once

#include "platform/event_loop.h"

namespace vkm {

class SystemClock final : public WallClock {
  public:
    std::int64_t seconds() const override;
    std::string time_of_day() const override;
};

}  // namespace vkm
