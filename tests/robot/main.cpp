// The bench robot: the tool's own window, operated by commands on standard input.

#include <QApplication>
#include <cstdio>

#include "robot/command_line.h"
#include "robot/input_lines.h"
#include "robot/refusal.h"
#include "robot/robot.h"

namespace vkm::robot {
namespace {

void write_line(const QByteArray& line) {
    std::fwrite(line.constData(), 1, static_cast<std::size_t>(line.size()), stdout);
    std::fputc('\n', stdout);
    std::fflush(stdout);
}

// As if the window had been left with this size.
void start_with(QSize size, Tool& tool) {
    tool.frm.screen.window.Width = size.width() * twips_per_pixel;
    tool.frm.screen.window.Height = size.height() * twips_per_pixel;
    tool.window.draw();
}

void run(const Arguments& arguments) {
    Tool tool(arguments.choices);
    tool.dialogs.system_dialogs = false;  // those of the system can't be reached from here
    if (!arguments.size.isEmpty()) start_with(arguments.size, tool);

    Robot robot(tool, write_line);
    tool.loop.draw = [&] {
        tool.window.draw();
        robot.turn_begins();
    };
    const Input_Lines input([&](const QByteArray& line) { robot.take_line(line); },
                            [&] { robot.take_end(); });
    tool.run();
    while (!robot.is_over()) {
        robot.turn_begins();
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
}

}  // namespace
}  // namespace vkm::robot

int main(int count, char** arguments) {
    QApplication application(count, arguments);
    try {
        vkm::robot::run(vkm::robot::read_arguments(QApplication::arguments().mid(1)));
    } catch (const vkm::robot::Refusal& refusal) {
        std::fprintf(stderr, "vkm_robot: %s\n", qPrintable(refusal.why));
        return 2;
    }
    return 0;
}
