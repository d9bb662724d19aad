// The one application object that Qt wants, for tests that need Qt.
#pragma once

#include <QApplication>
#include <QStandardPaths>

namespace vkm::test {

inline QApplication& application() {
    static int count = 1;
    static char name[] = "vkm_test";
    static char* arguments[] = {name, nullptr};
    // Never destroyed: at the end of the program the toolkit's own globals may be
    // gone before it.
    static QApplication& the_one = *new QApplication(count, arguments);
    QStandardPaths::setTestModeEnabled(true);
    return the_one;
}

}  // namespace vkm::test
