#pragma once

#include "ui/floor/geometry/FloorGeometry.h"
#include "ui/floor/paint/FloorCanvas.h"
#include "ui/floor/paint/FloorViewState.h"
#include "ui/floor/paint/IconSet.h"
#include "ui/floor/paint/LabelCache.h"
#include "ui/floor/paint/PhotoStore.h"

#include <QPainter>
#include <QPoint>
#include <QRect>

#include <vector>

namespace mirovane {

/// Draws single devices, in canvas pixels so that text and lines are sharp on any screen. Main thread.
class CDevicePainter {
public:
    CDevicePainter(const DisplaySettings& display, CIconSet& icons, CPhotoStore& photos);

    /// A device's places in the frame: worked out once, for whatever is asked or drawn of it.
    struct Figure {
        QPoint corner;  ///< frame coordinates, logical pixels
        QSize bitmap;   ///< of the bitmap shown, unscaled
        QRect box;      ///< layout box, canvas pixels
        QRect drawn;    ///< the bitmap's place, canvas pixels
        QPoint textTop; ///< where the layout box starts and where the labels under it start
        QPoint textBottom;
        CLabelCache::Block* labels = nullptr;
        QRect bounds; ///< canvas pixels that the device covers with everything at it
    };

    /// Start of a frame: what all devices of the frame have in common.
    void begin(const FloorViewState& state);

    /// Valid until the next begin().
    Figure figureOf(const CHardware& device);

    /// One device, in its stacking order: icon, labels, highlight, photo, lines, ring, marked area. What lies
    /// outside `clip` (canvas pixels) may be left out. `withoutDecorations`: icon and labels only.
    void DrawDevice(const FloorCanvas& canvas, const CHardware& device, const Figure& figure, QRect clip,
                    bool withoutDecorations);

    /// Where the lines of a figure's labels are; those without any text are left out.
    std::vector<QRect> labelRects(const Figure& figure) const;

    /// It has lines, whose smoothed edges come out a shade different where the frame cuts them.
    bool drawsSmoothLines(const CHardware& device) const;

    CLabelCache& labels() { return labels_; }

private:
    QRect boundsOf(const CHardware& device, const Figure& figure);

    void drawIcon(QPainter& painter, const CHardware& device, const Figure& figure);
    void drawHighlight(QPainter& painter, const CHardware& device, const Figure& figure);
    void drawFoundReminder(const FloorCanvas& canvas, const CHardware& device, const Figure& figure,
                           QRect clip);
    void drawPhoto(QPainter& painter, const CHardware& device, const Figure& figure);
    void drawLines(QPainter& painter, const CHardware& device, const Figure& figure);
    void drawRing(QPainter& painter, const CHardware& device, const Figure& figure);
    void drawMarkedArea(QPainter& painter, const CHardware& device);

    QImage photoOf(const CHardware& device);
    QRect photoRect(QSize photo, const Figure& figure) const;
    bool showsMarkedArea(const CHardware& device) const;
    bool showsRing(const CHardware& device) const;
    std::vector<QPoint> markedAreaPoints(const CHardware& device) const;

    const DisplaySettings& display_;
    CIconSet& icons_;
    CPhotoStore& photos_;
    CLabelCache labels_;
    FloorViewState state_;
    int penWidth_ = 2;
};

} // namespace mirovane
