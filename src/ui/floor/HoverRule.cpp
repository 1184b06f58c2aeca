#include "ui/floor/HoverRule.h"

#include "ui/floor/MarkedArea.h"

#include <vector>

namespace mirovane {

namespace {

/// Map coordinates of every device that could be hit at this point, rounded outwards.
FloorIndex::Area reach(const IconSizes& icons, QPoint scaledPoint, FloorZoom zoom) {
    const QSize size = scaled(icons.largest(), zoom.ZoomDevicesPercent);
    const auto mapFloor = [&zoom](std::int64_t value) {
        return value * 100 / zoom.ZoomPercent - 1;
    };
    const auto mapCeiling = [&zoom](std::int64_t value) {
        return value * 100 / zoom.ZoomPercent + 100 / zoom.ZoomPercent + 2;
    };
    return {mapFloor(std::int64_t{scaledPoint.x()} - size.width()),
            mapFloor(std::int64_t{scaledPoint.y()} - size.height()), mapCeiling(scaledPoint.x()),
            mapCeiling(scaledPoint.y())};
}

std::int32_t markerAround(const FloorIndex& index, QPoint scaledPoint, std::int32_t ZoomPercent) {
    std::int64_t best = worstAreaScore;
    std::int32_t winner = 0;
    FloorIndex::Devices markers(index.markers().begin(), index.markers().end());
    index.inListOrder(markers);
    for (auto marker = markers.rbegin(); marker != markers.rend(); ++marker) {
        if ((*marker)->ToJack.empty())
            continue;
        const auto score = markedAreaScore(parseMarkedArea((*marker)->ToJack), scaledPoint, ZoomPercent);
        if (score && *score < best) {
            best = *score;
            winner = (*marker)->RecID;
        }
    }
    return winner;
}

} // namespace

const CHardware* topmostAt(const CMirovaneDoc& document, const FloorIndex& index, const IconSizes& icons,
                           QPoint scaledPoint) {
    const FloorZoom zoom = floorZoom(document.display());
    const CHardware* top = nullptr;
    for (const CHardware* device : index.devicesIn(reach(icons, scaledPoint, zoom))) {
        if (!document.display().typeVisible(device->Type) ||
            !hits(device->Position, icons.of(device->Type), scaledPoint, zoom))
            continue;
        if (!top || index.laterInList(*device, *top))
            top = device;
    }
    return top;
}

Hover hoverAt(const CMirovaneDoc& document, const FloorIndex& index, const IconSizes& icons,
              QPoint scaledPoint, bool synthetic) {
    Hover hover;
    hover.shown = topmostAt(document, index, icons, scaledPoint);
    const CHardware* selected = synthetic ? nullptr : index.lastSelected();
    if (selected && (!hover.shown || hover.shown == selected || index.laterInList(*selected, *hover.shown))) {
        hover.shown = selected;
        hover.selectedSeen = true;
        return hover;
    }
    hover.SelectedMarker = markerAround(index, scaledPoint, floorZoom(document.display()).ZoomPercent);
    return hover;
}

bool showOnly(CMirovaneDoc& document, const FloorIndex& index, const CHardware* shown) {
    std::vector<const CHardware*> others;
    for (const CHardware* device : index.hovered()) {
        if (device != shown)
            others.push_back(device);
    }
    for (const CHardware* device : others)
        document.setShowAll(*device, false);
    const bool gained = shown && !shown->ShowAll;
    if (gained)
        document.setShowAll(*shown, true);
    return gained || !others.empty();
}

} // namespace mirovane
