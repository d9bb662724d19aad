// How the event loop and the boxes of the drawn window behave around an
// operation that waits. Times are real here, and the machine may stand still for
// a while at any moment: a test waits for what must happen and not for a time.
#include <gtest/gtest.h>

#include <QEventLoop>
#include <QFile>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTimer>
#include <algorithm>
#include <functional>
#include <utility>

#include "platform/qt/monotonic.h"
#include "platform/qt/tool.h"
#include "qt_application.h"
#include "waiting/waiting.h"

namespace vkm::test {
namespace {

int ticks = 0;
std::function<void()> at_five_ticks;

class QtLoopTest : public testing::Test {
  protected:
    QtLoopTest() {
        ticks = 0;
        tool.dialogs.system_dialogs = false;
        tool.window.show();
        for (int i = 0; i < 4; ++i) process_events(tool.frm);
    }

    // A timer of the tool that counts, every 10 ms, and calls back once at five.
    void start_ticking(std::function<void()> at_five) {
        at_five_ticks = std::move(at_five);
        tool.frm.timers.TimerDebugDisplay.Tick = [](frmMain&) {
            if (++ticks == 5) at_five_ticks();
        };
        restart_timer(tool.frm, tool.frm.timers.TimerDebugDisplay, 10);
    }

    // The dialog knows no files until it has listed its folder, so this is tried
    // until it closes.
    void choose(QFileDialog& dialog, const QString& path) {
        auto* again = new QTimer(&dialog);
        QObject::connect(again, &QTimer::timeout, &dialog, [&dialog, path] {
            dialog.findChild<QLineEdit*>("fileNameEdit")->setText(path);
            QMetaObject::invokeMethod(&dialog, "accept");
        });
        again->start(60);
    }

    QApplication& qt = application();
    QTemporaryDir folder;
    Tool tool{{folder.filePath("settings.ini").toStdString(), {}, folder.path().toStdString()}};
};

TEST_F(QtLoopTest, AWaitEndsSoonAfterItsTime) {
    auto shortest = Instant::duration::max();
    for (int attempt = 0; attempt < 20 && shortest >= Milliseconds(200); ++attempt) {
        const Instant before = monotonic_now();
        for (int i = 0; i < 20; ++i) wait_ms(tool.frm, 5);
        shortest = std::min(shortest, monotonic_now() - before);
        EXPECT_GE(shortest, Milliseconds(100));
    }
    EXPECT_LT(shortest, Milliseconds(200));
}

TEST_F(QtLoopTest, AWaitingToolSleeps) {
    int turns = 0;
    const Instant end = monotonic_now() + Milliseconds(300);
    for (; monotonic_now() < end; ++turns) {
        restart_timer(tool.frm, tool.frm.timers.Timer7, 300);
        process_events(tool.frm, Sleep::until_something);
    }
    EXPECT_LE(turns, 60);
}

TEST_F(QtLoopTest, WhatComesInWhileAnOperationWaitsRunsInsideItsWait) {
    std::string order;
    tool.queue.push([&](frmMain& frm) {
        order += '(';
        QTimer::singleShot(5, [&] { tool.queue.push([&](frmMain&) { order += 'x'; }); });
        wait_until(frm, [&] { return order.size() == 2; });
        order += ')';
    });
    wait_until(tool.frm, [&] { return order.size() == 3; });
    EXPECT_EQ(order, "(x)");
}

// Opened by a turn that doesn't wait and by one that sleeps, with timers that run
// already and with one that only starts in there.
TEST_F(QtLoopTest, TimersTickWhileALoopOfTheToolkitIsOnTheStack) {
    for (const int delay_ms : {0, 30}) {
        for (const bool started_before : {true, false}) {
            SCOPED_TRACE(testing::Message() << delay_ms << ' ' << started_before);
            QEventLoop foreign;
            bool over = false;
            if (started_before) start_ticking([&] { foreign.quit(); });
            QTimer::singleShot(delay_ms, [&] {
                ticks = 0;
                if (!started_before) start_ticking([&] { foreign.quit(); });
                QTimer::singleShot(10'000, &foreign, &QEventLoop::quit);
                foreign.exec();
                stop_timer(tool.frm.timers.TimerDebugDisplay);
                over = true;
            });
            wait_until(tool.frm, [&] { return over; });
            EXPECT_GE(ticks, 5);
        }
    }
}

// ---- boxes -----------------------------------------------------------------------

TEST_F(QtLoopTest, TimersTickWhileABoxStands) {
    tool.dialogs.box_shown = [&](QMessageBox& box) {
        QTimer::singleShot(10'000, &box, &QDialog::reject);
        start_ticking([&box] { box.button(QMessageBox::Ok)->click(); });
    };
    tool.dialogs.show_text("    Please open file./请打开文件。    ", {});
    EXPECT_GE(ticks, 5);
}

TEST_F(QtLoopTest, ABoxShowsItsTextAndTitle) {
    QString text;
    QString title;
    QString own_title;
    tool.dialogs.box_shown = [&](QMessageBox& box) {
        text = box.text();
        (title.isEmpty() ? title : own_title) = box.windowTitle();
        QTimer::singleShot(0, &box, &QDialog::accept);
    };
    tool.dialogs.show_text("first\r\n第二行 <b>&", "Open HEX file");
    EXPECT_EQ(text, QStringLiteral("first\n第二行 <b>&"));
    EXPECT_EQ(title, QStringLiteral("Open HEX file"));
    tool.dialogs.show_text("x", {});
    EXPECT_EQ(own_title, QStringLiteral("VKM ISP"));
}

TEST_F(QtLoopTest, YesIsYesAndEverythingElseIsNo) {
    const auto answer_with = [&](QMessageBox::StandardButton button) {
        tool.dialogs.box_shown = [button](QMessageBox& box) {
            QTimer::singleShot(0, &box, [&box, button] { box.button(button)->click(); });
        };
        return tool.dialogs.ask_yes_no("Continue?", {});
    };
    EXPECT_TRUE(answer_with(QMessageBox::Yes));
    EXPECT_FALSE(answer_with(QMessageBox::No));
    bool default_is_no = false;
    tool.dialogs.box_shown = [&](QMessageBox& box) {
        default_is_no = box.defaultButton() == box.button(QMessageBox::No);
        QTimer::singleShot(0, &box, &QDialog::reject);
    };
    EXPECT_FALSE(tool.dialogs.ask_yes_no("Continue?", {})) << "Escape";
    EXPECT_TRUE(default_is_no);
}

TEST_F(QtLoopTest, ABoxIsLeftByItsDefaultWhenTheWindowCloses) {
    tool.dialogs.box_shown = [&](QMessageBox&) {
        QTimer::singleShot(10, [&] { tool.frm.screen.window.Close_Requested = true; });
    };
    EXPECT_FALSE(tool.dialogs.ask_yes_no("Continue?", {}));
    EXPECT_TRUE(tool.window.is_over());
}

TEST_F(QtLoopTest, AFileIsAskedForWithTitleFiltersAndFolder) {
    QFile file(folder.filePath("my.hex"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.close();
    QString title;
    QStringList filters;
    tool.dialogs.file_dialog_shown = [&](QFileDialog& dialog) {
        title = dialog.windowTitle();
        filters = dialog.nameFilters();
        EXPECT_EQ(dialog.directory().absolutePath(), folder.path());
        choose(dialog, folder.filePath("my.hex"));
    };
    const std::string path = tool.dialogs.ask_file_to_open(
        {"Open file ( *.hex or *.bin )",
         "(*.hex, *.bin)|*.hex;*.bin|(*.bin)|*.bin|All Files (*.*)|*.*",
         folder.path().toStdString(), ""});
    EXPECT_EQ(path, folder.filePath("my.hex").toStdString());
    EXPECT_EQ(title, QStringLiteral("Open file ( *.hex or *.bin )"));
    EXPECT_EQ(filters.size(), 3);
}

TEST_F(QtLoopTest, ACancelledFileDialogGivesNoPath) {
    tool.dialogs.file_dialog_shown = [](QFileDialog& dialog) {
        QTimer::singleShot(10, &dialog, &QDialog::reject);
    };
    EXPECT_EQ(tool.dialogs.ask_file_to_open({"t", "All Files (*.*)|*.*", "", ""}), "");
    EXPECT_EQ(tool.dialogs.ask_file_to_save({"t", "(*.bin)|*.bin", "", ""}), "");
}

TEST_F(QtLoopTest, ASavedFileGetsTheEndingOfTheFilter) {
    tool.dialogs.file_dialog_shown = [this](QFileDialog& dialog) {
        choose(dialog, folder.filePath("piece"));
    };
    EXPECT_EQ(tool.dialogs.ask_file_to_save({"Save .bin file", "(*.bin)|*.bin|All Files (*.*)|*.*",
                                             folder.path().toStdString(), ""}),
              folder.filePath("piece.bin").toStdString());
}

TEST(NameFilters, AreWrittenAsTheToolkitWants) {
    EXPECT_EQ(name_filters("(*.hex, *.bin)|*.hex;*.bin|All Files (*.*)|*.*"),
              (QStringList{"(*.hex, *.bin) (*.hex *.HEX *.bin *.BIN)", "All Files (*.*) (*)"}));
    EXPECT_EQ(name_filters("*.VKM |*.VKM"), (QStringList{"*.VKM (*.vkm *.VKM)"}));
    EXPECT_EQ(name_filters(""), QStringList());
    EXPECT_EQ(name_filters("no pattern"), QStringList());
}

}  // namespace
}  // namespace vkm::test
