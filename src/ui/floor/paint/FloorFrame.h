#pragma once

#include "ui/floor/paint/FloorPainter.h"

#include <QImage>
#include <QRegion>
#include <QSize>

#include <unordered_set>

namespace mirovane {

/// The off-screen image of one view, kept between paints: only what became stale is drawn again, so that a
/// window that is merely uncovered costs one copy, and a device that changed costs its own surroundings. Main
/// thread.
class CFloorFrame {
public:
    explicit CFloorFrame(const FloorSources& sources) : painter_(sources) {}

    /// What the next image shows. Another view (place, size, zoom, font) makes the whole frame stale. For
    /// every other value of the state the caller names what it changes.
    void setState(const FloorViewState& state);

    void invalidateAll();

    /// The device is to be drawn again where it was and where it is now.
    void invalidate(const CHardware& device);

    /// The device's record is about to go, and so is its picture.
    void forget(const CHardware& device);

    /// All records were replaced.
    void forgetAll();

    bool stale() const { return allStale_ || !stale_.isEmpty() || !changed_.empty(); }

    /// The up-to-date image, canvas pixels. `redrawn` gets what differs from the image before, logical
    /// pixels.
    const QImage& image(QRect* redrawn = nullptr);

    /// Work that makes later frames quicker; false when nothing is left to do.
    bool prepare(std::chrono::microseconds budget) { return painter_.labels().prepare(budget); }

private:
    void gatherChanged();
    void drawPart(QRect part);

    CFloorPainter painter_;
    FloorViewState state_;
    QImage image_;
    QRegion stale_;
    std::unordered_set<const CHardware*> changed_;
    bool allStale_ = true;
};

} // namespace mirovane
