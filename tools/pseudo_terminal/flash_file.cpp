#include "pseudo_terminal/flash_file.h"

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <system_error>

namespace vkm::sim {

bool save_flash(const std::string& path, std::span<const std::uint8_t> flash) {
    const std::string fresh = path + "." + std::to_string(getpid());
    std::ofstream file(fresh, std::ios::binary | std::ios::trunc);
    file.write(reinterpret_cast<const char*>(flash.data()),
               static_cast<std::streamsize>(flash.size()));
    file.close();
    std::error_code error;
    if (file) std::filesystem::rename(fresh, path, error);
    const bool saved = file && !error;
    if (!saved) std::filesystem::remove(fresh, error);
    return saved;
}

std::optional<std::vector<std::uint8_t>> load_flash(const std::string& path, std::size_t most) {
    std::error_code error;
    std::ifstream file(path, std::ios::binary);
    if (!file || std::filesystem::is_directory(path, error)) return std::nullopt;
    std::vector<char> bytes(most);
    file.read(bytes.data(), static_cast<std::streamsize>(most));
    return std::vector<std::uint8_t>(bytes.begin(), bytes.begin() + file.gcount());
}

}  // namespace vkm::sim
