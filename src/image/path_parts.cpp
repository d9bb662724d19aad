#include "image/path_parts.h"

#include <cstddef>

namespace vkm {
namespace {

constexpr std::string_view separators = "/\\";

}  // namespace

bool ends_in_separator(std::string_view path) {
    return !path.empty() && separators.find(path.back()) != std::string_view::npos;
}

std::string folder_of(std::string_view path) {
    const std::size_t last = path.find_last_of(separators);
    if (last == std::string_view::npos) return {};
    return std::string(path.substr(0, last == 0 ? 1 : last));
}

std::string name_of(std::string_view path) {
    const std::size_t last = path.find_last_of(separators);
    return std::string(last == std::string_view::npos ? path : path.substr(last + 1));
}

}  // namespace vkm
