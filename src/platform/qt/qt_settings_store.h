// The settings store on QSettings: the platform's own per-user store, or one
// file for a run of its own. Files are replaced whole or not at all.
#pragma once

#include <QSettings>
#include <map>
#include <memory>
#include <string>

#include "platform/settings_store.h"

namespace vkm {

class QtSettingsStore final : public SettingsStore {
  public:
    // With a path: that file, which need not exist yet.
    explicit QtSettingsStore(const std::string& ini_file = {});

    std::string get(std::string_view section, std::string_view key,
                    std::string_view otherwise) const override;
    void save(std::string_view section, std::string_view key, std::string_view value) override;
    bool flush() override;

    // Everything stored: section, key, text.
    std::map<std::string, std::map<std::string, std::string>> all() const;

  private:
    std::unique_ptr<QSettings> open() const;

    std::string ini_file_;
    std::unique_ptr<QSettings> store_;
};

}  // namespace vkm
