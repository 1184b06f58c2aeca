#pragma once

#include "model/Document.h"
#include "model/Settings.h"
#include "model/floor/Scale.h"
#include "model/records/Hardware.h"

#include <QPoint>
#include <QRect>
#include <QSize>

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

namespace mirovane {

// The floor's arithmetic for Qt's points. Map and scaled coordinates are those of model/floor/Scale.h; window
// coordinates are scaled ones minus the scroll position, logical pixels of the view.

struct FloorZoom {
    std::int32_t ZoomPercent = 100;
    std::int32_t ZoomDevicesPercent = 100;

    bool operator==(const FloorZoom&) const = default;
};

FloorZoom floorZoom(const DisplaySettings& display);

QSize scaled(QSize size, std::int32_t percent);
QPoint toScaled(MapPoint point, std::int32_t ZoomPercent);
QPoint ToWindow(MapPoint point, QPoint scroll, std::int32_t ZoomPercent);
MapPoint ToMap(QPoint windowPoint, QPoint scroll, std::int32_t ZoomPercent);

/// How far left of or above the window a device may start and still be drawn: its icon and labels may reach
/// inside.
constexpr std::int32_t cullMargin = 200;

/// A device that starts here can be seen in the window.
bool insideCull(QPoint scaledPosition, QPoint scroll, QSize client);

/// Where to scroll so that a point comes into the middle of the window, never below 0; nothing when it is in
/// view already, clear of the scroll bars.
std::optional<QPoint> scrollToShow(QPoint scaledPosition, QPoint scroll, QSize client);

/// How far to scroll for a pointer that drags something out of the window: a step toward it on each axis.
QPoint autoScroll(QPoint windowPoint, QSize client);

/// Both edges count: a device of size 0 is still hit at its position.
bool hits(MapPoint position, QSize iconSize, QPoint scaledPoint, FloorZoom zoom);

/// Width in pixels of direction lines and of the Live Stat ring.
int linePenWidth(const DisplaySettings& display);

struct FloorLine {
    QPoint from;
    QPoint to;

    bool operator==(const FloorLine&) const = default;
};

/// The direction lines of a device whose icon is drawn at `corner`; `drawn` is the unscaled size of its
/// bitmap.
std::vector<FloorLine> directionLines(const CHardware& device, const DisplaySettings& display, QPoint corner,
                                      QSize drawn, std::int32_t ZoomDevicesPercent);

/// Size of a user's photo beside an icon `iconWidth` wide (unscaled). Empty when the photo has no size.
QSize photoSize(QSize photo, std::int32_t iconWidth, FloorZoom zoom, std::int32_t PhotoScale);

/// Unscaled width and height of each type's icon by floor code, as layout, hits and the scroll extent see it.
class CIconSizes {
public:
    QSize of(std::int32_t type) const;
    void set(std::int32_t type, QSize size);

    /// Largest width and largest height of all types.
    QSize largest() const;

private:
    std::array<QSize, DeviceType::last> sizes_ = {};
};

/// MapExtentWidth and MapExtentHeight: the scaled map, widened by records beyond its edge. Walks the whole
/// list.
QSize scrollExtent(const CMirovaneDoc& document, QSize mapSize, const CIconSizes& icons,
                   std::int32_t ZoomPercent);

} // namespace mirovane
