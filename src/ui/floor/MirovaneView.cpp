#include "ui/floor/MirovaneView.h"

#include "model/records/Text.h"
#include "ui/floor/FloorToolTip.h"
#include "ui/floor/geometry/FontBands.h"
#include "ui/floor/map/MapReadingNote.h"

#include <QKeyEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>

#include <algorithm>

namespace mirovane {

namespace {

constexpr int lineStep = 20;

void setUp(QAbstractScrollArea& view) {
    view.setObjectName(QStringLiteral("floorView"));
    view.setAccessibleName(CMirovaneView::tr("Floor plan"));
    view.setFrameShape(QFrame::NoFrame);
    view.setFocusPolicy(Qt::StrongFocus);
    view.viewport()->setMouseTracking(true);
    view.viewport()->setAttribute(Qt::WA_OpaquePaintEvent);
    view.horizontalScrollBar()->setSingleStep(lineStep);
    view.verticalScrollBar()->setSingleStep(lineStep);
}

void blit(QPainter& painter, const QImage& frame, const QRegion& region, qreal ratio) {
    if (ratio == 1.0) {
        for (const QRect& part : region)
            painter.drawImage(part, frame, part);
        return;
    }
    painter.setClipRegion(region);
    painter.drawImage(QRectF(QPointF(0, 0), QSizeF(frame.size()) / ratio), frame, QRectF(frame.rect()));
}

void paintHint(QPainter& painter, const QAbstractScrollArea& view) {
    QFont title = view.font();
    title.setPointSizeF(title.pointSizeF() * 1.5);
    const int lift = QFontMetrics(title).height();
    const QRect area = view.viewport()->rect().adjusted(20, 0, -20, -lift);
    painter.setPen(QColor(90, 90, 90));
    painter.setFont(title);
    painter.drawText(area, Qt::AlignCenter | Qt::TextWordWrap, CMirovaneView::tr("This floor is empty"));
    painter.setFont(view.font());
    painter.setPen(QColor(120, 120, 120));
    painter.drawText(
        area.translated(0, 2 * lift), Qt::AlignCenter | Qt::TextWordWrap,
        CMirovaneView::tr("Choose a picture of it with Tools \u203a Floor Map..., add devices with "
                          "Tools \u203a Add Computer and its like, or open a datafile with "
                          "Ctrl+O."));
}

} // namespace

CMirovaneView::CMirovaneView(CStation& station, CMessageLog& log, QWidget* parent)
    : QAbstractScrollArea(parent),
      station_(station),
      log_(log),
      drawing_(station.document(), station.datafile(), display()),
      input_(*this, station),
      rings_(station.features().liveStat()) {
    setUp(*this);
    new CFloorToolTip(*this);
    connect(&drawing_, &CFloorDrawing::mapReading, new CMapReadingNote(viewport()),
            &CMapReadingNote::setReading);
    state_.view.zoom = floorZoom(display());
    state_.view.LabelFontHeight = startLabelFontHeight(display());
    connect(&drawing_, &CFloorDrawing::outdated, this, &CMirovaneView::scheduleFlush);
    connect(&drawing_, &CFloorDrawing::mapFailed, this, [this](const QString& sentence, bool missing) {
        if (!missing)
            log_.LogMessage(sentence.toStdString(), true);
        Q_EMIT floorMapFailed(sentence, missing);
    });
    station_.addObserver(*this);
    station_.document().addObserver(*this);
    documentReplaced();
}

CMirovaneView::~CMirovaneView() {
    station_.removeObserver(*this);
    station_.document().removeObserver(*this);
}

// ---- what the station tells

void CMirovaneView::refreshRings() {
    for (const std::int32_t recID : rings_.refresh())
        if (const CHardware* device = station_.document().findDevice(recID))
            drawing_.invalidate(*device);
}

void CMirovaneView::remindersChanged() {
    state_.ReminderPhase = station_.reminders().ReminderPhase();
    if (display().ReminderDeviceShow)
        drawing_.invalidateAll();
}

void CMirovaneView::deviceTracked(std::int32_t recID) {
    if (const CHardware* device = station_.document().findDevice(recID))
        showDevice(*device);
}

// ---- what the document tells; the drawing follows the rest

void CMirovaneView::recordRemoved(const CHardware& record) {
    if (record.RecID == input_.gesture().shown().MarkingMarker)
        input_.endMarking();
}

void CMirovaneView::recordRenumbered(std::int32_t oldRecID, std::int32_t newRecID) {
    input_.gesture().renumber(oldRecID, newRecID);
    if (state_.SelectedMarker == oldRecID)
        state_.SelectedMarker = newRecID;
}

/// A reload by another station's save keeps the place where the user looks and what he has found; another
/// datafile starts at the corner.
void CMirovaneView::documentReplaced() {
    rings_.refresh();
    const QString datafile = QString::fromStdString(displayText(station_.datafile().path()));
    if (datafile != datafile_ || datafile.isEmpty()) {
        state_.find = {};
        state_.SelectedMarker = 0;
        input_.gesture().reset();
        horizontalScrollBar()->setValue(0);
        verticalScrollBar()->setValue(0);
    }
    datafile_ = datafile;
    input_.checkMarking();
    scheduleFlush();
}

void CMirovaneView::setSelectedMarker(std::int32_t recID) {
    if (state_.SelectedMarker == recID)
        return;
    const std::int32_t before = state_.SelectedMarker;
    state_.SelectedMarker = recID;
    for (const std::int32_t marker : {before, recID})
        if (const CHardware* device = station_.document().findDevice(marker))
            drawing_.invalidate(*device);
    Q_EMIT selectedMarkerChanged(recID);
}

// ---- painting

void CMirovaneView::scheduleFlush() {
    if (flushPending_)
        return;
    flushPending_ = true;
    QMetaObject::invokeMethod(this, &CMirovaneView::flush, Qt::QueuedConnection);
}

/// Draws what became stale off screen and has just that part copied to the screen.
void CMirovaneView::flush() {
    flushPending_ = false;
    UpdateScrollExtent();
    if (!isVisible())
        return;
    const QRect redrawn = redraw();
    viewport()->update(drawing_.empty() ? viewport()->rect() : redrawn);
}

QRect CMirovaneView::redraw() {
    state_.view.zoom = floorZoom(display());
    state_.view.origin = scaledPoint({0, 0});
    state_.view.client = viewport()->size();
    state_.view.ratio = devicePixelRatioF();
    state_.gesture = input_.gesture().shown();
    state_.liveStatHolds = rings_.held();
    return drawing_.draw(state_);
}

void CMirovaneView::paintEvent(QPaintEvent* event) {
    if (drawing_.extentStale(floorZoom(display()).ZoomPercent))
        scheduleFlush();
    const QRect redrawn = redraw();
    QPainter painter(viewport());
    blit(painter, drawing_.image(), event->region(), devicePixelRatioF());
    if (drawing_.empty())
        paintHint(painter, *this);
    paintLines(painter);
    if (!redrawn.isEmpty() && !event->rect().contains(redrawn & viewport()->rect()))
        viewport()->update(redrawn);
}

/// Over the picture, so that a drag does not draw the floor again for them.
void CMirovaneView::paintLines(QPainter& painter) const {
    painter.setPen(QPen(QColor(230, 0, 120), 1, Qt::DashLine));
    for (const AlignmentLine& line : input_.hand().lines())
        painter.drawLine(state_.view.toFrame(line.from), state_.view.toFrame(line.to));
}

bool CMirovaneView::settled() const {
    return !flushPending_ && drawing_.settled();
}

// ---- scrolling

QPoint CMirovaneView::scaledPoint(QPoint windowPoint) const {
    return windowPoint + QPoint(horizontalScrollBar()->value(), verticalScrollBar()->value());
}

/// Costs next to nothing while neither the extent nor the window changed.
void CMirovaneView::UpdateScrollExtent() {
    const QSize extent = drawing_.extent(floorZoom(display()).ZoomPercent);
    const QSize page = viewport()->size();
    horizontalScrollBar()->setRange(0, std::max(0, extent.width() - page.width()));
    verticalScrollBar()->setRange(0, std::max(0, extent.height() - page.height()));
    horizontalScrollBar()->setPageStep(page.width());
    verticalScrollBar()->setPageStep(page.height());
}

void CMirovaneView::setZoom(std::int32_t LabelFontHeight, QPoint origin) {
    state_.view.zoom = floorZoom(display());
    state_.view.LabelFontHeight = LabelFontHeight;
    UpdateScrollExtent();
    horizontalScrollBar()->setValue(origin.x());
    verticalScrollBar()->setValue(origin.y());
    viewport()->update();
}

void CMirovaneView::showDevice(const CHardware& device) {
    if (!device.onFloor())
        return;
    UpdateScrollExtent();
    const QPoint at = toScaled(device.Position, floorZoom(display()).ZoomPercent);
    if (const auto wanted = scrollToShow(at, scaledPoint({0, 0}), viewport()->size())) {
        horizontalScrollBar()->setValue(wanted->x());
        verticalScrollBar()->setValue(wanted->y());
    }
    input_.showLabels(device);
}

void CMirovaneView::centreOn(const CHardware& device) {
    showDevice(device);
    const QPoint middle = iconRect(device).center() - viewport()->rect().center();
    horizontalScrollBar()->setValue(horizontalScrollBar()->value() + middle.x());
    verticalScrollBar()->setValue(verticalScrollBar()->value() + middle.y());
}

QRect CMirovaneView::iconRect(const CHardware& device) const {
    const FloorZoom zoom = floorZoom(display());
    const QSize icon = drawing_.icons().sizes().of(device.Type);
    return {ToWindow(device.Position, scaledPoint({0, 0}), zoom.ZoomPercent),
            scaled(icon, zoom.ZoomDevicesPercent)};
}

void CMirovaneView::setFind(const FindState& find) {
    state_.find = find;
    drawing_.invalidateAll();
}

void CMirovaneView::resizeEvent(QResizeEvent* event) {
    QAbstractScrollArea::resizeEvent(event);
    scheduleFlush();
}

void CMirovaneView::scrollContentsBy(int, int) {
    input_.floorScrolled();
    viewport()->update();
}

void CMirovaneView::wheelEvent(QWheelEvent* event) {
    const bool sideways = event->modifiers().testFlag(Qt::ShiftModifier) && event->angleDelta().x() == 0;
    if (!sideways) {
        QAbstractScrollArea::wheelEvent(event);
        return;
    }
    QScrollBar* bar = horizontalScrollBar();
    bar->setValue(bar->value() - event->angleDelta().y() * 3 * lineStep / 120);
    event->accept();
}

void CMirovaneView::keyPressEvent(QKeyEvent* event) {
    const bool both = event->modifiers().testFlag(Qt::ControlModifier);
    const auto go = [this, both](bool toEnd) {
        QScrollBar* across = horizontalScrollBar();
        across->setValue(toEnd ? across->maximum() : 0);
        if (both)
            verticalScrollBar()->setValue(toEnd ? verticalScrollBar()->maximum() : 0);
    };
    if (event->key() == Qt::Key_Home)
        go(false);
    else if (event->key() == Qt::Key_End)
        go(true);
    else
        QAbstractScrollArea::keyPressEvent(event);
}

// ---- what the input and the commands ask for

void CMirovaneView::endFind() {
    if (state_.find.clicked())
        drawing_.invalidateAll();
}

FloorWindow CMirovaneView::window() const {
    const QPoint scroll = scaledPoint({0, 0});
    const QSize client = viewport()->size();
    const QSize map = drawing_.mapSize();
    return {{scroll.x(), scroll.y()},
            {client.width(), client.height()},
            {map.width(), map.height()},
            state_.view.zoom.ZoomPercent};
}

} // namespace mirovane
