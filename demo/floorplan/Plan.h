#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>
#include <QString>

#include <vector>

/// The demo's office as data. All numbers are pixels of the map; 40 of them are one metre.
namespace plan {

constexpr QSize mapSize(1680, 1050);
constexpr int pixelsPerMetre = 40;

/// Inside of the outer walls.
constexpr QRect building(40, 50, 1600, 960);

enum class Floor { Carpet, Hall, Quiet, Kitchen, Wet, Technical };

/// Walls stand on the rectangle's edges; rooms that touch share one.
struct Room {
    QString name;
    QRect area;
    Floor floor;
    QPoint nameAt = {14, 26}; ///< where the name's base line starts, from the left upper corner
};

enum class Wall { Horizontal, Vertical };

/// A gap in a wall from `start` on. A leaf hangs at the start or the end of the gap and opens to the right or
/// below
/// (`swing` 1), to the left or above (-1); a swing of 0 is a gap without a leaf.
struct Door {
    QPoint start;
    int width;
    Wall wall;
    bool hingeAtEnd;
    int swing;
};

struct Window {
    QPoint start;
    int length;
    Wall wall;
};

enum class Kind {
    Desk,
    Table,
    RoundTable,
    Chair,
    Sofa,
    Cabinet,
    Counter,
    Sink,
    Hob,
    Rack,
    Machine,
    Toilet,
    Basin,
    Plant,
    Stairs,
    Lift,
    Board,
};

enum class Side { None, North, East, South, West };

/// A piece of furniture. `side` is where a desk's chair stands, or where the back of a seat is.
struct Item {
    Kind kind;
    QRect area;
    Side side = Side::None;
};

const std::vector<Room>& rooms();
const std::vector<Door>& doors();
const std::vector<Window>& windows();
const std::vector<Item>& furniture();

} // namespace plan
