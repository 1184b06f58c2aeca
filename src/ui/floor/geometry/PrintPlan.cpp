#include "ui/floor/geometry/PrintPlan.h"

#include "ui/floor/geometry/FontBands.h"

#include <algorithm>

namespace mirovane {

namespace {

/// Up to here the labels grow by `smallStep` for each step of the factor, from here on by `largeStep`.
constexpr int largeFactor = 4;
constexpr int smallStep = 5;
constexpr int largeStep = 7;

std::int32_t timesFactor(std::int32_t percent, int factor) {
    return static_cast<std::int32_t>(
        std::clamp<std::int64_t>(std::int64_t{percent} * factor, smallestZoom, largestZoom));
}

int tiles(int length, int page) {
    return std::max(1, (length + page - 1) / page);
}

} // namespace

int printFactor(QSize page) {
    return std::max(1, std::max(page.width(), page.height()) / 100 / 10);
}

ZoomState printZoom(const ZoomState& screen, QSize page) {
    const int factor = printFactor(page);
    ZoomState zoom = screen;
    const std::int64_t scale =
        std::int64_t{screen.ZoomFontScale} + factor * (factor < largeFactor ? smallStep : largeStep);
    zoom.ZoomFontScale = static_cast<std::int32_t>(std::min<std::int64_t>(scale, INT32_MAX));
    zoom.ZoomPercent = timesFactor(screen.ZoomPercent, factor);
    zoom.ZoomDevicesPercent = timesFactor(screen.ZoomDevicesPercent, factor);
    return withStoredFontHeight(zoom);
}

int PrintPlan::columns() const {
    return tiles(area.width(), page.width());
}

int PrintPlan::rows() const {
    return tiles(area.height(), page.height());
}

FloorView PrintPlan::view(int number) const {
    const QPoint tile(number % columns() * page.width(), number / columns() * page.height());
    FloorView view;
    view.zoom = {zoom.ZoomPercent, zoom.ZoomDevicesPercent};
    view.LabelFontHeight = zoom.LabelFontHeight;
    view.origin = corner + tile;
    view.client = page.boundedTo(area - QSize(tile.x(), tile.y()));
    view.paper = true;
    view.lineScale = printFactor(page);
    view.within = box;
    return view;
}

PrintPlan planPrint(const ZoomState& zoom, QSize page, QSize extent, const std::optional<MapBox>& box) {
    PrintPlan plan{zoom, page.expandedTo({1, 1}), {0, 0}, extent, std::nullopt};
    if (box) {
        plan.box = box->normalised();
        plan.corner = toScaled(plan.box->BoxStart, zoom.ZoomPercent);
        const auto length = [&zoom](std::int32_t from, std::int32_t to) {
            return scaled(
                static_cast<std::int32_t>(std::min<std::int64_t>(std::int64_t{to} - from, INT32_MAX)),
                zoom.ZoomPercent);
        };
        plan.area = {length(plan.box->BoxStart.x, plan.box->BoxEnd.x),
                     length(plan.box->BoxStart.y, plan.box->BoxEnd.y)};
    }
    plan.area = plan.area.expandedTo({1, 1});
    return plan;
}

} // namespace mirovane
