// A settings store in memory that knows what a crash would leave.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <utility>

#include "platform/settings_store.h"

namespace vkm::test {

class MemorySettings final : public SettingsStore {
  public:
    using Values = std::map<std::pair<std::string, std::string>, std::string>;

    // ---- the seam -----------------------------------------------------------
    std::string get(std::string_view section, std::string_view key,
                    std::string_view otherwise) const override;
    void save(std::string_view section, std::string_view key, std::string_view value) override;
    bool flush() override;

    // ---- the test's side ------------------------------------------------------

    // As if the value stood in the store since long ago.
    void preset(const std::string& section, const std::string& key, const std::string& value);
    // What was not flushed is gone.
    void crash() { values = on_disk; }
    // One "[section] key=value" a line, in order.
    std::string dump() const;

    // Run at each flush(), before anything is on the disk and when all of it is. One
    // that throws is a crash there.
    std::function<void()> before_flush;
    std::function<void()> after_flush;

    bool disk_full = false;  // flush() fails

    Values values;
    Values on_disk;
    int flushes = 0;      // calls of flush()
    int disk_writes = 0;  // those that had something to write
    int changes = 0;      // calls of save() that changed a value
};

}  // namespace vkm::test
