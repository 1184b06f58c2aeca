#include "ui/floor/paint/FloorFrame.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <optional>
#include <vector>

namespace mirovane {

namespace {

/// From here on finding out what is stale costs more than drawing everything.
constexpr std::size_t mostChangedDevices = 400;
constexpr int mostStaleParts = 8;

/// A region of many rectangles takes longer to add to than it saves.
constexpr int mostRegionParts = 32;

void widen(QRegion& region, QRect by) {
    region |= by;
    if (region.rectCount() > mostRegionParts)
        region = region.boundingRect();
}

/// Few rectangles that cover the region: each costs a walk over all devices in sight.
QRegion simplified(const QRegion& region, QRect bounds) {
    const QRegion inside = region & bounds;
    return inside.rectCount() > mostStaleParts ? QRegion(inside.boundingRect()) : inside;
}

/// Pixels by which what was drawn moves on the canvas from one view to the other; nothing when it cannot be
/// moved: anything else has changed, or it would fall between pixels.
std::optional<QPoint> movedBy(const FloorView& from, const FloorView& to) {
    FloorView same = to;
    same.origin = from.origin;
    if (same != from)
        return std::nullopt;
    const auto along = [&to](int before, int after) -> std::optional<int> {
        const double pixels = (double{1} * before - after) * to.ratio;
        if (std::abs(pixels) > coordinateLimit || pixels != std::floor(pixels))
            return std::nullopt;
        return static_cast<int>(pixels);
    };
    const auto x = along(from.origin.x(), to.origin.x());
    const auto y = along(from.origin.y(), to.origin.y());
    return x && y ? std::optional(QPoint(*x, *y)) : std::nullopt;
}

/// Moves the pixels of an image; what comes in at the edges keeps any content.
void moveContent(QImage& image, QPoint by) {
    const QRect target = image.rect().translated(by) & image.rect();
    const auto stride = image.bytesPerLine();
    uchar* bits = image.bits();
    const auto bytes = static_cast<std::size_t>(target.width()) * sizeof(QRgb);
    for (int i = 0; i < target.height(); ++i) {
        const int y = by.y() > 0 ? target.bottom() - i : target.top() + i;
        std::memmove(bits + y * stride + target.left() * qsizetype{sizeof(QRgb)},
                     bits + (y - by.y()) * stride + (target.left() - by.x()) * qsizetype{sizeof(QRgb)},
                     bytes);
    }
}

QSize canvasSize(QSize client, qreal ratio) {
    return {std::max(1, static_cast<int>(std::ceil(client.width() * ratio))),
            std::max(1, static_cast<int>(std::ceil(client.height() * ratio)))};
}

QRect logical(QRect canvas, qreal ratio) {
    const auto down = [ratio](int value) {
        return static_cast<int>(std::floor(value / ratio));
    };
    const auto up = [ratio](int value) {
        return static_cast<int>(std::ceil(value / ratio));
    };
    const QPoint corner(down(canvas.left()), down(canvas.top()));
    return {corner, QPoint(up(canvas.right() + 1) - 1, up(canvas.bottom() + 1) - 1)};
}

} // namespace

void CFloorFrame::setState(const FloorViewState& state) {
    const QSize size = canvasSize(state.view.client, state.view.ratio);
    if (!allStale_ && state.view != state_.view && !scrollTo(state.view))
        invalidateAll();
    state_ = state;
    if (image_.size() == size)
        return;
    image_ = QImage(size, QImage::Format_RGB32);
    below_ = QImage(size, QImage::Format_RGB32);
    invalidateAll();
}

/// Moves what was drawn, and notes the strips and the devices that come into sight or leave it: those that
/// start beyond the margin are not drawn, however far their labels reach. False when nothing can be kept.
bool CFloorFrame::scrollTo(const FloorView& view) {
    const auto by = movedBy(state_.view, view);
    const QRect frame = image_.rect();
    const QRect kept = by ? frame.translated(*by) & frame : QRect();
    if (kept.isEmpty())
        return false;
    gatherChanged();
    moveContent(below_, *by);
    moveContent(image_, *by);
    stale_.translate(*by);
    topRegion_.translate(*by);
    FloorViewState next = state_;
    next.view = view;
    std::vector<QRect> strips;
    for (const QRect& strip : QRegion(frame) - kept)
        strips.push_back(strip);
    for (const QRect& crossing : painter_.scroll(*by, next, frame)) {
        const QRect inside = crossing & frame;
        const auto touched =
            std::ranges::find_if(strips, [&](const QRect& s) { return s.intersects(inside); });
        if (touched != strips.end())
            *touched |= inside;
        else
            widen(stale_, inside);
    }
    for (const QRect& strip : strips)
        stale_ |= strip;
    moved_ = true;
    return true;
}

void CFloorFrame::invalidateAll() {
    allStale_ = true;
    stale_ = topRegion_ = QRegion();
    changed_.clear();
    painter_.labels().forgetPlaces();
}

/// A device that was on top and still is leaves the layer below as it was.
void CFloorFrame::invalidate(const CHardware& device) {
    if (!allStale_ && changed_.insert(&device).second) {
        const QRect before = painter_.painted(device);
        widen(painter_.wasOnTop(device) && CFloorScene::onTop(device) ? topRegion_ : stale_, before);
    }
    painter_.labels().touch(device);
}

void CFloorFrame::forget(const CHardware& device) {
    if (!allStale_)
        widen(stale_, painter_.painted(device));
    changed_.erase(&device);
    painter_.labels().forget(device);
}

void CFloorFrame::forgetAll() {
    painter_.labels().clear();
    invalidateAll();
}

void CFloorFrame::gatherChanged() {
    if (changed_.empty())
        return;
    painter_.begin(state_);
    const bool many = changed_.size() > mostChangedDevices;
    for (const CHardware* device : changed_) {
        const bool top = painter_.wasOnTop(*device) && CFloorScene::onTop(*device);
        if (top && many)
            topStale_ = true;
        else
            widen(top ? topRegion_ : stale_, painter_.wouldPaint(*device, state_));
    }
    changed_.clear();
}

void CFloorFrame::drawBelow(QRect part) {
    QPainter painter(&below_);
    for (const QRect& bare : QRegion(part) - painter_.mapRect(state_.view))
        painter.fillRect(bare, QColor(labelColour(LabelBackground::Canvas)));
    painter_.drawBelow({painter, &below_}, part, state_);
}

void CFloorFrame::drawTop(QRect part) {
    QPainter painter(&image_);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.drawImage(part, below_, part);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    painter_.drawTop({painter, &image_}, part, state_);
}

const QImage& CFloorFrame::image(QRect* redrawn) {
    const QRect frame = image_.rect();
    QRegion below;
    QRegion top;
    if (allStale_) {
        below = top = frame;
    } else if (stale()) {
        gatherChanged();
        below = simplified(stale_, frame);
        top = topStale_ ? QRegion(frame) : simplified(below | topRegion_, frame);
    }
    if (!below.isEmpty() || !top.isEmpty())
        painter_.begin(state_);
    for (const QRect& part : below)
        drawBelow(part);
    for (const QRect& part : top)
        drawTop(part);
    if (allStale_)
        painter_.labels().evictUnseen();
    const QRect drawn = moved_ ? frame : top.boundingRect();
    allStale_ = topStale_ = moved_ = false;
    stale_ = topRegion_ = QRegion();
    changed_.clear();
    if (redrawn)
        *redrawn = drawn.isEmpty() ? QRect() : logical(drawn, state_.view.ratio);
    return image_;
}

} // namespace mirovane
