#include "ui/floor/geometry/ZoomSteps.h"

#include "ui/floor/geometry/FloorGeometry.h"
#include "ui/floor/geometry/FontBands.h"

#include <algorithm>
#include <cmath>

namespace mirovane {

namespace {

std::int32_t withinZoom(std::int64_t percent) {
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(percent, smallestCommandZoom, largestZoom));
}

/// `offset` is nothing where the labels keep the height that they have.
void setFontHeight(ZoomState& state, std::optional<std::int32_t> offset) {
    if (offset)
        state.LabelFontHeight = labelFontHeight(state.ZoomFontScale, *offset);
}

/// Changes those of the two percentages that the commands are to change.
template <typename Change>
ZoomState changed(ZoomState state, const Change& change) {
    if (state.ZoomFloormap)
        state.ZoomPercent = change(state.ZoomPercent);
    if (state.ZoomDevices)
        state.ZoomDevicesPercent = change(state.ZoomDevicesPercent);
    setFontHeight(state, fontOffsetA(state.ZoomDevicesPercent));
    return state;
}

/// A percentage that is below already, out of a settings file, is left alone.
std::int32_t stepped(std::int32_t percent, std::int32_t by) {
    return by < 0 && percent <= smallestCommandZoom ? percent : withinZoom(std::int64_t{percent} + by);
}

ZoomState zoomedTo(ZoomState state, std::int32_t percent, std::int32_t fontOffset) {
    state = changed(state, [percent](std::int32_t) { return percent; });
    setFontHeight(state, fontOffset);
    return state;
}

std::int32_t fitting(int client, int map) {
    return withinZoom((std::int64_t{client} - map) * 100 / map + 100);
}

ZoomState fitted(ZoomState state, bool toWidth, QSize client, QSize map) {
    if (map.isEmpty() || client.isEmpty())
        return state;
    state.ZoomPercent =
        toWidth ? fitting(client.width(), map.width()) : fitting(client.height(), map.height());
    setFontHeight(state, toWidth ? fontOffsetA(state.ZoomPercent) : fontOffsetB(state.ZoomPercent));
    return state;
}

} // namespace

ZoomState zoomStateOf(const DisplaySettings& display, std::int32_t LabelFontHeight) {
    return {display.ZoomPercent, display.ZoomDevicesPercent, display.ZoomFontScale,
            LabelFontHeight,     display.ZoomFloormap,       display.ZoomDevices};
}

ZoomState zoomed(ZoomState before, ZoomCommand command, QSize client, QSize map) {
    switch (command) {
    case ZoomCommand::In:
        return changed(before, [](std::int32_t percent) { return stepped(percent, 5); });
    case ZoomCommand::Out:
        return changed(before, [](std::int32_t percent) { return stepped(percent, -5); });
    case ZoomCommand::To25:
        return zoomedTo(before, 25, 2);
    case ZoomCommand::To50:
        return zoomedTo(before, 50, 5);
    case ZoomCommand::To100:
        return zoomedTo(before, 100, 12);
    case ZoomCommand::To200:
        return zoomedTo(before, 200, 14);
    case ZoomCommand::To300:
        return zoomedTo(before, 300, 16);
    case ZoomCommand::FitWidth:
        return fitted(before, true, client, map);
    case ZoomCommand::FitHeight:
        return fitted(before, false, client, map);
    case ZoomCommand::FitAll:
        return fitted(before, client.width() < client.height(), client, map);
    }
    return before;
}

ZoomState zoomedByNotch(ZoomState before, bool in) {
    return changed(
        before,
        [in](std::int32_t percent) {
            const std::int32_t step = std::max(5, percent / (in ? 50 : 55) * 5);
            return stepped(percent, in ? step : -step);
        });
}

ZoomState zoomedBy(ZoomState before, double factor) {
    return changed(
        before,
        [factor](std::int32_t percent) {
            return withinZoom(std::lround(std::clamp(percent * factor, 0.0, double{largestZoom})));
        });
}

ZoomState customZoomed(ZoomState before, std::int32_t ZoomPercent, std::int32_t ZoomDevicesPercent,
                       std::int32_t ZoomFontScale) {
    before.ZoomPercent = withinZoom(ZoomPercent);
    before.ZoomDevicesPercent = withinZoom(ZoomDevicesPercent);
    before.ZoomFontScale = ZoomFontScale;
    return withStoredFontHeight(before);
}

ZoomState withStoredFontHeight(ZoomState state) {
    setFontHeight(state, fontOffsetA(state.ZoomPercent).value_or(largestFontOffset));
    return state;
}

QPoint originAround(QPoint windowPoint, QPoint origin, std::int32_t percentBefore,
                    std::int32_t percentAfter) {
    const auto along = [&](int point, int start) {
        const double at = (double{1} * start + point) * percentAfter / std::max(percentBefore, smallestZoom);
        return static_cast<int>(std::clamp<double>(std::round(at - point), 0, coordinateLimit));
    };
    return {along(windowPoint.x(), origin.x()), along(windowPoint.y(), origin.y())};
}

} // namespace mirovane
