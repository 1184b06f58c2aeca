#include "ui/floor/FloorPan.h"

#include "ui/floor/geometry/FloorGeometry.h"

#include <QScrollBar>

#include <utility>

namespace mirovane {

namespace {

constexpr int pushInterval = 40; // ms; a window's width in some three seconds

} // namespace

CFloorPan::CFloorPan(QAbstractScrollArea& view, std::function<void(QPoint)> pointerStays)
    : view_(view), pointerStays_(std::move(pointerStays)) {
    pushing_.setInterval(pushInterval);
    QObject::connect(&pushing_, &QTimer::timeout, &view_, [this] { pointerStays_(pushedTo_); });
}

void CFloorPan::setSpaceHeld(bool held) {
    spaceHeld_ = held;
    showCursor();
}

void CFloorPan::begin(QPoint windowPoint) {
    grip_ = Grip{windowPoint, scroll()};
    showCursor();
}

void CFloorPan::moveTo(QPoint windowPoint) {
    if (grip_)
        scrollTo(grip_->scroll - (windowPoint - grip_->at));
}

void CFloorPan::end() {
    grip_.reset();
    showCursor();
}

void CFloorPan::showCursor() {
    if (grip_)
        view_.viewport()->setCursor(Qt::ClosedHandCursor);
    else if (spaceHeld_)
        view_.viewport()->setCursor(Qt::OpenHandCursor);
    else if (leaves_)
        view_.viewport()->setCursor(Qt::DragMoveCursor);
    else
        view_.viewport()->unsetCursor();
}

void CFloorPan::showLeaving(bool leaves) {
    if (leaves_ == leaves)
        return;
    leaves_ = leaves;
    showCursor();
}

void CFloorPan::pushTo(QPoint windowPoint) {
    pushedTo_ = windowPoint;
    const QPoint step = autoScroll(windowPoint, view_.viewport()->size());
    const QPoint before = scroll();
    scrollTo(before + step);
    if (scroll() == before)
        pushing_.stop();
    else if (!pushing_.isActive())
        pushing_.start();
}

QPoint CFloorPan::scroll() const {
    return {view_.horizontalScrollBar()->value(), view_.verticalScrollBar()->value()};
}

void CFloorPan::scrollTo(QPoint scroll) {
    view_.horizontalScrollBar()->setValue(scroll.x());
    view_.verticalScrollBar()->setValue(scroll.y());
}

} // namespace mirovane
