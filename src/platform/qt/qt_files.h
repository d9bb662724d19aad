// Files on the disk of this machine.
#pragma once

#include "platform/files.h"

namespace vkm {

class QtFiles final : public Files {
  public:
    // With a path: the folder taken as the program's own.
    explicit QtFiles(std::string program_folder = {});

    bool exists(std::string_view path) const override;
    std::unique_ptr<FileReader> open(std::string_view path) override;
    bool replace(std::string_view path, std::span<const std::uint8_t> bytes) override;
    std::optional<FileStamp> stamp(std::string_view path) const override;
    bool make_folder(std::string_view path) override;
    std::string program_folder() const override { return program_folder_; }

  private:
    std::string program_folder_;
};

}  // namespace vkm
