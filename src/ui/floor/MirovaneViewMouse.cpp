#include "ui/floor/HoverRule.h"
#include "ui/floor/MirovaneView.h"

#include <QMouseEvent>
#include <QScrollBar>

#include <vector>

namespace mirovane {

QPoint CMirovaneView::scaledPoint(QPoint windowPoint) const {
    return windowPoint + QPoint(horizontalScrollBar()->value(), verticalScrollBar()->value());
}

void CMirovaneView::hover(QPoint windowPoint, bool synthetic) {
    state_.LastPoint = scaledPoint(windowPoint);
    const Hover found = hoverAt(document_, index_, icons_.sizes(), state_.LastPoint, synthetic);
    showOnly(document_, index_, found.shown);
    if (!found.selectedSeen)
        setSelectedMarker(found.SelectedMarker);
}

void CMirovaneView::clearHover() {
    showOnly(document_, index_, nullptr);
}

void CMirovaneView::mouseMoveEvent(QMouseEvent* event) {
    pointer_.reset();
    if (event->buttons() != Qt::NoButton)
        return;
    pointer_ = event->position().toPoint();
    hover(*pointer_, false);
}

/// The pointer has left: nothing is under it any more.
bool CMirovaneView::viewportEvent(QEvent* event) {
    if (event->type() == QEvent::Leave) {
        pointer_.reset();
        clearHover();
    }
    return QAbstractScrollArea::viewportEvent(event);
}

/// Also the first half of a double-click. Who clicks wants the floor to stay where it is.
void CMirovaneView::mousePressEvent(QMouseEvent* event) {
    station_.liveStat().endTracking();
    if (event->button() != Qt::LeftButton) {
        QAbstractScrollArea::mousePressEvent(event);
        return;
    }
    state_.labels.LabelsShown = false;
    select(event->position().toPoint(), event->modifiers().testFlag(Qt::ControlModifier));
}

void CMirovaneView::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) {
        QAbstractScrollArea::mouseReleaseEvent(event);
        return;
    }
    state_.labels.LabelsShown = true;
    for (const CHardware* device : index_.selected())
        frame_.invalidate(*device);
    scheduleFlush();
}

/// A click selects the topmost device under it, alone; with Ctrl held it joins or leaves the selection.
void CMirovaneView::select(QPoint windowPoint, bool additive) {
    const CHardware* hit = topmostAt(document_, index_, icons_.sizes(), scaledPoint(windowPoint));
    const std::vector<const CHardware*> before(index_.selected().begin(), index_.selected().end());
    for (const CHardware* device : before) {
        frame_.invalidate(*device);
        if (!additive && device != hit)
            document_.setSelected(*device, false);
    }
    clearHover();
    scheduleFlush();
    if (!hit)
        return;
    document_.setSelected(*hit, !(additive && hit->Selected));
    hover(windowPoint, true);
    if (hit->Selected && hit->Type == DeviceType::LocationMarker)
        setSelectedMarker(hit->RecID);
    if (hit->Selected && station_.liveStatSettings().LSAutoPerform)
        station_.liveStatNow();
}

} // namespace mirovane
