// The fixed text of the page on wiring, boot firmware and in-application writing.
#pragma once

#include <string_view>

namespace vkm {

extern const std::string_view hardware_help;

}  // namespace vkm
