#pragma once

#include "ui/floor/DevicePainter.h"
#include "ui/floor/FloorScene.h"
#include "ui/floor/MapTiles.h"

#include <QImage>
#include <QPainter>
#include <QRect>

namespace mirovane {

/// What a frame is painted from. Everything outlives the painter.
struct FloorSources {
    const CMirovaneDoc& document;
    const FloorIndex& index;
    IconSet& icons;
    MapTiles& map;
    PhotoStore& photos;
};

/// Draws frames of the floor: map, devices, rubber-band box. Main thread.
class FloorPainter {
public:
    explicit FloorPainter(const FloorSources& sources);

    /// Draws the part `clip` (canvas pixels) of a frame. The canvas is the client area times the device pixel
    /// ratio, RGB32, with a ratio of 1 of its own. A part drawn alone equals the same part of a whole frame.
    void Draw(QImage& canvas, QRect clip, const FloorViewState& state, qreal devicePixelRatio);

    /// Canvas pixels that the device covered when it was drawn last; empty when it is not in sight.
    QRect painted(const CHardware& device);

    /// Canvas pixels that it would cover now; empty when it is not in sight. Follows a Draw with this state.
    QRect wouldPaint(const CHardware& device, const FloorViewState& state, qreal devicePixelRatio);

    LabelCache& labels() { return devices_.labels(); }

private:
    void drawMap(QPainter& painter, QRect clip, const FloorViewState& state, qreal devicePixelRatio);
    void drawDevices(QPainter& painter, QRect clip, const FloorViewState& state);
    void drawOne(QPainter& painter, QRect clip, const CHardware& device);
    void drawBox(QPainter& painter, const FloorViewState& state, qreal devicePixelRatio);

    FloorSources sources_;
    FloorScene scene_;
    DevicePainter devices_;
};

} // namespace mirovane
