#include "platform/qt/qt_files.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <algorithm>

#include "platform/qt/text_mapping.h"

namespace vkm {
namespace {

class DiskReader final : public FileReader {
  public:
    explicit DiskReader(const QString& path) : file_(path) {}
    bool open() { return file_.open(QIODevice::ReadOnly); }

    std::size_t read(std::span<std::uint8_t> room) override {
        const qint64 count =
            file_.read(reinterpret_cast<char*>(room.data()), static_cast<qint64>(room.size()));
        return static_cast<std::size_t>(std::max<qint64>(count, 0));
    }

  private:
    QFile file_;
};

}  // namespace

QtFiles::QtFiles(std::string program_folder) : program_folder_(std::move(program_folder)) {
    if (program_folder_.empty()) program_folder_ = from_qt(QCoreApplication::applicationDirPath());
    while (program_folder_.size() > 1 && program_folder_.ends_with('/')) program_folder_.pop_back();
}

bool QtFiles::exists(std::string_view path) const {
    return QFileInfo(to_qt(path)).isFile();
}

// Nothing but a file: reading from a pipe or a device might wait for ever.
std::unique_ptr<FileReader> QtFiles::open(std::string_view path) {
    if (!exists(path)) return nullptr;
    auto reader = std::make_unique<DiskReader>(to_qt(path));
    if (!reader->open()) return nullptr;
    return reader;
}

bool QtFiles::replace(std::string_view path, std::span<const std::uint8_t> bytes) {
    QSaveFile file(to_qt(path));
    if (!file.open(QIODevice::WriteOnly)) return false;
    const auto count = static_cast<qint64>(bytes.size());
    if (file.write(reinterpret_cast<const char*>(bytes.data()), count) != count) return false;
    return file.commit();
}

std::optional<FileStamp> QtFiles::stamp(std::string_view path) const {
    const QFileInfo file(to_qt(path));
    if (!file.isFile()) return std::nullopt;
    return FileStamp{from_qt(file.lastModified().toUTC().toString(Qt::ISODateWithMs)),
                     static_cast<std::uint64_t>(file.size())};
}

bool QtFiles::make_folder(std::string_view path) {
    return QDir().mkpath(to_qt(path));
}

}  // namespace vkm
