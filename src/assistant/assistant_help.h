// The help of the terminal, as texReceive shows it.
#pragma once

#include <string_view>

namespace vkm {

extern const std::string_view assistant_help;

}  // namespace vkm
