// A path taken apart. Both separators count, so that paths remembered on any
// system work.
#pragma once

#include <string>
#include <string_view>

namespace vkm {

bool ends_in_separator(std::string_view path);

// The folder, without a separator at its end unless that is all of it; empty
// when the path names none.
std::string folder_of(std::string_view path);

// What stands behind the last separator.
std::string name_of(std::string_view path);

}  // namespace vkm
