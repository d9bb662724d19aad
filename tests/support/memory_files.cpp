#include "support/memory_files.h"

#include <algorithm>

namespace vkm::test {
namespace {

class MemoryReader final : public FileReader {
  public:
    MemoryReader(MemoryFiles& files, std::string path) : files_(files), path_(std::move(path)) {
        ++files_.open_readers;
    }
    ~MemoryReader() override { --files_.open_readers; }
    MemoryReader(const MemoryReader&) = delete;
    MemoryReader& operator=(const MemoryReader&) = delete;

    std::size_t read(std::span<std::uint8_t> room) override {
        // Looked up each time: the file may go while it is read.
        const auto found = files_.files.find(path_);
        if (found == files_.files.end()) return 0;
        MemoryFile& file = found->second;
        const std::uint64_t end =
            std::min(std::max<std::uint64_t>(file.bytes.size(), file.size), file.breaks_at);
        if (at_ >= end) return 0;
        const auto count =
            static_cast<std::size_t>(std::min<std::uint64_t>(room.size(), end - at_));
        const std::uint64_t held = file.bytes.size();
        const auto copied =
            static_cast<std::size_t>(at_ < held ? std::min<std::uint64_t>(count, held - at_) : 0);
        std::copy_n(file.bytes.begin() + static_cast<std::ptrdiff_t>(std::min(at_, held)), copied,
                    room.begin());
        std::fill_n(room.begin() + static_cast<std::ptrdiff_t>(copied), count - copied, file.rest);
        at_ += count;
        file.bytes_read += count;
        return count;
    }

  private:
    MemoryFiles& files_;
    std::string path_;
    std::uint64_t at_ = 0;
};

std::string folder_above(const std::string& path) {
    const auto slash = path.find_last_of('/');
    return slash == std::string::npos ? std::string() : path.substr(0, slash);
}

}  // namespace

MemoryFile& MemoryFiles::add(const std::string& path, std::vector<std::uint8_t> bytes) {
    add_folder(folder_above(path));
    MemoryFile& file = files[path];
    file = MemoryFile{};
    file.bytes = std::move(bytes);
    file.last_modified = ++writes_;
    return file;
}

MemoryFile& MemoryFiles::add(const std::string& path, std::string_view text) {
    return add(path, std::vector<std::uint8_t>(text.begin(), text.end()));
}

void MemoryFiles::add_folder(const std::string& path) {
    for (std::string folder = path; !folder.empty(); folder = folder_above(folder))
        folders.insert(folder);
}

std::vector<std::uint8_t> MemoryFiles::content(const std::string& path) const {
    const auto found = files.find(path);
    return found == files.end() ? std::vector<std::uint8_t>() : found->second.bytes;
}

bool MemoryFiles::exists(std::string_view path) const {
    return files.contains(std::string(path));
}

std::unique_ptr<FileReader> MemoryFiles::open(std::string_view path) {
    const auto found = files.find(std::string(path));
    if (found == files.end()) return nullptr;
    if (found->second.vanishes) {
        files.erase(found);
        return nullptr;
    }
    if (!found->second.readable) return nullptr;
    ++found->second.opens;
    return std::make_unique<MemoryReader>(*this, found->first);
}

bool MemoryFiles::replace(std::string_view path, std::span<const std::uint8_t> bytes) {
    const std::string name(path);
    if (disk_full || name.empty() || folders.contains(name)) return false;
    const std::string folder = folder_above(name);
    if (!folder.empty() && folder != folder_of_program && !folders.contains(folder)) return false;
    MemoryFile& file = files[name];
    file.bytes.assign(bytes.begin(), bytes.end());
    file.size = 0;
    file.last_modified = ++writes_;
    return true;
}

std::optional<FileStamp> MemoryFiles::stamp(std::string_view path) const {
    const auto found = files.find(std::string(path));
    if (found == files.end()) return std::nullopt;
    const MemoryFile& file = found->second;
    return FileStamp{std::to_string(file.last_modified),
                     std::max<std::uint64_t>(file.bytes.size(), file.size)};
}

bool MemoryFiles::make_folder(std::string_view path) {
    if (disk_full || path.empty() || files.contains(std::string(path))) return false;
    add_folder(std::string(path));
    return true;
}

}  // namespace vkm::test
