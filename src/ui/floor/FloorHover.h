#pragma once

#include "model/Selection.h"
#include "model/Settings.h"
#include "ui/floor/geometry/FloorIndex.h"
#include "ui/floor/geometry/FloorView.h"

#include <QPoint>

#include <cstdint>
#include <vector>

namespace mirovane {

/// What the pointer rests on.
struct Hover {
    const CHardware* shown = nullptr; ///< gets ShowAll; every other floor device loses it
    bool selectedSeen = false;        ///< it is shown because it is selected, wherever the pointer is
    std::int32_t SelectedMarker = 0; ///< the Location Marker whose marked area holds the pointer; 0 for none,
                                     ///< and not looked for when a selected device was seen
};

/// Finds what is under the pointer, and gives the device there all its labels. Points are in scaled
/// coordinates. Main thread; everything that it is made of outlives it.
class CFloorHover {
public:
    /// `view`: of the frame that the user sees; it may change at any time.
    CFloorHover(CSelection& selection, const CFloorIndex& index, const CIconSizes& icons,
                const DisplaySettings& display, const FloorView& view);

    /// The floor devices of a visible type under the point, topmost first.
    std::vector<const CHardware*> hitsAt(QPoint point) const;

    /// The rule of the pointer without a button. `synthetic`: a move made up after a click, which looks for
    /// the device under the pointer only.
    Hover at(QPoint point, bool synthetic) const;

    /// Gives `shown` (may be null) ShowAll and takes it from every other floor device.
    void showOnly(const CHardware* shown);

private:
    CFloorIndex::Area reach(QPoint point) const;
    std::int32_t markerAround(QPoint point) const;

    CSelection& selection_;
    const CFloorIndex& index_;
    const CIconSizes& icons_;
    const DisplaySettings& display_;
    const FloorView& view_;
};

} // namespace mirovane
