#pragma once

#include "ui/floor/map/MapTiles.h"
#include "ui/floor/paint/DevicePainter.h"
#include "ui/floor/paint/FloorCanvas.h"
#include "ui/floor/paint/FloorScene.h"
#include "ui/floor/paint/LabelSeams.h"

#include <QRect>

#include <vector>

namespace mirovane {

/// What a frame is painted from. Everything outlives the painter.
struct FloorSources {
    const CMirovaneDoc& document;
    const DisplaySettings& display;
    const CFloorIndex& index;
    CIconSet& icons;
    CMapTiles& map;
    CPhotoStore& photos;
};

/// Draws frames of the floor: map, devices, rubber-band box. Main thread.
class CFloorPainter {
public:
    explicit CFloorPainter(const FloorSources& sources);

    /// Start of a frame, before anything else is asked or drawn of it.
    void begin(const FloorViewState& state) { devices_.begin(state); }

    /// Draws the part `clip` (canvas pixels) of a frame over what the canvas holds. Canvas pixels are those
    /// of the painter. A part drawn alone equals the same part of a whole frame.
    void Draw(const FloorCanvas& canvas, QRect clip, const FloorViewState& state);

    /// The two halves of Draw: the map with the devices that are neither selected nor hovered, and what is
    /// over them.
    void drawBelow(const FloorCanvas& canvas, QRect clip, const FloorViewState& state);
    void drawTop(const FloorCanvas& canvas, QRect clip, const FloorViewState& state);

    /// Canvas pixels that the map covers, all of them opaque; empty when it is not shown.
    QRect mapRect(const FloorView& view) const;

    /// Canvas pixels that the device covered when it was drawn last; empty when it is not in sight.
    QRect painted(const CHardware& device);

    /// It was drawn in the upper half then.
    bool wasOnTop(const CHardware& device);

    /// Canvas pixels that it would cover now; empty when it is not in sight.
    QRect wouldPaint(const CHardware& device, const FloorViewState& state);

    /// What was drawn has been moved by so many canvas pixels and is shown with this state from now on.
    /// Returns what the devices cover that come into sight or leave it,
    /// and those whose lines the edge of the frame cuts or cut.
    std::vector<QRect> scroll(QPoint by, const FloorViewState& state, QRect frame);

    CLabelCache& labels() { return devices_.labels(); }

private:
    void drawMap(QPainter& painter, QRect clip, const FloorView& view);
    void noteLabelsBelow(QRect clip, const FloorViewState& state);
    void drawOne(const FloorCanvas& canvas, QRect clip, const CHardware& device, bool onTop);
    void drawBox(QPainter& painter, const MapBox& box, const FloorView& view);

    FloorSources sources_;
    CFloorScene scene_;
    CDevicePainter devices_;
    CLabelSeams seams_;
    QPoint moved_; ///< by scrolling, since the places that are kept were noted
};

} // namespace mirovane
