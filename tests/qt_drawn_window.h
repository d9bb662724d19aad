// The whole tool with its window drawn, for tests that look at widgets.
#pragma once

#include <gtest/gtest.h>

#include <QKeyEvent>
#include <QMouseEvent>
#include <QTemporaryDir>

#include "platform/qt/as_drawn.h"
#include "platform/qt/tool.h"
#include "qt_application.h"
#include "waiting/waiting.h"

namespace vkm::test {

class DrawnWindow : public testing::Test {
  protected:
    DrawnWindow() {
        tool.window.show();
        settle();
    }

    void settle() {
        for (int i = 0; i < 4; ++i) process_events(tool.frm);
    }

    QWidget* widget(Control& control) { return view(control); }
    Control drawn(Control& control) {
        settle();
        return as_drawn(*view(control), control);
    }

    // A click into the middle of the widget.
    void click(QWidget* on) { click(on, on->rect().center()); }
    void click(QWidget* on, QPoint at) {
        for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
            const auto buttons = type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton;
            QMouseEvent event(type, at, on->mapToGlobal(at), Qt::LeftButton, buttons,
                              Qt::NoModifier);
            QCoreApplication::sendEvent(on, &event);
        }
    }
    void press(QWidget* on, int key, const QString& text = {}) {
        QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier, text);
        QCoreApplication::sendEvent(on, &event);
    }

    QApplication& qt = application();
    QTemporaryDir folder;
    Tool tool{{folder.filePath("settings.ini").toStdString(), {}, folder.path().toStdString()}};
    Screen& screen = tool.frm.screen;
    ScreenView& view = tool.window.controls();
};

}  // namespace vkm::test
