#include "platform/qt/qt_settings_store.h"

#include "platform/qt/text_mapping.h"

namespace vkm {
namespace {

const QString organisation = QStringLiteral("VKM");
const QString application = QStringLiteral("VKM ISP");

QString path_of(std::string_view section, std::string_view key) {
    return to_qt(section) + u'/' + to_qt(key);
}

// A value with commas that somebody wrote by hand, without quotes, reads as a list.
std::string text_of(const QVariant& value) {
    if (value.typeId() == QMetaType::QStringList)
        return from_qt(value.toStringList().join(QLatin1String(", ")));
    return from_qt(value.toString());
}

}  // namespace

QtSettingsStore::QtSettingsStore(const std::string& ini_file)
    : ini_file_(ini_file), store_(open()) {}

std::unique_ptr<QSettings> QtSettingsStore::open() const {
    auto store = ini_file_.empty()
                     ? std::make_unique<QSettings>(organisation, application)
                     : std::make_unique<QSettings>(to_qt(ini_file_), QSettings::IniFormat);
    store->setFallbacksEnabled(false);
    return store;
}

bool QtSettingsStore::flush() {
    store_->sync();
    if (store_->status() == QSettings::NoError) return true;
    // An error sticks to its object, also when the disk has room again. What was saved
    // belongs to all objects of the file.
    store_ = open();
    store_->sync();
    return store_->status() == QSettings::NoError;
}

std::string QtSettingsStore::get(std::string_view section, std::string_view key,
                                 std::string_view otherwise) const {
    const QVariant value = store_->value(path_of(section, key));
    return value.isValid() ? text_of(value) : std::string(otherwise);
}

void QtSettingsStore::save(std::string_view section, std::string_view key, std::string_view value) {
    const QString path = path_of(section, key);
    if (store_->contains(path) && text_of(store_->value(path)) == value) return;
    store_->setValue(path, to_qt(value));
}

std::map<std::string, std::map<std::string, std::string>> QtSettingsStore::all() const {
    std::map<std::string, std::map<std::string, std::string>> sections;
    for (const QString& path : store_->allKeys()) {
        const auto slash = path.indexOf(u'/');
        if (slash < 0) continue;
        sections[from_qt(path.left(slash))][from_qt(path.mid(slash + 1))] =
            text_of(store_->value(path));
    }
    return sections;
}

}  // namespace vkm
