#pragma once

#include "model/Hardware.h"
#include "ui/floor/LabelLines.h"

#include <QPoint>
#include <QSize>

#include <cstdint>
#include <functional>

namespace mirovane {

/// What a frame depends on beside the document and its display settings. A plain value; the view owns one.
struct FloorViewState {
    QPoint scroll; ///< scaled coordinates of the window's top left corner
    QSize client;  ///< logical pixels
    std::int32_t LabelFontHeight = 12;
    LabelState labels;

    /// Since the last search, or since the datafile was loaded, nothing was found: hidden devices stay
    /// hidden.
    bool FindNothingFound = true;

    std::int32_t SelectedMarker = 0;
    std::int32_t MarkingMarker = 0;
    QPoint LastPoint; ///< pointer, scaled coordinates

    bool BoxActive = false;
    MapPoint BoxStart;
    MapPoint BoxEnd;

    /// True for a device that a Live Stat job slot holds. Empty while neither Live Stat nor Live Stat Now is
    /// on.
    std::function<bool(std::int32_t recID)> liveStatHolds;
};

} // namespace mirovane
