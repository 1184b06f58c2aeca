#pragma once

#include "ui/floor/geometry/PrintPlan.h"
#include "ui/floor/paint/FloorPainter.h"

#include <QCoreApplication>

class QPagedPaintDevice;

namespace mirovane {

/// Which of the pages are to be printed, counted from 0.
struct PageRange {
    int first = 0;
    int last = 0;
};

/// The floor on paper: the box, or all of it, in tiles of a page each with its number in the margin. Shares
/// the map, the icons and the photos with whoever shows them on a screen, and changes nothing of what is
/// shown there. Main thread.
class CFloorPrint {
    Q_DECLARE_TR_FUNCTIONS(CFloorPrint)

public:
    /// `state` is that of the screen: what is selected, found and marked is printed like it.
    CFloorPrint(const FloorSources& sources, const FloorViewState& state, const ZoomState& zoom);

    /// For the paper that the device is set to.
    PrintPlan plan(const QPagedPaintDevice& paper) const;

    /// False when the device cannot be drawn on. Ends early when the device ends its work.
    bool print(QPagedPaintDevice& paper, const PrintPlan& plan, PageRange pages) const;

private:
    void drawPage(QPainter& painter, const PrintPlan& plan, int number, QRect printable) const;

    FloorSources sources_;
    FloorViewState state_;
    ZoomState zoom_;
};

} // namespace mirovane
