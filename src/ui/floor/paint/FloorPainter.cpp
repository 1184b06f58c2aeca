#include "ui/floor/paint/FloorPainter.h"

#include "model/FloorMap.h"

#include <QPen>

#include <algorithm>
#include <cstdlib>

namespace mirovane {

CFloorPainter::CFloorPainter(const FloorSources& sources)
    : sources_(sources),
      scene_(sources.document, sources.display, sources.index),
      devices_(sources.display, sources.icons, sources.photos) {}

void CFloorPainter::Draw(QPainter& painter, QRect clip, const FloorViewState& state) {
    if (clip.isEmpty())
        return;
    devices_.begin(state);
    painter.setClipRect(clip);
    drawMap(painter, clip, state.view);
    drawDevices(painter, clip, state);
    if (state.gesture.box)
        drawBox(painter, *state.gesture.box, state.view);
}

/// The map is laid on the same scaled pixels as the devices, whatever the scroll position. Cutting the shown
/// part out of the bitmap in whole map pixels instead would shift it by up to one of them
/// against the devices, a different shift at every scroll position.
void CFloorPainter::drawMap(QPainter& painter, QRect clip, const FloorView& view) {
    if (sources_.display.FloorMapHidden || floorMapOf(sources_.document).mapPath.empty() ||
        !sources_.map.picture())
        return;
    const QSize size = scaled(sources_.map.picture()->size(), view.zoom.ZoomPercent);
    const MapPlace place{view.px(-view.origin), view.pxRect({0, 0}, size).size(),
                         view.zoom.ZoomPercent / 100.0 * view.ratio};
    if (view.paper)
        sources_.map.drawWhole(painter, clip, place);
    else
        sources_.map.draw(painter, clip, place);
}

void CFloorPainter::drawDevices(QPainter& painter, QRect clip, const FloorViewState& state) {
    const CFloorIndex::Devices& devices = scene_.devices(state);
    for (const CHardware* device : devices)
        if (scene_.inFirstPass(*device, state))
            drawOne(painter, clip, *device);
    for (const CHardware* device : devices)
        if (scene_.inSecondPass(*device, state))
            drawOne(painter, clip, *device);
}

void CFloorPainter::drawOne(QPainter& painter, QRect clip, const CHardware& device) {
    const CDevicePainter::Figure figure = devices_.figureOf(device);
    figure.labels->painted = figure.bounds;
    if (figure.bounds.intersects(clip))
        devices_.DrawDevice(painter, device, figure, clip, false);
}

void CFloorPainter::drawBox(QPainter& painter, const MapBox& box, const FloorView& view) {
    const QPoint a = view.px(view.toFrame(box.BoxStart));
    const QPoint b = view.px(view.toFrame(box.BoxEnd));
    const int width = std::max(1, static_cast<int>(view.ratio));
    const auto fill = [&painter](QPoint from, QPoint to, int thick) {
        const QPoint corner(std::min(from.x(), to.x()), std::min(from.y(), to.y()));
        const QPoint across = to - from;
        painter.fillRect(QRect(corner, QSize(std::abs(across.x()) + thick, std::abs(across.y()) + thick)),
                         Qt::black);
    };
    fill(a, {b.x(), a.y()}, width);
    fill({b.x(), a.y()}, b, width);
    fill(b, {a.x(), b.y()}, width);
    fill({a.x(), b.y()}, a, width);
}

QRect CFloorPainter::painted(const CHardware& device) {
    const CLabelCache::Block* block = devices_.labels().find(device);
    return block ? block->painted : QRect();
}

QRect CFloorPainter::wouldPaint(const CHardware& device, const FloorViewState& state) {
    if (!device.onFloor() || (!scene_.inFirstPass(device, state) && !scene_.inSecondPass(device, state)))
        return {};
    devices_.begin(state);
    return devices_.figureOf(device).bounds;
}

} // namespace mirovane
