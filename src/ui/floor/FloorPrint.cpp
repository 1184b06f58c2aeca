#include "ui/floor/FloorPrint.h"

#include <QPageLayout>
#include <QPagedPaintDevice>
#include <QPainter>

namespace mirovane {

namespace {

/// The printable part of a page, in device pixels from the corner of the paper.
QRect printableOf(const QPagedPaintDevice& paper) {
    QPageLayout layout = paper.pageLayout();
    layout.setMode(QPageLayout::StandardMode);
    return layout.paintRectPixels(paper.logicalDpiX());
}

QRect paperOf(const QPagedPaintDevice& paper) {
    return paper.pageLayout().fullRectPixels(paper.logicalDpiX());
}

QString pageText(const PrintPlan& plan, int number) {
    const QString text = CFloorPrint::tr("Page %1 of %2").arg(number + 1).arg(plan.pages());
    if (plan.columns() == 1 || plan.rows() == 1)
        return text;
    return text + CFloorPrint::tr(" (row %1, column %2)")
                      .arg(number / plan.columns() + 1)
                      .arg(number % plan.columns() + 1);
}

/// Centred in the margin under the page; left out where the margin has no room for it.
void drawPageNumber(QPainter& painter, const QString& text, QRect printable, QRect paper) {
    const QRect margin(QPoint(printable.left(), printable.bottom() + 1),
                       QPoint(printable.right(), paper.bottom()));
    QFont font(QStringLiteral("Liberation Sans"), 8);
    font.setStyleHint(QFont::SansSerif);
    painter.setFont(font);
    if (painter.fontMetrics().height() > margin.height())
        return;
    painter.setPen(Qt::black);
    painter.drawText(margin, Qt::AlignCenter, text);
}

} // namespace

CFloorPrint::CFloorPrint(const FloorSources& sources, const FloorViewState& state, const ZoomState& zoom)
    : sources_(sources), state_(state), zoom_(zoom) {}

PrintPlan CFloorPrint::plan(const QPagedPaintDevice& paper) const {
    const QSize page = printableOf(paper).size();
    const ZoomState zoom = printZoom(zoom_, page);
    const CMapPicture* map = sources_.map.picture();
    const QSize extent = scrollExtent(sources_.document, map ? map->size() : QSize(0, 0),
                                      sources_.icons.sizes(), zoom.ZoomPercent);
    return planPrint(zoom, page, extent, state_.gesture.box);
}

/// Drawn on the whole paper, so that the page numbers reach the margin.
bool CFloorPrint::print(QPagedPaintDevice& paper, const PrintPlan& plan, PageRange pages) const {
    const QRect printable = printableOf(paper);
    const QPageLayout before = paper.pageLayout();
    QPageLayout whole = before;
    whole.setMode(QPageLayout::FullPageMode);
    paper.setPageLayout(whole);
    bool drawn = false;
    {
        QPainter painter(&paper);
        drawn = painter.isActive();
        for (int number = pages.first; drawn && number <= pages.last; ++number) {
            if (number > pages.first && !paper.newPage()) {
                drawn = false;
                break;
            }
            drawPage(painter, plan, number, printable);
            drawPageNumber(painter, pageText(plan, number), printable, paperOf(paper));
        }
        drawn = drawn && painter.end();
    }
    paper.setPageLayout(before);
    return drawn;
}

void CFloorPrint::drawPage(QPainter& painter, const PrintPlan& plan, int number, QRect printable) const {
    FloorViewState state = state_;
    state.view = plan.view(number);
    state.gesture = {};
    state.gesture.MarkingMarker = state_.gesture.MarkingMarker;
    CFloorPainter floor(sources_);
    painter.save();
    painter.translate(printable.topLeft());
    floor.Draw({painter}, QRect(QPoint(0, 0), state.view.client), state);
    painter.restore();
}

} // namespace mirovane
