// Files on disk. Paths are UTF-8. Nothing here lets events run.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace vkm {

// A file opened for reading, from its beginning onward.
class FileReader {
  public:
    virtual ~FileReader() = default;

    // Fills up to `room` bytes and returns how many; 0 at the end of the file
    // and when reading fails.
    virtual std::size_t read(std::span<std::uint8_t> room) = 0;
};

// What tells a changed file from an unchanged one.
struct FileStamp {
    std::string time;        // of the last change, in ms where the disk keeps them; only to compare
    std::uint64_t size = 0;  // bytes
    bool operator==(const FileStamp&) const = default;
};

class Files {
  public:
    virtual ~Files() = default;

    // True for a file, false for a folder and for nothing at all.
    virtual bool exists(std::string_view path) const = 0;

    // Null when the path can't be opened as a file.
    virtual std::unique_ptr<FileReader> open(std::string_view path) = 0;

    // Writes a file whole, in place of an existing one. False when that fails;
    // the file before, if there was one, is then still there.
    virtual bool replace(std::string_view path, std::span<const std::uint8_t> bytes) = 0;

    // Nothing when there is no such file.
    virtual std::optional<FileStamp> stamp(std::string_view path) const = 0;

    // True when the folder stands afterwards; those above it are made too.
    virtual bool make_folder(std::string_view path) = 0;

    // The folder that the program lies in, without a separator at its end.
    virtual std::string program_folder() const = 0;
};

}  // namespace vkm
