#include "support/virtual_platform.h"

#include <gtest/gtest.h>

namespace vkm::test {

void VirtualPlatform::check() {
    for (const std::string& violation : take_violations()) ADD_FAILURE() << violation;
}

}  // namespace vkm::test
