#include "Furniture.h"

#include "Colours.h"

#include <QPainter>

namespace plan {

namespace {

using namespace colours;

void solid(QPainter& painter, const QRect& area, const QColor& fill, int radius = 2) {
    painter.setPen(QPen(line, 1));
    painter.setBrush(fill);
    painter.drawRoundedRect(QRectF(area).adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
}

/// The strip of `area` along one of its sides.
QRect edge(const QRect& area, Side side, int depth) {
    switch (side) {
    case Side::North:
        return {area.left(), area.top(), area.width(), depth};
    case Side::South:
        return {area.left(), area.bottom() + 1 - depth, area.width(), depth};
    case Side::West:
        return {area.left(), area.top(), depth, area.height()};
    case Side::East:
        return {area.right() + 1 - depth, area.top(), depth, area.height()};
    case Side::None:
        break;
    }
    return {};
}

void drawChair(QPainter& painter, const QRect& area, Side back) {
    solid(painter, area, fabric, 6);
    solid(painter, edge(area, back, 6), fabric, 3);
}

void drawDesk(QPainter& painter, const Item& desk) {
    constexpr int size = 24;
    QRect chair(0, 0, size, size);
    chair.moveCenter(edge(desk.area, desk.side, 2).center());
    const int out = size / 2 - 4;
    switch (desk.side) {
    case Side::North:
        chair.translate(0, -out);
        break;
    case Side::South:
        chair.translate(0, out);
        break;
    case Side::West:
        chair.translate(-out, 0);
        break;
    case Side::East:
        chair.translate(out, 0);
        break;
    case Side::None:
        break;
    }
    drawChair(painter, chair, desk.side);
    solid(painter, desk.area, wood);
}

void drawSofa(QPainter& painter, const Item& sofa) {
    solid(painter, sofa.area, fabric, 6);
    solid(painter, edge(sofa.area, sofa.side, 12), fabric, 5);
    const QPoint middle = sofa.area.center();
    if (sofa.area.width() > sofa.area.height())
        painter.drawLine(middle.x(), sofa.area.top() + 1, middle.x(), sofa.area.bottom() - 12);
    else
        painter.drawLine(sofa.area.left() + 12, middle.y(), sofa.area.right() - 1, middle.y());
}

void drawPlant(QPainter& painter, const QRect& area) {
    const QRectF round(area);
    painter.setPen(QPen(line, 1));
    painter.setBrush(leaf);
    painter.save();
    painter.translate(round.center());
    for (int i = 0; i < 6; ++i) {
        painter.rotate(60);
        painter.drawEllipse(QRectF(0, -round.height() / 7, round.width() / 2, round.height() / 3.5));
    }
    painter.restore();
}

void drawStairs(QPainter& painter, const QRect& area) {
    painter.setPen(QPen(line, 1));
    for (int y = area.top(); y <= area.bottom(); y += 12)
        painter.drawLine(area.left(), y, area.right(), y);
    painter.drawLine(area.center().x(), area.top(), area.center().x(), area.bottom());
    const int x = area.left() + area.width() / 4;
    painter.setPen(QPen(text, 1));
    painter.drawLine(x, area.bottom() - 6, x, area.top() + 6);
    painter.drawLine(x, area.top() + 6, x - 5, area.top() + 14);
    painter.drawLine(x, area.top() + 6, x + 5, area.top() + 14);
}

void drawLift(QPainter& painter, const QRect& area) {
    solid(painter, area, metal, 0);
    painter.drawLine(area.topLeft(), area.bottomRight());
    painter.drawLine(area.topRight(), area.bottomLeft());
}

void drawRack(QPainter& painter, const QRect& area) {
    solid(painter, area, metal, 0);
    painter.drawLine(area.left(), area.top() + 8, area.right(), area.top() + 8);
}

void drawToilet(QPainter& painter, const Item& toilet) {
    const QRect cistern = edge(toilet.area, toilet.side, 12);
    painter.setPen(QPen(line, 1));
    painter.setBrush(Qt::white);
    painter.drawEllipse(QRectF(toilet.area.adjusted(3, 0, -3, -8)));
    solid(painter, cistern, Qt::white);
}

void drawHob(QPainter& painter, const QRect& area) {
    solid(painter, area, metal);
    painter.setBrush(Qt::NoBrush);
    for (const int dy : {-11, 11})
        painter.drawEllipse(QRectF(area).center() + QPointF(0, dy), 7, 7);
}

} // namespace

void drawItem(QPainter& painter, const Item& item) {
    switch (item.kind) {
    case Kind::Desk:
        drawDesk(painter, item);
        break;
    case Kind::Table:
        solid(painter, item.area, wood, 10);
        break;
    case Kind::RoundTable:
        solid(painter, item.area, wood, item.area.width() / 2);
        break;
    case Kind::Chair:
        drawChair(painter, item.area, item.side);
        break;
    case Kind::Sofa:
        drawSofa(painter, item);
        break;
    case Kind::Cabinet:
        solid(painter, item.area, metal, 0);
        break;
    case Kind::Counter:
        solid(painter, item.area, wood, 0);
        break;
    case Kind::Sink:
        solid(painter, item.area, Qt::white, 6);
        break;
    case Kind::Hob:
        drawHob(painter, item.area);
        break;
    case Kind::Rack:
        drawRack(painter, item.area);
        break;
    case Kind::Machine:
        solid(painter, item.area, metal, 3);
        break;
    case Kind::Toilet:
        drawToilet(painter, item);
        break;
    case Kind::Basin:
        solid(painter, item.area, Qt::white, 8);
        break;
    case Kind::Plant:
        drawPlant(painter, item.area);
        break;
    case Kind::Stairs:
        drawStairs(painter, item.area);
        break;
    case Kind::Lift:
        drawLift(painter, item.area);
        break;
    case Kind::Board:
        solid(painter, item.area, Qt::white, 0);
        break;
    }
}

} // namespace plan
