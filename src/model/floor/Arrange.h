#pragma once

#include "model/DeviceKey.h"
#include "model/floor/Scale.h"

#include <optional>
#include <span>
#include <vector>

namespace mirovane {

/// A device's icon on the floor, map coordinates.
struct PlacedDevice {
    DeviceKey device;
    MapPoint at;
    PixelSize size;
};

struct DeviceMove {
    DeviceKey device;
    MapPoint to;

    bool operator==(const DeviceMove&) const = default;
};

/// What "Align" and "Distribute" do with the selected devices.
enum class Arrangement {
    AlignLeft,
    AlignCentre,
    AlignRight,
    AlignTop,
    AlignMiddle,
    AlignBottom,
    DistributeHorizontally, ///< the outermost stay, the centres of the others come at equal distances
    DistributeVertically,
};

constexpr bool distributes(Arrangement arrangement) {
    return arrangement >= Arrangement::DistributeHorizontally;
}

/// How many devices it takes for the arrangement to change anything.
std::size_t fewestFor(Arrangement arrangement);

/// Moves of those devices that have to move. Edges align to the outermost one, centres to the middle of all.
std::vector<DeviceMove> arrange(Arrangement arrangement, std::span<const PlacedDevice> devices);

/// A line that shows why a dragged device stopped where it is, map coordinates.
struct AlignmentLine {
    MapPoint from;
    MapPoint to;

    bool operator==(const AlignmentLine&) const = default;
};

struct Snap {
    MapPoint by; ///< what is left to the place where edges or centres meet
    std::optional<AlignmentLine> vertical;
    std::optional<AlignmentLine> horizontal;
};

/// The rectangle that is dragged meets the edges and centres of its neighbours within `reach` map pixels; of
/// several the nearest counts, on each axis by itself.
Snap snap(const PlacedDevice& dragged, std::span<const PlacedDevice> neighbours, std::int32_t reach);

/// The smallest rectangle around all; they are not empty.
PlacedDevice around(std::span<const PlacedDevice> devices);

/// Row by row from the top, each from the left. Devices whose tops are less than half of a device's height
/// apart are in one row.
std::vector<PlacedDevice> inReadingOrder(std::vector<PlacedDevice> devices);

} // namespace mirovane
