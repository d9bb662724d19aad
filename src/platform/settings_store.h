// The per-user store of text values by section and key.
#pragma once

#include <string>
#include <string_view>

namespace vkm {

class SettingsStore {
  public:
    virtual ~SettingsStore() = default;

    // The stored text, or the default when the key is absent.
    virtual std::string get(std::string_view section, std::string_view key,
                            std::string_view otherwise) const = 0;

    // Takes the value; flush() makes it outlive a crash. A value that is
    // already stored costs nothing.
    virtual void save(std::string_view section, std::string_view key, std::string_view value) = 0;

    // Writes what was saved to disk, whole or not at all. False when that fails, as on a
    // full disk; it goes out with a later flush then.
    virtual bool flush() = 0;
};

}  // namespace vkm
