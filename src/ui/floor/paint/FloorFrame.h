#pragma once

#include "ui/floor/paint/FloorPainter.h"

#include <QImage>
#include <QRegion>
#include <QSize>

#include <unordered_set>

namespace mirovane {

/// The off-screen image of one view, kept between paints: only what became stale is drawn again, so that a
/// window that is merely uncovered costs one copy, a device that changed costs its own surroundings, and a
/// scrolled floor costs what came into view.
///
/// It is kept in two layers. The selected and hovered devices, the box and the marks are drawn over a copy of
/// everything below them, so that a drag or a hover draws nothing but what moves. Main thread.
class CFloorFrame {
public:
    explicit CFloorFrame(const FloorSources& sources) : painter_(sources) {}

    /// What the next image shows. Another view makes the whole frame stale, one that is merely scrolled only
    /// what comes into sight. For every other value of the state the caller names what it changes.
    void setState(const FloorViewState& state);

    void invalidateAll();

    /// The devices that are selected or hovered, and the box.
    void invalidateTop() { topStale_ = true; }

    /// The device is to be drawn again where it was and where it is now.
    void invalidate(const CHardware& device);

    /// The device's record is about to go, and so is its picture.
    void forget(const CHardware& device);

    /// All records were replaced.
    void forgetAll();

    bool stale() const { return allStale_ || topStale_ || !stale_.isEmpty() || !changed_.empty(); }

    /// The up-to-date image, canvas pixels. `redrawn` gets what differs from the image before, logical
    /// pixels.
    const QImage& image(QRect* redrawn = nullptr);

private:
    bool scrollTo(const FloorView& view);
    void gatherChanged();
    void drawBelow(QRect part);
    void drawTop(QRect part);

    CFloorPainter painter_;
    FloorViewState state_;
    QImage below_; ///< the map and the devices that are neither selected nor hovered
    QImage image_;
    QRegion stale_; ///< of both layers
    QRegion topRegion_;
    std::unordered_set<const CHardware*> changed_;
    bool allStale_ = true;
    bool topStale_ = false; ///< all of the top layer
    bool moved_ = false;    ///< scrolled since the last image
};

} // namespace mirovane
