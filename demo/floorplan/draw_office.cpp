// Draws the demo's floor map. `draw_office FILE.bmp` writes it as an 8-bit bitmap.
// Light greys and pale tints throughout: on the map the devices and their labels must be what the eye finds
// first.

#include "Colours.h"
#include "Furniture.h"
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
using namespace colours;

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
    QList<QRgb> mixed;
    const auto add = [&](const QColor& colour) {
        if (!mixed.contains(colour.rgb()))
            mixed.append(colour.rgb());
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
    return mixed;
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

    const QList<QRgb> table = palette();
    Q_ASSERT(table.size() <= 256);
    QImage map =
        drawMap().convertToFormat(QImage::Format_Indexed8, table, Qt::ThresholdDither | Qt::AvoidDither);
    map.setDotsPerMeterX(3780);
    map.setDotsPerMeterY(3780);
    if (!map.save(path, "BMP")) {
        std::fprintf(stderr, "draw_office: cannot write %s\n", argv[1]);
        return 1;
    }
    return 0;
}
