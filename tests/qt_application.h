// The one application object that Qt wants, for tests that need Qt.
#pragma once

#include <QApplication>
#include <QStandardPaths>

namespace vkm::test {

inline QApplication& application() {
    static int count = 1;
    static char name[] = "vkm_test";
    static char* arguments[] = {name, nullptr};
    static QApplication the_one(count, arguments);
    QStandardPaths::setTestModeEnabled(true);
    return the_one;
}

}  // namespace vkm::test
