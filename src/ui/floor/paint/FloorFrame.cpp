#include "ui/floor/paint/FloorFrame.h"

#include <algorithm>
#include <cmath>

namespace mirovane {

namespace {

/// From here on finding out what is stale costs more than drawing everything.
constexpr std::size_t mostChangedDevices = 400;
constexpr int mostStaleParts = 6;

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
    if (state.view != state_.view)
        invalidateAll();
    state_ = state;
    if (image_.size() != size)
        image_ = QImage(size, QImage::Format_RGB32);
}

void CFloorFrame::invalidateAll() {
    allStale_ = true;
    stale_ = QRegion();
    changed_.clear();
}

void CFloorFrame::invalidate(const CHardware& device) {
    if (allStale_)
        return;
    if (changed_.insert(&device).second)
        stale_ |= painter_.painted(device);
    if (changed_.size() > mostChangedDevices)
        invalidateAll();
}

void CFloorFrame::forget(const CHardware& device) {
    if (!allStale_)
        stale_ |= painter_.painted(device);
    changed_.erase(&device);
    painter_.labels().forget(device);
}

void CFloorFrame::forgetAll() {
    painter_.labels().clear();
    invalidateAll();
}

void CFloorFrame::gatherChanged() {
    for (const CHardware* device : changed_)
        stale_ |= painter_.wouldPaint(*device, state_);
    changed_.clear();
    stale_ &= image_.rect();
    if (stale_.rectCount() > mostStaleParts)
        stale_ = stale_.boundingRect();
}

void CFloorFrame::drawPart(QRect part) {
    QPainter painter(&image_);
    painter.fillRect(part, QColor(labelColour(LabelBackground::Canvas)));
    painter_.Draw(painter, part, state_);
}

const QImage& CFloorFrame::image(QRect* redrawn) {
    QRect drawn;
    if (allStale_) {
        drawn = image_.rect();
        drawPart(drawn);
        painter_.evictUnseen();
    } else if (stale()) {
        gatherChanged();
        for (const QRect& part : stale_)
            drawPart(part);
        drawn = stale_.boundingRect();
    }
    allStale_ = false;
    stale_ = QRegion();
    changed_.clear();
    if (redrawn)
        *redrawn = drawn.isEmpty() ? QRect() : logical(drawn, state_.view.ratio);
    return image_;
}

} // namespace mirovane
