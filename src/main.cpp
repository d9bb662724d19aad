// The tool as people start it. It takes no command line.

#include <QApplication>

#include "platform/qt/tool.h"

int main(int count, char** arguments) {
    count = 1;
    QApplication application(count, arguments);
    QApplication::setApplicationDisplayName(QStringLiteral("VKM ISP"));
    vkm::Tool tool;
    tool.run();
    return 0;
}
