#pragma once

#include "model/records/Hardware.h"

#include <algorithm>

namespace mirovane {

/// A rubber-band box on the floor, map coordinates. Until it is normalised its corners may be any two that
/// lie across from each other.
struct MapBox {
    MapPoint BoxStart;
    MapPoint BoxEnd;

    bool operator==(const MapBox&) const = default;

    /// The same box with `BoxEnd` as the larger corner.
    MapBox normalised() const {
        return {{std::min(BoxStart.x, BoxEnd.x), std::min(BoxStart.y, BoxEnd.y)},
                {std::max(BoxStart.x, BoxEnd.x), std::max(BoxStart.y, BoxEnd.y)}};
    }

    /// Strictly inside: a point on an edge is not. For a normalised box.
    bool holds(MapPoint point) const {
        return point.x > BoxStart.x && point.x < BoxEnd.x && point.y > BoxStart.y && point.y < BoxEnd.y;
    }
};

} // namespace mirovane
