// How to use the download board, as the operator reads it.
#pragma once

#include <string_view>

namespace vkm {

extern const std::string_view board_help_title;
extern const std::string_view board_help;

}  // namespace vkm
