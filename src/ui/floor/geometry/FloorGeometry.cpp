#include "ui/floor/geometry/FloorGeometry.h"

#include <algorithm>

namespace mirovane {

namespace {

std::int32_t difference(std::int32_t a, std::int32_t b) {
    return withinLimit(std::int64_t{a} - b);
}

std::int32_t sum(std::int32_t a, std::int32_t b) {
    return withinLimit(std::int64_t{a} + b);
}

} // namespace

FloorZoom floorZoom(const DisplaySettings& display) {
    return {std::clamp(display.ZoomPercent, smallestZoom, largestZoom),
            std::clamp(display.ZoomDevicesPercent, smallestZoom, largestZoom)};
}

QSize scaled(QSize size, std::int32_t percent) {
    return {scaled(size.width(), percent), scaled(size.height(), percent)};
}

QPoint toScaled(MapPoint point, std::int32_t ZoomPercent) {
    return {scaled(point.x, ZoomPercent), scaled(point.y, ZoomPercent)};
}

QPoint ToWindow(MapPoint point, QPoint scroll, std::int32_t ZoomPercent) {
    const QPoint at = toScaled(point, ZoomPercent);
    return {difference(at.x(), scroll.x()), difference(at.y(), scroll.y())};
}

MapPoint ToMap(QPoint windowPoint, QPoint scroll, std::int32_t ZoomPercent) {
    return {unscaled(sum(windowPoint.x(), scroll.x()), ZoomPercent),
            unscaled(sum(windowPoint.y(), scroll.y()), ZoomPercent)};
}

bool insideCull(QPoint scaledPosition, QPoint scroll, QSize client) {
    const auto inside = [](std::int32_t at, std::int32_t start, std::int32_t length) {
        return at > std::int64_t{start} - cullMargin && at < std::int64_t{start} + length;
    };
    return inside(scaledPosition.x(), scroll.x(), client.width()) &&
           inside(scaledPosition.y(), scroll.y(), client.height());
}

std::optional<QPoint> scrollToShow(QPoint scaledPosition, QPoint scroll, QSize client) {
    constexpr int edge = 20;
    const auto inView = [](int at, int from, int length) {
        return at > from && at < from + length - edge;
    };
    if (inView(scaledPosition.x(), scroll.x(), client.width()) &&
        inView(scaledPosition.y(), scroll.y(), client.height()))
        return std::nullopt;
    return QPoint(std::max(0, scaledPosition.x() - client.width() / 2),
                  std::max(0, scaledPosition.y() - client.height() / 2));
}

QPoint autoScroll(QPoint windowPoint, QSize client) {
    constexpr int step = 15;
    const auto along = [](int at, int length) {
        return at < 0 ? -step : at >= length ? step : 0;
    };
    return {along(windowPoint.x(), client.width()), along(windowPoint.y(), client.height())};
}

bool hits(MapPoint position, QSize iconSize, QPoint scaledPoint, FloorZoom zoom) {
    const QPoint corner = toScaled(position, zoom.ZoomPercent);
    const QSize size = scaled(iconSize, zoom.ZoomDevicesPercent);
    const auto within = [](int at, int start, int length) {
        return at >= start && at <= start + length;
    };
    return within(scaledPoint.x(), corner.x(), size.width()) &&
           within(scaledPoint.y(), corner.y(), size.height());
}

int linePenWidth(const DisplaySettings& display) {
    const int on = int{display.PropertiesSlashDraw} + int{display.PropertiesBackslashDraw} +
                   int{display.PropertiesHorzDraw} + int{display.PropertiesVertDraw};
    return std::max(5 - on, 2);
}

std::vector<FloorLine> directionLines(const CHardware& device, const DisplaySettings& display, QPoint corner,
                                      QSize drawn, std::int32_t ZoomDevicesPercent) {
    const int left = corner.x();
    const int top = corner.y();
    const int right = left + scaled(drawn.width(), ZoomDevicesPercent);
    const int bottom = top + scaled(drawn.height(), ZoomDevicesPercent);
    const int middleX = left + scaled(drawn.width() / 2, ZoomDevicesPercent);
    const int middleY = top + scaled(drawn.height() / 2, ZoomDevicesPercent);
    std::vector<FloorLine> lines;
    if (device.SlashDraw && display.PropertiesSlashDraw)
        lines.push_back({{left, bottom}, {right, top}});
    if (device.BackslashDraw && display.PropertiesBackslashDraw)
        lines.push_back({{left, top}, {right, bottom}});
    if (device.HorzDraw && display.PropertiesHorzDraw)
        lines.push_back({{left, middleY}, {right, middleY}});
    if (device.VertDraw && display.PropertiesVertDraw)
        lines.push_back({{middleX, top}, {middleX, bottom}});
    return lines;
}

QSize photoSize(QSize photo, std::int32_t iconWidth, FloorZoom zoom, std::int32_t PhotoScale) {
    if (photo.isEmpty())
        return {};
    // One division, of numbers that a double holds exactly: a whole result must not come out a hair less.
    const auto side = [&](std::int32_t percent, int times, int by) {
        return static_cast<double>(iconWidth) * percent * times * PhotoScale * 4 / (10000.0 * by);
    };
    const double width = side(zoom.ZoomDevicesPercent, 1, 1);
    const double height = side(zoom.ZoomPercent, photo.height(), photo.width());
    const auto whole = [](double value) {
        return static_cast<int>(std::clamp<double>(value, 0, coordinateLimit));
    };
    return {whole(width), whole(height)};
}

QSize CIconSizes::of(std::int32_t type) const {
    if (type < DeviceType::first || type > DeviceType::last)
        return {0, 0};
    const QSize size = sizes_[static_cast<std::size_t>(type - 1)];
    return size.isValid() ? size : QSize(0, 0);
}

void CIconSizes::set(std::int32_t type, QSize size) {
    sizes_.at(static_cast<std::size_t>(type - 1)) = size;
}

QSize CIconSizes::largest() const {
    QSize largest(0, 0);
    for (const QSize& size : sizes_)
        largest = largest.expandedTo(size);
    return largest;
}

QSize scrollExtent(const CMirovaneDoc& document, QSize mapSize, const CIconSizes& icons,
                   std::int32_t ZoomPercent) {
    QSize extent = scaled(mapSize.expandedTo({0, 0}), ZoomPercent);
    for (std::size_t i = 0; i < document.size(); ++i) {
        const CHardware& record = document.at(i);
        const QPoint at = toScaled(record.Position, ZoomPercent);
        if (at.x() <= extent.width() && at.y() <= extent.height())
            continue;
        const QSize icon = scaled(icons.of(floorCode(record.Type)), ZoomPercent);
        if (at.x() > extent.width())
            extent.setWidth(sum(at.x(), icon.width()));
        if (at.y() > extent.height())
            extent.setHeight(sum(at.y(), icon.height()));
    }
    return extent;
}

} // namespace mirovane
