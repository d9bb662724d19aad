#include "platform/qt/program_icon.h"

#include <QPainter>
#include <QPainterPath>

namespace vkm {
namespace {

// All measures in 64ths of the icon's side.
constexpr int side = 64;
constexpr QRgb body = 0xff2b3440;
constexpr QRgb pin = 0xff8a94a0;
constexpr QRgb arrow = 0xff5fd47a;

void draw_chip(QPainter& painter) {
    painter.setBrush(QColor(pin));
    for (int i = 0; i < 4; ++i)
        for (const int left : {4, 52}) painter.drawRect(left, 22 + i * 9, 8, 4);
    painter.setBrush(QColor(body));
    painter.drawRoundedRect(12, 16, 40, 44, 4, 4);
}

void draw_arrow(QPainter& painter) {
    QPainterPath path(QPointF(26, 2));
    for (const QPointF corner : {QPointF(38, 2), QPointF(38, 28), QPointF(48, 28), QPointF(32, 46),
                                 QPointF(16, 28), QPointF(26, 28)})
        path.lineTo(corner);
    path.closeSubpath();
    painter.fillPath(path, QColor(arrow));
}

QPixmap draw(int pixels) {
    QPixmap picture(pixels, pixels);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.scale(static_cast<double>(pixels) / side, static_cast<double>(pixels) / side);
    draw_chip(painter);
    draw_arrow(painter);
    return picture;
}

}  // namespace

QIcon program_icon() {
    QIcon icon;
    for (const int pixels : {16, 32, 64}) icon.addPixmap(draw(pixels));
    return icon;
}

}  // namespace vkm
