#pragma once

#include "model/Settings.h"

#include <QPoint>
#include <QSize>

#include <cstdint>

namespace mirovane {

/// What the zoom commands read and change. The label height is kept beside the percentages because from 800 %
/// up it depends on how the zoom was reached.
struct ZoomState {
    std::int32_t ZoomPercent = 100;
    std::int32_t ZoomDevicesPercent = 100;
    std::int32_t ZoomFontScale = 0;
    std::int32_t LabelFontHeight = 12;
    bool ZoomFloormap = true; ///< the commands change ZoomPercent
    bool ZoomDevices = true;  ///< the commands change ZoomDevicesPercent

    bool operator==(const ZoomState&) const = default;
};

ZoomState zoomStateOf(const DisplaySettings& display, std::int32_t LabelFontHeight);

enum class ZoomCommand : std::uint8_t {
    In,
    Out,
    To25,
    To50,
    To100,
    To200,
    To300,
    FitWidth,
    FitHeight,
    FitAll
};

/// No command goes below.
constexpr std::int32_t smallestCommandZoom = 5;

/// `client`: of the view, `map`: of the floor map at 100 %, both in pixels. Without a map the fit commands
/// leave everything as it is; a map that would fit at less than 5 % is shown at 5 %.
ZoomState zoomed(ZoomState before, ZoomCommand command, QSize client, QSize map);

/// One notch of the wheel: 5 % like the commands, and about a tenth from 100 % up, so that a few notches lead
/// from a building to a desk.
ZoomState zoomedByNotch(ZoomState before, bool in);

/// By a factor, as two fingers spread.
ZoomState zoomedBy(ZoomState before, double factor);

/// What the Custom Zoom dialog stores.
ZoomState customZoomed(ZoomState before, std::int32_t ZoomPercent, std::int32_t ZoomDevicesPercent,
                       std::int32_t ZoomFontScale);

/// Label height for values that were stored, with nothing to keep from before.
ZoomState withStoredFontHeight(ZoomState state);

/// Where to scroll so that the floor under this window point stays there.
QPoint originAround(QPoint windowPoint, QPoint origin, std::int32_t percentBefore, std::int32_t percentAfter);

} // namespace mirovane
