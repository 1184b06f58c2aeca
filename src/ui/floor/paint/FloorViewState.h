#pragma once

#include "model/FindState.h"
#include "model/MapBox.h"
#include "model/records/Hardware.h"
#include "ui/floor/geometry/FloorView.h"
#include "ui/floor/paint/LabelLines.h"

#include <QPoint>
#include <QSize>

#include <cstdint>
#include <optional>
#include <vector>

namespace mirovane {

/// What shows on the floor of the gesture that the mouse is making.
struct GestureState {
    bool LabelsShown = true; ///< off while the button is down: selected devices go without labels
    std::int32_t MarkingMarker = 0;
    QPoint LastPoint;          ///< pointer, scaled coordinates
    std::optional<MapBox> box; ///< the rubber-band box
};

/// What a frame depends on beside the document and its display settings. A plain value; the view owns one.
struct FloorViewState {
    FloorView view;
    bool ReminderPhase = false;      ///< flips with every reminder check
    std::int32_t SelectedMarker = 0; ///< the Location Marker clicked, or whose area holds the pointer
    FindState find;
    GestureState gesture;

    /// Record IDs of the devices that Live Stat's job slots hold, in order. Empty while neither Live Stat nor
    /// Live Stat Now is on.
    std::vector<std::int32_t> liveStatHolds;

    LabelState labels() const { return {gesture.LabelsShown, ReminderPhase, find}; }
};

} // namespace mirovane
