#include "robot/command_line.h"

#include <QRegularExpression>

#include "platform/qt/text_mapping.h"
#include "robot/refusal.h"

namespace vkm::robot {
namespace {

void take_port(ToolChoices& choices, const QString& value) {
    static const QRegularExpression pattern("^(\\d{1,2})=(.+)$");
    const QRegularExpressionMatch match = pattern.match(value);
    const int number = match.captured(1).toInt();
    if (number < lowest_port_number || number > highest_port_number)
        throw Refusal{"--port takes N=DEVICE with N from 1 to 16, not " + value};
    choices.ports[number] = from_qt(match.captured(2));
}

QSize size_of(const QString& value) {
    static const QRegularExpression pattern("^(\\d{1,5})x(\\d{1,5})$");
    const QRegularExpressionMatch match = pattern.match(value);
    if (!match.hasMatch()) throw Refusal{"--size takes WxH, not " + value};
    return {match.captured(1).toInt(), match.captured(2).toInt()};
}

}  // namespace

Arguments read_arguments(const QStringList& arguments) {
    Arguments read;
    for (qsizetype i = 0; i < arguments.size(); i += 2) {
        const QString& option = arguments[i];
        if (i + 1 == arguments.size()) throw Refusal{option + " needs a value"};
        const QString& value = arguments[i + 1];
        if (option == "--settings")
            read.choices.settings_file = from_qt(value);
        else if (option == "--program-folder")
            read.choices.program_folder = from_qt(value);
        else if (option == "--port")
            take_port(read.choices, value);
        else if (option == "--size")
            read.size = size_of(value);
        else
            throw Refusal{"there is no option " + option};
    }
    return read;
}

}  // namespace vkm::robot
