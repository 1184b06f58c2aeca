#pragma once

#include "model/floor/Scale.h"

#include <cstddef>
#include <vector>

namespace mirovane {

/// The part of the floor that the user sees.
struct FloorWindow {
    MapPoint scroll;  ///< scaled coordinates of its top left corner
    PixelSize client; ///< pixels of the screen
    PixelSize map;    ///< of the floor map at 100 %; 0: there is none
    std::int32_t ZoomPercent = 100;
};

/// Where a new device goes: the middle of the map along an axis on which all of the map is in view, otherwise
/// the middle of what is in view. Without a map the whole floor is what is in view: a middle of nothing would
/// pile all devices up in the corner.
MapPoint newDevicePlace(const FloorWindow& window);

/// Places for `count` devices at once: rows and columns around `middle`, filled row by row, `cell` apart. The
/// block is moved as far as it must be for no device to lie above or left of the floor.
std::vector<MapPoint> gridAround(MapPoint middle, std::size_t count, PixelSize cell);

/// How far a device may be moved.
struct FloorBounds {
    PixelSize extent; ///< MapExtentWidth and MapExtentHeight, scaled coordinates
    std::int32_t ZoomPercent = 100;
    std::int32_t ZoomDevicesPercent = 100;
};

/// `place`, or the nearest one on the floor for a device with an icon of this size (unscaled).
MapPoint onFloor(MapPoint place, PixelSize icon, const FloorBounds& bounds);

/// The sum of two map points or the difference between them, limited as the others.
MapPoint moved(MapPoint point, MapPoint by);
MapPoint difference(MapPoint a, MapPoint b);

} // namespace mirovane
