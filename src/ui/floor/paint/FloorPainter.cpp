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

void CFloorPainter::Draw(const FloorCanvas& canvas, QRect clip, const FloorViewState& state) {
    if (clip.isEmpty())
        return;
    begin(state);
    drawBelow(canvas, clip, state);
    drawTop(canvas, clip, state);
}

void CFloorPainter::drawBelow(const FloorCanvas& canvas, QRect clip, const FloorViewState& state) {
    canvas.painter.setClipRect(clip);
    drawMap(canvas.painter, clip, state.view);
    seams_.begin(clip);
    for (const CHardware* device : scene_.devices(state))
        if (scene_.inFirstPass(*device, state))
            drawOne(canvas, clip, *device, false);
}

void CFloorPainter::drawTop(const FloorCanvas& canvas, QRect clip, const FloorViewState& state) {
    canvas.painter.setClipRect(clip);
    noteLabelsBelow(clip, state);
    for (const CHardware* device : scene_.devices(state))
        if (scene_.inSecondPass(*device, state))
            drawOne(canvas, clip, *device, true);
    if (state.gesture.box)
        drawBox(canvas.painter, *state.gesture.box, state.view);
}

QRect CFloorPainter::mapRect(const FloorView& view) const {
    if (sources_.display.FloorMapHidden || floorMapOf(sources_.document).mapPath.empty() ||
        !sources_.map.picture())
        return {};
    const QSize size = scaled(sources_.map.picture()->size(), view.zoom.ZoomPercent);
    return {view.px(-view.origin), view.pxRect({0, 0}, size).size()};
}

/// The map is laid on the same scaled pixels as the devices, whatever the scroll position. Cutting the shown
/// part out of the bitmap in whole map pixels instead would shift it by up to one of them
/// against the devices, a different shift at every scroll position.
void CFloorPainter::drawMap(QPainter& painter, QRect clip, const FloorView& view) {
    const QRect whole = mapRect(view);
    if (whole.isEmpty())
        return;
    const MapPlace place{whole.topLeft(), whole.size(), view.zoom.ZoomPercent / 100.0 * view.ratio};
    if (view.paper)
        sources_.map.drawWhole(painter, clip, place);
    else
        sources_.map.draw(painter, clip, place);
}

/// The labels that those on top may lie on. While devices are dragged, none on top has labels, and there is
/// nothing to do.
void CFloorPainter::noteLabelsBelow(QRect clip, const FloorViewState& state) {
    seams_.begin(clip);
    const CFloorIndex::Devices& devices = scene_.devices(state);
    const bool labelled = std::ranges::any_of(devices, [&](const CHardware* device) {
        return scene_.inSecondPass(*device, state) && !devices_.figureOf(*device).labels->lines.empty();
    });
    if (!labelled)
        return;
    for (const CHardware* device : devices) {
        const CLabelCache::Block* block = devices_.labels().find(*device);
        if (block && scene_.inFirstPass(*device, state) && block->painted.translated(moved_).intersects(clip))
            seams_.add(devices_.labelRects(devices_.figureOf(*device)));
    }
}

/// A device that is where it was, away from the part that is drawn, is not even laid out.
void CFloorPainter::drawOne(const FloorCanvas& canvas, QRect clip, const CHardware& device, bool onTop) {
    CLabelCache::Block* kept = devices_.labels().find(device);
    if (kept && kept->placed && kept->onTop == onTop && !kept->painted.translated(moved_).intersects(clip))
        return;
    const CDevicePainter::Figure figure = devices_.figureOf(device);
    figure.labels->painted = figure.bounds.translated(-moved_);
    figure.labels->placed = true;
    figure.labels->onTop = onTop;
    if (!figure.bounds.intersects(clip))
        return;
    const std::vector<QRect> lines = devices_.labelRects(figure);
    seams_.draw(canvas, lines);
    devices_.DrawDevice(canvas, device, figure, clip, false);
    seams_.add(lines);
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
    return block && !block->painted.isEmpty() ? block->painted.translated(moved_) : QRect();
}

bool CFloorPainter::wasOnTop(const CHardware& device) {
    const CLabelCache::Block* block = devices_.labels().find(device);
    return block && block->onTop;
}

QRect CFloorPainter::wouldPaint(const CHardware& device, const FloorViewState& state) {
    if (!device.onFloor() || (!scene_.inFirstPass(device, state) && !scene_.inSecondPass(device, state)))
        return {};
    return devices_.figureOf(device).bounds;
}

std::vector<QRect> CFloorPainter::scroll(QPoint by, const FloorViewState& state, QRect frame) {
    moved_ += by;
    begin(state);
    CLabelCache& labels = devices_.labels();
    std::vector<QRect> crossing;
    for (const CHardware* device : scene_.devices(state)) {
        if (!scene_.inFirstPass(*device, state) && !scene_.inSecondPass(*device, state))
            continue;
        CLabelCache::Block* block = labels.find(*device);
        if (block) {
            labels.keep(*block);
            const QRect now = block->painted.translated(moved_);
            const bool whole = frame.contains(now) && frame.contains(now.translated(-by));
            if (!whole && now.intersects(frame) && devices_.drawsSmoothLines(*device))
                crossing.push_back(now);
        } else {
            crossing.push_back(devices_.figureOf(*device).bounds);
        }
    }
    for (const auto& [device, block] : labels.blocks())
        if (!labels.seen(block) && !block.painted.isEmpty())
            crossing.push_back(block.painted.translated(moved_));
    labels.evictUnseen();
    return crossing;
}

} // namespace mirovane
