#pragma once

#include "ui/floor/map/MapTiles.h"
#include "ui/floor/paint/DevicePainter.h"
#include "ui/floor/paint/FloorScene.h"

#include <QPainter>
#include <QRect>

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

    /// Draws the part `clip` (canvas pixels) of a frame over what the canvas holds. Canvas pixels are those
    /// of the painter. A part drawn alone equals the same part of a whole frame.
    void Draw(QPainter& painter, QRect clip, const FloorViewState& state);

    /// A whole frame was drawn: what is kept of devices out of sight is dropped.
    void evictUnseen() { devices_.labels().evictUnseen(); }

    /// Canvas pixels that the device covered when it was drawn last; empty when it is not in sight.
    QRect painted(const CHardware& device);

    /// Canvas pixels that it would cover now; empty when it is not in sight. Follows a Draw with this state.
    QRect wouldPaint(const CHardware& device, const FloorViewState& state);

    CLabelCache& labels() { return devices_.labels(); }

private:
    void drawMap(QPainter& painter, QRect clip, const FloorView& view);
    void drawDevices(QPainter& painter, QRect clip, const FloorViewState& state);
    void drawOne(QPainter& painter, QRect clip, const CHardware& device);
    void drawBox(QPainter& painter, const MapBox& box, const FloorView& view);

    FloorSources sources_;
    CFloorScene scene_;
    CDevicePainter devices_;
};

} // namespace mirovane
