#pragma once

#include "model/records/Hardware.h"

#include <algorithm>
#include <cstdint>

namespace mirovane {

// Map coordinates are pixels of the floor-map bitmap at 100 %, as a device's Position holds them; scaled ones
// are map times ZoomPercent / 100, truncated toward zero. Positions come from files that other stations wrote
// and may be anything. Every result is computed in 64 bits and stops at +-coordinateLimit, far outside any
// window, so that adding a size to it cannot overflow.

constexpr std::int32_t coordinateLimit = 1 << 29;

/// Zoom percentages that are accepted: settings outside are treated as the nearest bound.
constexpr std::int32_t smallestZoom = 1;
constexpr std::int32_t largestZoom = 10000;

constexpr std::int32_t withinLimit(std::int64_t value) {
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(value, -coordinateLimit, coordinateLimit));
}

/// value * percent / 100, truncated toward zero.
constexpr std::int32_t scaled(std::int32_t value, std::int32_t percent) {
    return withinLimit(std::int64_t{value} * percent / 100);
}

/// value * 100 / percent, truncated toward zero; a percent below 1 counts as 1.
constexpr std::int32_t unscaled(std::int32_t value, std::int32_t percent) {
    return withinLimit(std::int64_t{value} * 100 / std::max(percent, smallestZoom));
}

constexpr MapPoint scaled(MapPoint point, std::int32_t percent) {
    return {scaled(point.x, percent), scaled(point.y, percent)};
}

constexpr MapPoint unscaled(MapPoint point, std::int32_t percent) {
    return {unscaled(point.x, percent), unscaled(point.y, percent)};
}

/// Width and height in whole pixels, of whatever coordinates.
struct PixelSize {
    std::int32_t width = 0;
    std::int32_t height = 0;

    bool operator==(const PixelSize&) const = default;
};

constexpr PixelSize scaled(PixelSize size, std::int32_t percent) {
    return {scaled(size.width, percent), scaled(size.height, percent)};
}

} // namespace mirovane
