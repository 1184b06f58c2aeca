#include "ui/floor/paint/FloorPainter.h"

#include "model/FloorMap.h"

#include <QPen>

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace mirovane {

CFloorPainter::CFloorPainter(const FloorSources& sources)
    : sources_(sources),
      scene_(sources.document, sources.display, sources.index),
      devices_(sources.document, sources.display, sources.icons, sources.photos) {}

void CFloorPainter::Draw(QImage& canvas, QRect clip, const FloorViewState& state, qreal devicePixelRatio) {
    clip &= canvas.rect();
    if (clip.isEmpty())
        return;
    devices_.begin(state, devicePixelRatio);
    QPainter painter(&canvas);
    painter.setClipRect(clip);
    painter.fillRect(clip, QColor(labelColour(LabelBackground::Canvas)));
    drawMap(painter, clip, state, devicePixelRatio);
    drawDevices(painter, clip, state);
    if (state.gesture.box)
        drawBox(painter, *state.gesture.box, state, devicePixelRatio);
    if (clip == canvas.rect())
        devices_.labels().evictUnseen();
}

/// The map is laid on the same scaled pixels as the devices, whatever the scroll position. Cutting the shown
/// part out of the bitmap in whole map pixels instead would shift it by up to one of them
/// against the devices, a different shift at every scroll position.
void CFloorPainter::drawMap(QPainter& painter, QRect clip, const FloorViewState& state,
                            qreal devicePixelRatio) {
    if (floorMapOf(sources_.document).mapPath.empty())
        return;
    const double factor = devices_.zoom().ZoomPercent / 100.0 * devicePixelRatio;
    const QPoint origin(static_cast<int>(std::lround(-state.scroll.x() * devicePixelRatio)),
                        static_cast<int>(std::lround(-state.scroll.y() * devicePixelRatio)));
    sources_.map.draw(painter, clip, origin, factor);
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
    const QRect bounds = devices_.bounds(device);
    devices_.labels().block(device).painted = bounds;
    if (bounds.intersects(clip))
        devices_.DrawDevice(painter, device, clip, false);
}

void CFloorPainter::drawBox(QPainter& painter, const MapBox& box, const FloorViewState& state,
                            qreal devicePixelRatio) {
    const std::int32_t zoom = devices_.zoom().ZoomPercent;
    const QPoint a = ToWindow(box.BoxStart, state.scroll, zoom) * devicePixelRatio;
    const QPoint b = ToWindow(box.BoxEnd, state.scroll, zoom) * devicePixelRatio;
    const int width = std::max(1, static_cast<int>(devicePixelRatio));
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

QRect CFloorPainter::wouldPaint(const CHardware& device, const FloorViewState& state,
                                qreal devicePixelRatio) {
    if (!device.onFloor() || (!scene_.inFirstPass(device, state) && !scene_.inSecondPass(device, state)))
        return {};
    devices_.begin(state, devicePixelRatio);
    return devices_.bounds(device);
}

} // namespace mirovane
