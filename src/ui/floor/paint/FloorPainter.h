#pragma once

#include "ui/floor/map/MapTiles.h"
#include "ui/floor/paint/DevicePainter.h"
#include "ui/floor/paint/FloorScene.h"

#include <QImage>
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

    /// Draws the part `clip` (canvas pixels) of a frame. The canvas is the client area times the device pixel
    /// ratio, RGB32, with a ratio of 1 of its own. A part drawn alone equals the same part of a whole frame.
    void Draw(QImage& canvas, QRect clip, const FloorViewState& state, qreal devicePixelRatio);

    /// Canvas pixels that the device covered when it was drawn last; empty when it is not in sight.
    QRect painted(const CHardware& device);

    /// Canvas pixels that it would cover now; empty when it is not in sight. Follows a Draw with this state.
    QRect wouldPaint(const CHardware& device, const FloorViewState& state, qreal devicePixelRatio);

    CLabelCache& labels() { return devices_.labels(); }

private:
    void drawMap(QPainter& painter, QRect clip, const FloorViewState& state, qreal devicePixelRatio);
    void drawDevices(QPainter& painter, QRect clip, const FloorViewState& state);
    void drawOne(QPainter& painter, QRect clip, const CHardware& device);
    void drawBox(QPainter& painter, const MapBox& box, const FloorViewState& state, qreal devicePixelRatio);

    FloorSources sources_;
    CFloorScene scene_;
    CDevicePainter devices_;
};

} // namespace mirovane
