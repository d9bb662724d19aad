#include "platform/qt/qt_sounder.h"

#include <QApplication>

namespace vkm {

void QtSounder::beep() {
    ++beeps_;
    QApplication::beep();
}

}  // namespace vkm
