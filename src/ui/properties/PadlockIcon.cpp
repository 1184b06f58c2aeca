#include "ui/properties/PadlockIcon.h"

#include <QPainter>
#include <QPainterPath>
#include <QPixmap>

namespace mirovane {

namespace {

constexpr int side = 16;
constexpr int mostDetail = 4; ///< drawn larger, for screens that magnify

void drawPadlock(QPainter& painter, std::optional<bool> shut, const QColor& colour) {
    const bool open = shut == false;
    painter.setPen(QPen(colour, 1.6));
    QPainterPath shackle;
    const qreal left = open ? 8.5 : 4.8;
    shackle.moveTo(left, open ? 6.5 : 8);
    shackle.arcTo(QRectF(left, 2, 6.4, 7), 180, -180);
    if (!open)
        shackle.lineTo(left + 6.4, 8);
    painter.drawPath(shackle);
    const QRectF body(open ? 2 : 3, 7.8, 10, 6.4);
    painter.setBrush(shut == true ? QBrush(colour) : QBrush(Qt::NoBrush));
    painter.drawRoundedRect(body, 1.2, 1.2);
}

} // namespace

QIcon padlockIcon(std::optional<bool> shut, const QPalette& palette) {
    const bool quiet = shut == false;
    const QColor colour = palette.color(quiet ? QPalette::PlaceholderText : QPalette::WindowText);
    QPixmap picture(side * mostDetail, side * mostDetail);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(mostDetail, mostDetail);
    drawPadlock(painter, shut, colour);
    painter.end();
    return QIcon(picture);
}

} // namespace mirovane
