#pragma once

#include <QImage>
#include <QPainter>

namespace mirovane {

/// What a frame is drawn on.
struct FloorCanvas {
    QPainter& painter;

    /// The RGB32 image that the painter draws on, without a transformation, so that pixels may be set
    /// directly. Null for a page.
    QImage* image = nullptr;
};

} // namespace mirovane
