// What a simulated memory holds, as a plain binary file.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace vkm::sim {

// A reader never finds half a file. False when it can't be written.
bool save_flash(const std::string& path, std::span<const std::uint8_t> flash);

// At most `most` bytes of the file; nothing when it can't be read.
std::optional<std::vector<std::uint8_t>> load_flash(const std::string& path, std::size_t most);

}  // namespace vkm::sim
