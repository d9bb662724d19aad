// A command that can't be carried out, and why. The robot answers with it and
// goes on.
#pragma once

#include <QString>

namespace vkm::robot {

struct Refusal {
    QString why;
};

}  // namespace vkm::robot
