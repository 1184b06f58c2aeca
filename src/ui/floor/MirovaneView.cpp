#include "ui/floor/MirovaneView.h"

#include "model/Text.h"
#include "ui/floor/FontBands.h"
#include "ui/floor/HoverRule.h"

#include <QDir>
#include <QPaintEvent>
#include <QPainter>
#include <QPointer>
#include <QScrollBar>

#include <algorithm>

namespace mirovane {

namespace {

/// Between two slices of preparing label images events are served: keys and clicks never wait longer than
/// this.
constexpr std::chrono::milliseconds prepareSliceTime{4};

constexpr int lineStep = 20;

} // namespace

CMirovaneView::CMirovaneView(CStation& station, QWidget* parent)
    : QAbstractScrollArea(parent),
      station_(station),
      document_(station.document()),
      photos_(PhotoStore::Reading::Later),
      index_(document_),
      frame_({document_, index_, icons_, map_.tiles(), photos_}),
      painted_(document_.display()) {
    setUpWidget();
    icons_.loadWithFallback(QDir::currentPath());
    state_.LabelFontHeight = startLabelFontHeight(document_.display());
    connect(&map_, &FloorMap::changed, this, [this] {
        extentStale_ = true;
        redraw();
    });
    connect(&map_, &FloorMap::failed, this, [this](const QString& sentence, bool missing) {
        if (!missing)
            document_.log().LogMessage(sentence.toStdString(), true);
        Q_EMIT floorMapFailed(sentence, missing);
    });
    connect(&photos_, &PhotoStore::arrived, this, &CMirovaneView::redraw);
    idle_.setSingleShot(true);
    connect(&idle_, &QTimer::timeout, this, &CMirovaneView::prepareSlice);
    watchStation();
    document_.addObserver(*this);
    documentReplaced();
}

CMirovaneView::~CMirovaneView() {
    document_.removeObserver(*this);
}

void CMirovaneView::setUpWidget() {
    setObjectName(QStringLiteral("floorView"));
    setAccessibleName(tr("Floor plan"));
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::StrongFocus);
    viewport()->setMouseTracking(true);
    viewport()->setAttribute(Qt::WA_OpaquePaintEvent);
    horizontalScrollBar()->setSingleStep(lineStep);
    verticalScrollBar()->setSingleStep(lineStep);
}

/// The station may outlive the view by a while.
void CMirovaneView::watchStation() {
    const auto chain = [this](std::function<void()>& callback) {
        callback = [self = QPointer<CMirovaneView>(this), before = callback] {
            if (before)
                before();
            if (self)
                self->refreshRings();
        };
    };
    chain(station_.onRedraw);
    chain(station_.onIndicators);
    station_.onReminders = [self = QPointer<CMirovaneView>(this), before = station_.onReminders] {
        if (before)
            before();
        if (self)
            self->showReminders();
    };
    station_.onTrack = [self = QPointer<CMirovaneView>(this), before = station_.onTrack](std::int32_t recID) {
        if (before)
            before(recID);
        const CHardware* device = self ? self->document_.findDevice(recID) : nullptr;
        if (device)
            self->showDevice(*device);
    };
}

void CMirovaneView::showReminders() {
    state_.labels.ReminderPhase = station_.reminders().ReminderPhase();
    if (document_.display().ReminderDeviceShow)
        redraw();
}

void CMirovaneView::refreshRings() {
    rings_.clear();
    redraw();
}

bool CMirovaneView::showsRing(std::int32_t recID) {
    const auto [entry, added] = rings_.try_emplace(recID, false);
    if (added)
        entry->second = station_.liveStat().holdsDevice(recID);
    return entry->second;
}

// ---- what changed

void CMirovaneView::recordAdded(const CHardware& record) {
    extentStale_ = true;
    frame_.invalidate(record);
    scheduleFlush();
}

void CMirovaneView::recordChanged(const CHardware& before, const CHardware& after) {
    if (before.Type == SpecialType::FloorMapRecord || after.Type == SpecialType::FloorMapRecord)
        loadMap(true);
    if (before.Position != after.Position || before.Type != after.Type)
        extentStale_ = true;
    if (before.onFloor() || after.onFloor())
        frame_.invalidate(after);
    scheduleFlush();
}

void CMirovaneView::flagsChanged(const CHardware& record) {
    if (!record.onFloor())
        return;
    frame_.invalidate(record);
    scheduleFlush();
}

void CMirovaneView::recordRemoved(const CHardware& record) {
    extentStale_ = true;
    frame_.forget(record);
    scheduleFlush();
}

void CMirovaneView::orderChanged() {
    redraw();
}

void CMirovaneView::recordRenumbered(std::int32_t oldRecID, std::int32_t newRecID) {
    for (std::int32_t* marker : {&state_.SelectedMarker, &state_.MarkingMarker}) {
        if (*marker == oldRecID)
            *marker = newRecID;
    }
}

/// A reload by another station's save keeps the place where the user looks; another datafile starts at the
/// corner.
void CMirovaneView::documentReplaced() {
    frame_.forgetAll();
    rings_.clear();
    photos_.clear();
    extentStale_ = true;
    state_.FindNothingFound = true;
    const QString datafile = QString::fromStdString(displayText(document_.path()));
    if (datafile != datafile_ || datafile.isEmpty()) {
        state_.SelectedMarker = state_.MarkingMarker = 0;
        state_.BoxActive = false;
        horizontalScrollBar()->setValue(0);
        verticalScrollBar()->setValue(0);
    }
    datafile_ = datafile;
    loadMap(!document_.loading());
    scheduleFlush();
}

void CMirovaneView::loadMap(bool again) {
    map_.load(QString::fromStdString(displayText(document_.floorMapPath())), datafile_, again);
}

void CMirovaneView::reloadFloorMap() {
    loadMap(true);
}

void CMirovaneView::redraw() {
    frame_.invalidateAll();
    scheduleFlush();
}

void CMirovaneView::setLabelFontHeight(std::int32_t pixels) {
    state_.LabelFontHeight = std::clamp(pixels, smallestLabelFont, largestLabelFont);
    redraw();
}

void CMirovaneView::setSelectedMarker(std::int32_t recID) {
    if (state_.SelectedMarker == recID)
        return;
    const std::int32_t before = state_.SelectedMarker;
    state_.SelectedMarker = recID;
    for (const std::int32_t marker : {before, recID}) {
        if (const CHardware* device = document_.findDevice(marker))
            frame_.invalidate(*device);
    }
    scheduleFlush();
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
    syncSettings();
    if (extentStale_)
        updateScrollRange();
    if (!isVisible())
        return;
    syncState();
    QRect redrawn;
    frame_.image(&redrawn);
    viewport()->update(nothingOnFloor() ? viewport()->rect() : redrawn);
}

void CMirovaneView::syncSettings() {
    const DisplaySettings& display = document_.display();
    if (display == painted_)
        return;
    extentStale_ = extentStale_ || display.ZoomPercent != painted_.ZoomPercent;
    painted_ = display;
    frame_.invalidateAll();
}

void CMirovaneView::syncState() {
    state_.scroll = QPoint(horizontalScrollBar()->value(), verticalScrollBar()->value());
    state_.client = viewport()->size();
    const CLiveStatScheduler& liveStat = station_.liveStat();
    if (liveStat.enabled() || liveStat.nowActive())
        state_.liveStatHolds = [this](std::int32_t recID) {
            return showsRing(recID);
        };
    else
        state_.liveStatHolds = nullptr;
    frame_.setView(state_, devicePixelRatioF());
}

void CMirovaneView::paintEvent(QPaintEvent* event) {
    syncSettings();
    if (extentStale_)
        scheduleFlush();
    syncState();
    QRect redrawn;
    frame_.image(&redrawn);
    QPainter painter(viewport());
    blit(painter, event->region());
    if (nothingOnFloor())
        paintHint(painter);
    if (!redrawn.isEmpty() && !event->rect().contains(redrawn & viewport()->rect()))
        viewport()->update(redrawn);
    if (!idle_.isActive())
        idle_.start(0);
}

void CMirovaneView::blit(QPainter& painter, const QRegion& region) {
    const QImage& frame = frame_.image();
    const qreal ratio = devicePixelRatioF();
    if (ratio == 1.0) {
        for (const QRect& part : region)
            painter.drawImage(part, frame, part);
        return;
    }
    painter.setClipRegion(region);
    painter.drawImage(QRectF(QPointF(0, 0), QSizeF(frame.size()) / ratio), frame, QRectF(frame.rect()));
}

void CMirovaneView::prepareSlice() {
    if (frame_.prepare(prepareSliceTime))
        idle_.start(0);
}

bool CMirovaneView::settled() const {
    return !flushPending_ && !idle_.isActive() && !frame_.stale() && !map_.loading();
}

bool CMirovaneView::nothingOnFloor() const {
    return index_.size() == 0 && document_.floorMapPath().empty();
}

void CMirovaneView::paintHint(QPainter& painter) {
    QFont title = font();
    title.setPointSizeF(title.pointSizeF() * 1.5);
    const int lift = QFontMetrics(title).height();
    const QRect area = viewport()->rect().adjusted(20, 0, -20, -lift);
    painter.setPen(QColor(90, 90, 90));
    painter.setFont(title);
    painter.drawText(area, Qt::AlignCenter | Qt::TextWordWrap, tr("This floor is empty"));
    painter.setFont(font());
    painter.setPen(QColor(120, 120, 120));
    painter.drawText(
        area.translated(0, 2 * lift), Qt::AlignCenter | Qt::TextWordWrap,
        tr("Choose a picture of it with Tools \u203a Floor Map..., or open a datafile with Ctrl+O."));
}

// ---- scrolling

void CMirovaneView::UpdateScrollExtent() {
    updateScrollRange();
    redraw();
}

void CMirovaneView::updateScrollRange() {
    extentStale_ = false;
    extent_ =
        scrollExtent(document_, map_.size(), icons_.sizes(), floorZoom(document_.display()).ZoomPercent);
    const QSize page = viewport()->size();
    horizontalScrollBar()->setRange(0, std::max(0, extent_.width() - page.width()));
    verticalScrollBar()->setRange(0, std::max(0, extent_.height() - page.height()));
    horizontalScrollBar()->setPageStep(page.width());
    verticalScrollBar()->setPageStep(page.height());
}

void CMirovaneView::showDevice(const CHardware& device) {
    if (!device.onFloor())
        return;
    if (extentStale_) // it takes a walk over the list, and Live Stat's tracking comes every few milliseconds
        updateScrollRange();
    const QPoint scroll(horizontalScrollBar()->value(), verticalScrollBar()->value());
    const QPoint at = toScaled(device.Position, floorZoom(document_.display()).ZoomPercent);
    if (const auto wanted = scrollToShow(at, scroll, viewport()->size())) {
        horizontalScrollBar()->setValue(wanted->x());
        verticalScrollBar()->setValue(wanted->y());
    }
    showOnly(document_, index_, &device);
}

void CMirovaneView::resizeEvent(QResizeEvent* event) {
    QAbstractScrollArea::resizeEvent(event);
    extentStale_ = true;
    scheduleFlush();
}

/// Another device may come to lie under a pointer that rests.
void CMirovaneView::scrollContentsBy(int, int) {
    if (pointer_)
        hover(*pointer_, false);
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

} // namespace mirovane
