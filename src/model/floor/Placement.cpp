#include "model/floor/Placement.h"

#include <algorithm>
#include <cmath>

namespace mirovane {

namespace {

std::int32_t middle(std::int32_t scroll, std::int32_t client, std::int32_t map, std::int32_t ZoomPercent) {
    if (map > 0 && client >= scaled(map, ZoomPercent))
        return map / 2;
    return withinLimit(std::int64_t{unscaled(client / 2, ZoomPercent)} + unscaled(scroll, ZoomPercent));
}

std::int32_t onFloor(std::int32_t place, std::int32_t icon, std::int32_t extent, const FloorBounds& bounds) {
    if (place < 0)
        return 0;
    const std::int64_t last = std::int64_t{extent} - scaled(icon, bounds.ZoomDevicesPercent);
    if (scaled(place, bounds.ZoomPercent) <= last)
        return place;
    // The icon's own size is taken from map coordinates, so that a device at the edge stays there at any
    // zoom.
    return std::max(0, withinLimit(std::int64_t{unscaled(extent, bounds.ZoomPercent)} - icon));
}

} // namespace

MapPoint newDevicePlace(const FloorWindow& window) {
    return {middle(window.scroll.x, window.client.width, window.map.width, window.ZoomPercent),
            middle(window.scroll.y, window.client.height, window.map.height, window.ZoomPercent)};
}

std::vector<MapPoint> gridAround(MapPoint middle, std::size_t count, PixelSize cell) {
    if (count < 2)
        return std::vector<MapPoint>(count, middle);
    const auto columns = static_cast<std::int64_t>(std::ceil(std::sqrt(static_cast<double>(count))));
    const std::int64_t rows = (static_cast<std::int64_t>(count) + columns - 1) / columns;
    const std::int64_t left = std::max<std::int64_t>(0, middle.x - (columns - 1) * cell.width / 2);
    const std::int64_t top = std::max<std::int64_t>(0, middle.y - (rows - 1) * cell.height / 2);
    std::vector<MapPoint> places;
    places.reserve(count);
    for (std::int64_t i = 0; i < static_cast<std::int64_t>(count); ++i)
        places.push_back(
            {withinLimit(left + i % columns * cell.width), withinLimit(top + i / columns * cell.height)});
    return places;
}

MapPoint onFloor(MapPoint place, PixelSize icon, const FloorBounds& bounds) {
    return {onFloor(place.x, icon.width, bounds.extent.width, bounds),
            onFloor(place.y, icon.height, bounds.extent.height, bounds)};
}

MapPoint moved(MapPoint point, MapPoint by) {
    return {withinLimit(std::int64_t{point.x} + by.x), withinLimit(std::int64_t{point.y} + by.y)};
}

MapPoint difference(MapPoint a, MapPoint b) {
    return {withinLimit(std::int64_t{a.x} - b.x), withinLimit(std::int64_t{a.y} - b.y)};
}

} // namespace mirovane
