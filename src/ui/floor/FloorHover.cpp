#include "ui/floor/FloorHover.h"

#include "model/floor/MarkedArea.h"

#include <algorithm>

namespace mirovane {

CFloorHover::CFloorHover(CSelection& selection, const CFloorIndex& index, const CIconSizes& icons,
                         const DisplaySettings& display, const FloorView& view)
    : selection_(selection), index_(index), icons_(icons), display_(display), view_(view) {}

/// Map coordinates of every device that could be hit at this point, rounded outwards.
CFloorIndex::Area CFloorHover::reach(QPoint point) const {
    const FloorZoom& zoom = view_.zoom;
    const QSize size = scaled(icons_.largest(), zoom.ZoomDevicesPercent);
    const auto mapFloor = [&zoom](std::int64_t value) {
        return value * 100 / zoom.ZoomPercent - 1;
    };
    const auto mapCeiling = [&zoom](std::int64_t value) {
        return value * 100 / zoom.ZoomPercent + 100 / zoom.ZoomPercent + 2;
    };
    return {mapFloor(std::int64_t{point.x()} - size.width()),
            mapFloor(std::int64_t{point.y()} - size.height()), mapCeiling(point.x()), mapCeiling(point.y())};
}

std::vector<const CHardware*> CFloorHover::hitsAt(QPoint point) const {
    CFloorIndex::Devices found = index_.devicesIn(reach(point));
    std::erase_if(found, [&](const CHardware* device) {
        return !display_.typeVisible(device->Type) ||
               !hits(device->Position, icons_.of(device->Type), point, view_.zoom);
    });
    index_.inListOrder(found);
    std::ranges::reverse(found);
    return found;
}

Hover CFloorHover::at(QPoint point, bool synthetic) const {
    Hover hover;
    const auto found = hitsAt(point);
    hover.shown = found.empty() ? nullptr : found.front();
    const CHardware* selected = synthetic ? nullptr : selection_.lastOnFloor();
    if (selected &&
        (!hover.shown || hover.shown == selected || index_.laterInList(*selected, *hover.shown))) {
        hover.shown = selected;
        hover.selectedSeen = true;
        return hover;
    }
    hover.SelectedMarker = markerAround(point);
    return hover;
}

std::int32_t CFloorHover::markerAround(QPoint point) const {
    const std::int32_t ZoomPercent = view_.zoom.ZoomPercent;
    std::int64_t best = worstAreaScore;
    std::int32_t winner = 0;
    CFloorIndex::Devices markers(index_.markers().begin(), index_.markers().end());
    index_.inListOrder(markers);
    for (auto marker = markers.rbegin(); marker != markers.rend(); ++marker) {
        if ((*marker)->ToJack.empty())
            continue;
        const auto score =
            markedAreaScore(parseMarkedArea((*marker)->ToJack), {point.x(), point.y()}, ZoomPercent);
        if (score && *score < best) {
            best = *score;
            winner = (*marker)->RecID;
        }
    }
    return winner;
}

void CFloorHover::showOnly(const CHardware* shown) {
    const std::vector<const CHardware*> before(index_.hovered().begin(), index_.hovered().end());
    for (const CHardware* device : before)
        if (device != shown)
            selection_.setShowAll(*device, false);
    if (shown)
        selection_.setShowAll(*shown, true);
}

} // namespace mirovane
