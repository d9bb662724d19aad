// Values of the running tool that no control shows, by their names in the code.
#pragma once

#include <QJsonValue>
#include <QString>

#include "frmMain.h"

namespace vkm::robot {

// Throws a Refusal that names what doesn't exist.
QJsonValue tool_value(const frmMain& frm, const QString& name);

// A stretch of an image as hexadecimal text.
QString image_bytes(const frmMain& frm, const QString& image, int from, int count);

}  // namespace vkm::robot
