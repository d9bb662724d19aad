// The robot's command line.
#pragma once

#include <QSize>
#include <QStringList>

#include "platform/qt/tool.h"

namespace vkm::robot {

struct Arguments {
    ToolChoices choices;
    QSize size;  // of the window; empty: the stored one
};

// Throws a Refusal that names what is wrong.
Arguments read_arguments(const QStringList& arguments);

}  // namespace vkm::robot
