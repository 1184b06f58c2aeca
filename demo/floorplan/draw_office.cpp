// Draws the demo's floor map. `draw_office FILE.bmp` writes it as an 8-bit bitmap.
// Light greys and pale tints throughout: on the map the devices and their labels must be what the eye finds
// first.

#include "Plan.h"

#include <QColor>
#include <QFont>
#include <QFontInfo>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>

#include <cstdio>

namespace {

using namespace plan;

const QColor paper(0xF6, 0xF6, 0xF4);
const QColor wallInk(0x59, 0x61, 0x6B);
const QColor line(0xC3, 0xC8, 0xCC);
const QColor faint(0xDD, 0xE0, 0xE2);
const QColor text(0x8B, 0x93, 0x9B);
const QColor wood(0xF2, 0xEC, 0xE1);
const QColor fabric(0xE6, 0xEA, 0xEE);
const QColor metal(0xE9, 0xEB, 0xEC);
const QColor leaf(0xDC, 0xE8, 0xDA);
const QColor glass(0xD8, 0xE6, 0xEE);

constexpr int outerWall = 10;
constexpr int innerWall = 4;

QColor floorColour(Floor floor) {
    switch (floor) {
    case Floor::Carpet:
        return {0xFD, 0xFD, 0xFC};
    case Floor::Hall:
        return {0xF4, 0xF3, 0xEF};
    case Floor::Quiet:
        return {0xF3, 0xF7, 0xFA};
    case Floor::Kitchen:
        return {0xFA, 0xF6, 0xEC};
    case Floor::Wet:
        return {0xEF, 0xF5, 0xF5};
    case Floor::Technical:
        return {0xF3, 0xF4, 0xF5};
    }
    return Qt::white;
}

// ---- furniture

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

// ---- building

/// A strip of the given thickness with the wall's line in its middle.
QRect onWall(QPoint start, int length, Wall wall, int thickness) {
    const QPoint corner =
        start - (wall == Wall::Horizontal ? QPoint(0, thickness / 2) : QPoint(thickness / 2, 0));
    return {corner, wall == Wall::Horizontal ? QSize(length, thickness) : QSize(thickness, length)};
}

void drawWalls(QPainter& painter) {
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(wallInk, innerWall, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
    for (const Room& room : rooms())
        painter.drawRect(QRect(room.area.topLeft(), room.area.size()));
    painter.setPen(QPen(wallInk, outerWall, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
    painter.drawRect(building);
}

void drawWindow(QPainter& painter, const Window& window) {
    const QRect pane = onWall(window.start, window.length, window.wall, outerWall);
    painter.fillRect(pane, Qt::white);
    painter.setPen(QPen(wallInk, 1));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(pane.adjusted(0, 0, -1, -1));
    painter.fillRect(onWall(window.start, window.length, window.wall, 4), glass);
}

void drawDoor(QPainter& painter, const Door& door) {
    painter.fillRect(onWall(door.start, door.width, door.wall, innerWall + 2), floorColour(Floor::Hall));
    if (door.swing == 0)
        return;
    // Painted as a door in a horizontal wall, hinged at its start and opening downwards; turned and mirrored
    // into its place.
    painter.save();
    painter.translate(door.start);
    if (door.wall == Wall::Vertical)
        painter.setTransform(QTransform(0, 1, 1, 0, 0, 0), true);
    if (door.hingeAtEnd) {
        painter.translate(door.width, 0);
        painter.scale(-1, 1);
    }
    painter.scale(1, door.swing);
    painter.setPen(QPen(line, 1));
    painter.setBrush(Qt::NoBrush);
    painter.drawArc(QRectF(-door.width, -door.width, 2 * door.width, 2 * door.width), 270 * 16, 90 * 16);
    painter.fillRect(QRectF(0, 0, 3, door.width), wallInk);
    painter.restore();
}

QFont lettering(int pixels) {
    QFont font(QStringLiteral("Liberation Sans"));
    font.setPixelSize(pixels);
    font.setHintingPreference(QFont::PreferNoHinting);
    return font;
}

void drawRoomName(QPainter& painter, const Room& room) {
    QFont font = lettering(13);
    font.setLetterSpacing(QFont::AbsoluteSpacing, 1);
    painter.setFont(font);
    painter.setPen(text);
    painter.drawText(room.area.topLeft() + room.nameAt, room.name.toUpper());
}

// ---- round about

void drawScale(QPainter& painter, QPoint left) {
    constexpr int metres = 5;
    painter.setPen(QPen(text, 1));
    for (int metre = 0; metre < metres; ++metre) {
        painter.setBrush(metre % 2 == 0 ? text : paper);
        painter.drawRect(left.x() + metre * pixelsPerMetre, left.y(), pixelsPerMetre, 5);
    }
    painter.setFont(lettering(12));
    painter.drawText(left + QPoint(metres * pixelsPerMetre + 8, 7), QStringLiteral("5 m"));
}

void drawCompass(QPainter& painter, QPoint centre) {
    painter.setPen(QPen(text, 1));
    painter.setBrush(Qt::NoBrush);
    painter.drawEllipse(centre, 13, 13);
    painter.setBrush(text);
    painter.drawPolygon(QPolygon(
        {centre + QPoint(0, -11), centre + QPoint(5, 7), centre + QPoint(0, 3), centre + QPoint(-5, 7)}));
    painter.setFont(lettering(12));
    painter.drawText(centre + QPoint(-25, 5), QStringLiteral("N"));
}

QImage drawMap() {
    QImage map(mapSize, QImage::Format_RGB32);
    map.fill(paper);
    QPainter painter(&map);
    for (const Room& room : rooms())
        painter.fillRect(room.area, floorColour(room.floor));
    painter.setRenderHint(QPainter::Antialiasing);
    for (const Item& item : furniture())
        drawItem(painter, item);
    painter.setRenderHint(QPainter::Antialiasing, false);
    drawWalls(painter);
    for (const Window& window : windows())
        drawWindow(painter, window);
    painter.setRenderHint(QPainter::Antialiasing);
    for (const Door& door : doors())
        drawDoor(painter, door);
    for (const Room& room : rooms())
        drawRoomName(painter, room);
    drawScale(painter, {building.left(), building.bottom() + 22});
    drawCompass(painter, {building.right() - 14, 24});
    painter.setFont(lettering(15));
    painter.setPen(text);
    painter.drawText(QPoint(building.left() - 4, 30), QStringLiteral("Quillbrook, second floor"));
    return map;
}

/// The colours that are painted and, for the smooth edges, what lies between each of them and the ink beside
/// it.
QList<QRgb> palette() {
    QList<QRgb> colours;
    const auto add = [&](const QColor& colour) {
        if (!colours.contains(colour.rgb()))
            colours.append(colour.rgb());
    };
    const auto mix = [](const QColor& a, const QColor& b, int share, int whole) {
        const auto part = [&](int x, int y) {
            return (x * (whole - share) + y * share) / whole;
        };
        return QColor(part(a.red(), b.red()), part(a.green(), b.green()), part(a.blue(), b.blue()));
    };
    QList<QColor> grounds = {paper, Qt::white, wood, fabric, metal, leaf, glass};
    for (const Floor floor :
         {Floor::Carpet, Floor::Hall, Floor::Quiet, Floor::Kitchen, Floor::Wet, Floor::Technical})
        grounds.append(floorColour(floor));
    for (const QColor& ground : grounds) {
        for (int share = 0; share <= 8; ++share)
            add(mix(ground, text, share, 8));
        for (int share = 1; share <= 4; ++share)
            add(mix(ground, line, share, 4));
        for (int share = 1; share <= 4; ++share)
            add(mix(ground, wallInk, share, 4));
    }
    return colours;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2 || argv[1][0] == '-') {
        std::fprintf(stderr, "usage: draw_office FILE.bmp\n");
        return 2;
    }
    const QString path = QString::fromLocal8Bit(argv[1]);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);

    if (!QFontInfo(lettering(13)).exactMatch()) {
        std::fprintf(stderr,
                     "draw_office: the font Liberation Sans is not installed (Debian: fonts-liberation)\n");
        return 1;
    }

    const QList<QRgb> colours = palette();
    Q_ASSERT(colours.size() <= 256);
    QImage map =
        drawMap().convertToFormat(QImage::Format_Indexed8, colours, Qt::ThresholdDither | Qt::AvoidDither);
    map.setDotsPerMeterX(3780);
    map.setDotsPerMeterY(3780);
    if (!map.save(path, "BMP")) {
        std::fprintf(stderr, "draw_office: cannot write %s\n", argv[1]);
        return 1;
    }
    return 0;
}
