#pragma once

#include "model/MapBox.h"
#include "ui/floor/geometry/FloorGeometry.h"

#include <QPoint>
#include <QRect>
#include <QSize>

#include <cstdint>
#include <optional>

namespace mirovane {

/// What one frame shows of the floor, and how large: that of a window, or of a printed page. Everything that
/// draws or hits takes its zoom from here; the display settings only say what is drawn. Logical pixels are
/// those of the window, canvas pixels those of the image or page that is drawn on.
struct FloorView {
    FloorZoom zoom;
    std::int32_t LabelFontHeight = 12; ///< logical pixels
    QPoint origin;                     ///< scaled coordinates of the frame's top left corner
    QSize client;                      ///< logical pixels
    qreal ratio = 1;                   ///< canvas pixels per logical pixel

    /// A printed page. No device is left out for starting outside the frame, as a label of any length may
    /// reach in, and texts and the map are handed over as they are instead of as pixels.
    bool paper = false;
    int lineScale = 1; ///< lines are so many times as wide: a page's pixels are finer than a screen's

    /// Only devices strictly inside are shown; nothing: all of them. Normalised.
    std::optional<MapBox> within;

    bool operator==(const FloorView&) const = default;

    /// Whether a device here may be in the frame.
    bool shows(MapPoint position) const;

    /// Logical pixels of the frame.
    QPoint toFrame(MapPoint point) const { return ToWindow(point, origin, zoom.ZoomPercent); }

    /// Canvas pixels, rounded once for each edge so that neighbours meet.
    int px(std::int64_t logical) const;
    QPoint px(QPoint logical) const { return {px(logical.x()), px(logical.y())}; }
    QRect pxRect(QPoint corner, QSize size) const;
};

} // namespace mirovane
