#include "Glyphs.h"

#include <QPolygonF>

#include <initializer_list>

namespace icons {

namespace {

QPainterPath box(qreal x, qreal y, qreal width, qreal height, qreal radius = 0) {
    QPainterPath path;
    path.addRoundedRect(x, y, width, height, radius, radius);
    return path;
}

QPainterPath circle(qreal x, qreal y, qreal radius) {
    QPainterPath path;
    path.addEllipse(QPointF(x, y), radius, radius);
    return path;
}

QPainterPath polyline(std::initializer_list<QPointF> points) {
    QPainterPath path;
    path.addPolygon(QPolygonF(QList<QPointF>(points)));
    return path;
}

QPainterPath polygon(std::initializer_list<QPointF> points) {
    QPainterPath path = polyline(points);
    path.closeSubpath();
    return path;
}

/// Degrees count from three o'clock, against the clock.
QPainterPath arc(qreal x, qreal y, qreal radius, qreal from, qreal sweep) {
    const QRectF square(x - radius, y - radius, 2 * radius, 2 * radius);
    QPainterPath path;
    path.arcMoveTo(square, from);
    path.arcTo(square, from, sweep);
    return path;
}

/// `columns` by `rows` equal boxes whose left upper corners are `step` apart.
QPainterPath grid(QPointF corner, QSizeF cell, QPointF step, int columns, int rows) {
    QPainterPath path;
    for (int row = 0; row < rows; ++row)
        for (int column = 0; column < columns; ++column)
            path.addRect(QRectF(corner + QPointF(step.x() * column, step.y() * row), cell));
    return path;
}

/// A filled arrow along the x axis with its tip at the origin, turned and moved.
QPainterPath arrow(QPointF tip, qreal degrees) {
    QTransform place;
    place.translate(tip.x(), tip.y());
    place.rotate(degrees);
    return place.map(polygon({{0, 0}, {-4, -4}, {-4, -1}, {-8, -1}, {-8, 1}, {-4, 1}, {-4, 4}}));
}

Glyph wallJack() {
    return {"RJ45",
            {{Layer::Body, box(4, 4, 24, 24, 3)},
             {Layer::Window, polygon({{8, 23},
                                      {8, 14},
                                      {11, 14},
                                      {11, 11},
                                      {13, 11},
                                      {13, 8},
                                      {19, 8},
                                      {19, 11},
                                      {21, 11},
                                      {21, 14},
                                      {24, 14},
                                      {24, 23}})},
             {Layer::Wire, polyline({{12, 23}, {12, 19}})},
             {Layer::Wire, polyline({{16, 23}, {16, 19}})},
             {Layer::Wire, polyline({{20, 23}, {20, 19}})}}};
}

Glyph computer() {
    return {"PC",
            {{Layer::Body, box(3, 4, 8, 24, 1)},
             {Layer::Stroke, polyline({{5, 8}, {9, 8}})},
             {Layer::Stroke, polyline({{5, 12}, {9, 12}})},
             {Layer::Mark, box(6, 22, 2, 2)},
             {Layer::Body, box(14, 6, 15, 14, 1)},
             {Layer::Window, box(17, 9, 9, 8)},
             {Layer::Wire, polyline({{22, 20}, {22, 27}})},
             {Layer::Wire, polyline({{16, 27}, {28, 27}})}}};
}

Glyph printer() {
    return {"Printer",
            {{Layer::Window, box(9, 3, 14, 9)},
             {Layer::Body, box(3, 11, 26, 12, 2)},
             {Layer::Mark, box(6, 14, 3, 2)},
             {Layer::Window, box(9, 18, 14, 11)},
             {Layer::Wire, polyline({{12, 22}, {20, 22}})},
             {Layer::Wire, polyline({{12, 25}, {20, 25}})}}};
}

Glyph laptop() {
    return {"Laptop",
            {{Layer::Body, box(6, 5, 20, 15, 2)},
             {Layer::Window, box(9, 8, 14, 9)},
             {Layer::Body, polygon({{6, 20}, {26, 20}, {29, 26}, {29, 27}, {3, 27}, {3, 26}})}}};
}

Glyph networkSwitch() {
    return {"Switch",
            {{Layer::Body, box(3, 8, 26, 16, 2)},
             {Layer::Mark, grid({7, 11}, {2, 2}, {3, 0}, 3, 1)},
             {Layer::Mark, grid({7, 16}, {3, 5}, {5, 0}, 4, 1)}}};
}

Glyph router() {
    return {"Router",
            {{Layer::Body, circle(16, 16, 13)},
             {Layer::Mark, arrow({15, 16}, 0)},
             {Layer::Mark, arrow({17, 16}, 180)},
             {Layer::Mark, arrow({16, 5}, 270)},
             {Layer::Mark, arrow({16, 27}, 90)}}};
}

Glyph phone() {
    return {
        "Phone",
        {{Layer::Body, polygon({{11, 12}, {21, 12}, {28, 25}, {28, 28}, {4, 28}, {4, 25}})},
         {Layer::Body,
          polygon({{3, 12}, {3, 8}, {7, 4}, {25, 4}, {29, 8}, {29, 12}, {23, 12}, {23, 9}, {9, 9}, {9, 12}})},
         {Layer::Mark, grid({11, 15}, {2, 2}, {4, 4}, 3, 3)}}};
}

Glyph camera() {
    return {"Camera",
            {{Layer::Wire, polyline({{4, 17}, {4, 29}})},
             {Layer::Wire, polyline({{4, 24}, {11, 24}, {14, 17}})},
             {Layer::Body, polygon({{5, 4}, {28, 9}, {26, 19}, {3, 13}})},
             {Layer::Mark, circle(22, 13, 2.5)}}};
}

QPainterPath questionMark() {
    QPainterPath path = arc(16, 12.5, 4.5, 180, -240);
    path.cubicTo(QPointF(16.5, 18), QPointF(16, 18), QPointF(16, 20));
    return path;
}

Glyph unknown() {
    return {"Unknown",
            {{Layer::Body, polygon({{16, 2.5}, {29.5, 16}, {16, 29.5}, {2.5, 16}})},
             {Layer::Stroke, questionMark()},
             {Layer::Mark, box(15, 22, 2, 2.5)}}};
}

Glyph ups() {
    return {"UPS",
            {{Layer::Body, box(12, 3, 8, 4)},
             {Layer::Body, box(6, 6, 20, 23, 2)},
             {Layer::Mark, polygon({{18, 9}, {10, 18}, {15, 18}, {13, 26}, {22, 15}, {17, 15}})}}};
}

Glyph cardModule() {
    return {
        "Card",
        {{Layer::Wire, polyline({{3, 3}, {3, 29}})},
         {Layer::Body, polygon({{3, 6}, {29, 6}, {29, 21}, {25, 21}, {25, 25}, {9, 25}, {9, 21}, {3, 21}})},
         {Layer::Window, box(12, 10, 9, 8)},
         {Layer::Stroke, polyline({{13, 21}, {13, 25}})},
         {Layer::Stroke, polyline({{17, 21}, {17, 25}})},
         {Layer::Stroke, polyline({{21, 21}, {21, 25}})}}};
}

Glyph wireless() {
    return {"Wireless",
            {{Layer::Wire, arc(16, 19, 5, 35, 110)},
             {Layer::Wire, arc(16, 19, 10, 35, 110)},
             {Layer::Wire, arc(16, 19, 15, 40, 100)},
             {Layer::Body, box(4, 20, 24, 8, 2)},
             {Layer::Mark, grid({7, 23}, {2, 2}, {4, 0}, 3, 1)}}};
}

} // namespace

std::vector<Glyph> deviceGlyphs() {
    return {wallJack(), computer(), printer(), laptop(), networkSwitch(), router(),
            phone(),    camera(),   unknown(), ups(),    cardModule(),    wireless()};
}

Glyph locationMarkerGlyph() {
    QPainterPath pin = arc(16, 12, 9, -20, 220);
    pin.lineTo(16, 29);
    pin.closeSubpath();
    return {"LocationMarker", {{Layer::Body, pin}, {Layer::Stroke, circle(16, 12, 3)}}};
}

Sign tick() {
    const QPainterPath line = polyline({{20.5, 25.5}, {23.5, 28.5}, {29, 21.5}});
    return {line,
            polygon({{20.5, 25.5}, {23.5, 28.5}, {29, 21.5}, {32, 21.5}, {32, 32}, {18, 32}, {18, 25.5}})};
}

Sign cross() {
    QPainterPath lines = polyline({{21.5, 21.5}, {29, 29}});
    lines.addPath(polyline({{29, 21.5}, {21.5, 29}}));
    return {lines, polygon({{29, 21.5}, {32, 21.5}, {32, 32}, {21.5, 32}, {21.5, 29}})};
}

} // namespace icons
