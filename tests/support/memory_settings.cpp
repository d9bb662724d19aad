#include "support/memory_settings.h"

namespace vkm::test {

std::string MemorySettings::get(std::string_view section, std::string_view key,
                                std::string_view otherwise) const {
    const auto found = values.find({std::string(section), std::string(key)});
    return found == values.end() ? std::string(otherwise) : found->second;
}

void MemorySettings::save(std::string_view section, std::string_view key, std::string_view value) {
    const auto [place, is_new] = values.try_emplace({std::string(section), std::string(key)});
    if (!is_new && place->second == value) return;
    place->second = value;
    ++changes;
}

bool MemorySettings::flush() {
    ++flushes;
    if (disk_full) return false;
    if (before_flush) before_flush();
    if (values != on_disk) {
        on_disk = values;
        ++disk_writes;
    }
    if (after_flush) after_flush();
    return true;
}

void MemorySettings::preset(const std::string& section, const std::string& key,
                            const std::string& value) {
    values[{section, key}] = value;
    on_disk[{section, key}] = value;
}

std::string MemorySettings::dump() const {
    std::string text;
    for (const auto& [place, value] : values)
        text += "[" + place.first + "] " + place.second + "=" + value + "\n";
    return text;
}

}  // namespace vkm::test
