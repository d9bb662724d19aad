// Everything that the headers of the seam promise, asked of its realisation on Qt
// in real time, over a pseudo-terminal and on the disk.
#include <QFile>
#include <QTemporaryDir>
#include <QTimer>
#include <deque>
#include <memory>

#include "contract_platform.h"
#include "platform/qt/port_registry.h"
#include "platform/qt/qt_event_loop.h"
#include "platform/qt/qt_files.h"
#include "platform/qt/qt_serial_port.h"
#include "platform/qt/qt_settings_store.h"
#include "qt_application.h"
#include "qt_pseudo_terminal.h"

namespace vkm::test {
namespace {

constexpr int terminal_number = 3;
constexpr int number_without_device = 9;

class QtContractWorld {
  public:
    QtContractWorld() {
        ports_.use(terminal_number, terminal_.path());
        ports_.use(number_without_device, "");
        port_.set_port_number(terminal_number);
        loop_.draw = [] {};
        loop_.run_due = [] {};
        loop_.hand_in = [this] {
            if (acts_.empty()) return false;
            const auto act = std::move(acts_.front());
            acts_.pop_front();
            act();
            return true;
        };
    }

    EventLoop& loop() { return loop_; }
    void after(Microseconds delay, std::function<void()> action) {
        QTimer::singleShot(std::chrono::ceil<Milliseconds>(delay), &context_,
                           [this, action] { acts_.push_back(action); });
    }
    SerialPort& port() { return port_; }
    int missing_number() { return number_without_device; }
    void far_end_sends(std::vector<std::uint8_t> bytes) { terminal_.send(bytes); }
    std::vector<std::uint8_t> far_end_heard() { return terminal_.heard(); }
    void pull_plug() { terminal_.pull_plug(); }

    SettingsStore& settings() { return *settings_; }
    // What lies on the disk at this moment is all that the next start gets.
    void crash() {
        const QString left = folder_.filePath("left behind.ini");
        QFile::remove(left);
        QFile::copy(folder_.filePath(ini_), left);
        settings_.reset();
        QFile::remove(folder_.filePath(ini_));
        QFile::rename(left, folder_.filePath(ini_));
        settings_ = store(ini_);
    }
    // With a file in the place of its folder nobody can write there, root neither.
    void refuse_writing(bool refused) {
        const QString place = folder_.filePath("store");
        const QString aside = folder_.filePath("store aside");
        QDir disk(folder_.path());
        if (refused) {
            ASSERT_TRUE(disk.rename(place, aside));
            ASSERT_TRUE(QFile(place).open(QIODevice::WriteOnly));
        } else {
            ASSERT_TRUE(QFile::remove(place));
            ASSERT_TRUE(disk.rename(aside, place));
        }
    }
    Files& files() { return files_; }
    std::string folder() { return path("files"); }

  private:
    static constexpr const char* ini_ = "store/settings.ini";

    std::string path(const char* name) { return folder_.filePath(name).toStdString(); }
    std::unique_ptr<QtSettingsStore> store(const char* name) {
        return std::make_unique<QtSettingsStore>(path(name));
    }

    QApplication& application_ = application();
    QTemporaryDir folder_;
    bool made_ = QDir(folder_.path()).mkdir("files") && QDir(folder_.path()).mkdir("store");
    PseudoTerminal terminal_{path("terminal")};
    QtSettingsStore own_settings_{path("ports.ini")};
    PortRegistry ports_{own_settings_};
    QtSerialPort port_{ports_};
    QtEventLoop loop_{port_};
    QObject context_;
    std::deque<std::function<void()>> acts_;
    std::unique_ptr<QtSettingsStore> settings_ = store(ini_);
    QtFiles files_;
};

INSTANTIATE_TYPED_TEST_SUITE_P(Qt, LineContract, QtContractWorld);
INSTANTIATE_TYPED_TEST_SUITE_P(Qt, SettingsContract, QtContractWorld);
INSTANTIATE_TYPED_TEST_SUITE_P(Qt, FilesContract, QtContractWorld);

}  // namespace
}  // namespace vkm::test
