#pragma once

#include "ui/floor/geometry/FloorView.h"
#include "ui/floor/geometry/ZoomSteps.h"

#include <QPoint>
#include <QSize>

#include <optional>

namespace mirovane {

/// How many times larger than on the screen a page of so many printer pixels shows the floor; at least 1.
int printFactor(QSize page);

/// The zooms and the label height for a print job, from those of the window.
ZoomState printZoom(const ZoomState& screen, QSize page);

/// The pages of one print job: tiles of the printable page size over the printed area, left to right, then
/// from top to bottom. A plain value, in printer pixels.
struct PrintPlan {
    ZoomState zoom;
    QSize page;                ///< printable part of one page
    QPoint corner;             ///< of the printed area, scaled coordinates
    QSize area;                ///< of the printed area
    std::optional<MapBox> box; ///< normalised; nothing: the whole floor

    int columns() const;
    int rows() const;
    qint64 pages() const { return qint64{columns()} * rows(); }

    /// What page `number` shows, counted from 0. The last tiles of a row or column end with the area.
    FloorView view(int number) const;
};

/// More pages than anybody means to print: a device that was dragged far away by mistake.
constexpr qint64 mostPrintPages = 2000;

/// `extent` is the scroll extent at the zoom of the job (`printZoom`). A floor without anything on it is one
/// empty page.
PrintPlan planPrint(const ZoomState& zoom, QSize page, QSize extent, const std::optional<MapBox>& box);

} // namespace mirovane
