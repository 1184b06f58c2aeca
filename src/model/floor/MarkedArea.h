#pragma once

#include "model/records/Hardware.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace mirovane {

/// The corners of a Location Marker's area, from its ToJack text "x,y,x,y,...". A piece that is not a
/// number counts as 0; an x without its y is left out.
std::vector<MapPoint> parseMarkedArea(std::string_view text);

/// How near the corners of an area lie to a point that has corners in all four quadrants around it; nothing
/// when the point lies outside. The smaller, the better the area fits.
std::optional<std::int64_t> markedAreaScore(std::span<const MapPoint> area, MapPoint scaledPoint,
                                            std::int32_t ZoomPercent);

/// A score that no area may reach to be taken as the one under the pointer.
constexpr std::int64_t worstAreaScore = 65000;

} // namespace mirovane
