// Files that exist in memory alone, with the ways in which files go wrong.
#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "platform/files.h"

namespace vkm::test {

struct MemoryFile {
    std::vector<std::uint8_t> bytes;
    std::uint64_t size = 0;  // above bytes.size(): the rest reads as `rest`
    std::uint8_t rest = 0;   // so a file of a gigabyte needs no memory
    bool readable = true;    // false: it is there and can't be opened
    bool vanishes = false;   // it goes between being looked for and being opened
    std::uint64_t breaks_at = ~std::uint64_t{0};  // reading fails from there on
    std::int64_t last_modified = 0;               // seconds; counts up with each write
    int opens = 0;
    std::uint64_t bytes_read = 0;  // over all its readers
};

class MemoryFiles final : public Files {
  public:
    // ---- the test's side ------------------------------------------------------

    // Makes or replaces a file; the folders above it exist from then on.
    MemoryFile& add(const std::string& path, std::vector<std::uint8_t> bytes);
    MemoryFile& add(const std::string& path, std::string_view text);
    void add_folder(const std::string& path);
    void remove(const std::string& path) { files.erase(path); }
    // What a file holds; empty when there is none.
    std::vector<std::uint8_t> content(const std::string& path) const;

    std::map<std::string, MemoryFile> files;
    std::set<std::string> folders;
    std::string folder_of_program = "/opt/vkm";
    bool disk_full = false;  // replace() and make_folder() fail
    int open_readers = 0;    // readers that live

    // ---- the seam -----------------------------------------------------------
    bool exists(std::string_view path) const override;
    std::unique_ptr<FileReader> open(std::string_view path) override;
    bool replace(std::string_view path, std::span<const std::uint8_t> bytes) override;
    std::optional<FileStamp> stamp(std::string_view path) const override;
    bool make_folder(std::string_view path) override;
    std::string program_folder() const override { return folder_of_program; }

  private:
    std::int64_t writes_ = 0;
};

}  // namespace vkm::test
