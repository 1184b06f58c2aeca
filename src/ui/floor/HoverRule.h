#pragma once

#include "ui/floor/FloorGeometry.h"
#include "ui/floor/FloorIndex.h"

#include <QPoint>

#include <cstdint>

namespace mirovane {

/// What the pointer rests on.
struct Hover {
    const CHardware* shown = nullptr; ///< gets ShowAll; every other floor device loses it
    bool selectedSeen = false;        ///< it is shown because it is selected, wherever the pointer is
    std::int32_t SelectedMarker = 0; ///< the Location Marker whose marked area holds the pointer; 0 for none,
                                     ///< and not looked for when a selected device was seen
};

/// Topmost visible floor device under a point in scaled coordinates; null when none.
const CHardware* topmostAt(const CMirovaneDoc& document, const FloorIndex& index, const IconSizes& icons,
                           QPoint scaledPoint);

/// The rule of the pointer without a button. `synthetic`: a move made up after a click, which looks for the
/// device under the pointer only.
Hover hoverAt(const CMirovaneDoc& document, const FloorIndex& index, const IconSizes& icons,
              QPoint scaledPoint, bool synthetic);

/// Gives `shown` (may be null) ShowAll and takes it from every other floor device. True when anything
/// changed.
bool showOnly(CMirovaneDoc& document, const FloorIndex& index, const CHardware* shown);

} // namespace mirovane
