#include "ui/floor/FloorInput.h"

#include "ui/floor/MirovaneView.h"

#include <QGuiApplication>

#include <utility>

namespace mirovane {

CFloorInput::CFloorInput(CMirovaneView& view, CStation& station)
    : view_(view),
      station_(station),
      hover_(station.selection(), view.drawing().index(), view.drawing().icons().sizes(), station.display(),
             view.state().view),
      hand_(station, view.drawing().index(), view.drawing().icons().sizes(), *this),
      pan_(view, [this](QPoint at) { drag(at, QGuiApplication::keyboardModifiers()); }) {
    view_.viewport()->installEventFilter(this);
    view_.installEventFilter(this);
}

bool CFloorInput::eventFilter(QObject* watched, QEvent* event) {
    return watched == &view_ ? keyEvent(*event) : pointerEvent(*event);
}

bool CFloorInput::pointerEvent(QEvent& event) {
    switch (event.type()) {
    case QEvent::MouseButtonPress:
        return press(static_cast<QMouseEvent&>(event));
    case QEvent::MouseMove:
        move(static_cast<QMouseEvent&>(event));
        return true;
    case QEvent::MouseButtonRelease:
        return release(static_cast<QMouseEvent&>(event));
    case QEvent::MouseButtonDblClick:
        return doubleClick(static_cast<QMouseEvent&>(event));
    case QEvent::Leave:
        leave();
        return false;
    case QEvent::ContextMenu:
        return std::exchange(markingEnded_, false);
    default:
        return false;
    }
}

bool CFloorInput::keyEvent(QEvent& event) {
    switch (event.type()) {
    case QEvent::KeyPress:
        return keyPress(static_cast<QKeyEvent&>(event));
    case QEvent::KeyRelease:
        if (!static_cast<QKeyEvent&>(event).isAutoRepeat())
            keysReleased();
        return false;
    case QEvent::FocusOut: // nobody will tell when the keys go up
        keysReleased();
        return false;
    default:
        return false;
    }
}

// ---- the pointer

FloorPointer CFloorInput::pointerAt(QPoint windowPoint, Qt::KeyboardModifiers held, bool looks) const {
    FloorPointer pointer;
    pointer.at = view_.scaledPoint(windowPoint);
    pointer.ZoomPercent = view_.state().view.zoom.ZoomPercent;
    pointer.ctrl = held.testFlag(Qt::ControlModifier);
    pointer.free = held.testFlag(Qt::AltModifier);
    pointer.Busy = station_.busy();
    if (looks)
        pointer.hits = hover_.hitsAt(pointer.at);
    return pointer;
}

FloorPointer CFloorInput::pointerAt(const QMouseEvent& event) const {
    return pointerAt(event.position().toPoint(), event.modifiers(), event.type() != QEvent::MouseMove);
}

void CFloorInput::hover(QPoint windowPoint, bool synthetic) {
    const Hover found = hover_.at(view_.scaledPoint(windowPoint), synthetic);
    hover_.showOnly(found.shown);
    if (found.selectedSeen)
        return;
    pointerInMarkedArea_ = found.SelectedMarker != 0;
    setSelectedMarker(found.SelectedMarker);
}

void CFloorInput::floorScrolled() {
    if (pointer_ && gesture().shown().MarkingMarker == 0)
        hover(*pointer_, false);
}

void CFloorInput::tellPointer(std::optional<QPoint> windowPoint) {
    std::optional<MapPoint> at;
    if (windowPoint)
        at = ToMap(*windowPoint, view_.scaledPoint({0, 0}), view_.state().view.zoom.ZoomPercent);
    Q_EMIT pointerMoved(at);
}

void CFloorInput::move(const QMouseEvent& event) {
    const QPoint at = event.position().toPoint();
    pointer_.reset();
    tellPointer(at);
    if (pan_.active()) {
        pan_.moveTo(at);
        return;
    }
    const bool marking = gesture().shown().MarkingMarker != 0;
    if (event.buttons() != Qt::NoButton && !marking) {
        drag(at, event.modifiers());
        return;
    }
    if (gesture().buttonDown()) { // it went up where this window was not told
        hand_.release(pointerAt(event));
        redrawSelected();
    }
    hand_.move(pointerAt(event));
    pointer_ = at;
    if (!marking)
        hover(at, false);
}

/// A box or a device that is dragged beyond the window takes the floor along.
void CFloorInput::drag(QPoint windowPoint, Qt::KeyboardModifiers held) {
    if (!gesture().buttonDown())
        return;
    hand_.move(pointerAt(windowPoint, held, false));
    const bool leaves = leavesFloor(windowPoint);
    pan_.showLeaving(leaves);
    if (leaves)
        pan_.stopPushing();
    else if (gesture().shown().box || gesture().dragging())
        pan_.pushTo(windowPoint);
}

/// The floor keeps the mouse while the button is down, so nobody else sees what comes over another window.
bool CFloorInput::leavesFloor(QPoint windowPoint) const {
    return dropTarget_ && hand_.gesture().dragging() &&
           dropTarget_->isAt(view_.viewport()->mapToGlobal(windowPoint));
}

void CFloorInput::dropElsewhere() {
    hand_.giveUp();
    dropTarget_->devicesDropped();
}

/// Nothing is under the pointer any more.
void CFloorInput::leave() {
    pointer_.reset();
    hover_.showOnly(nullptr);
    tellPointer(std::nullopt);
}

// ---- the buttons

/// A user who clicks wants the floor to stay where it is, so tracking ends. What a key moved is saved before
/// anybody looks for the devices under the pointer: the save may replace the records.
bool CFloorInput::press(const QMouseEvent& event) {
    hand_.nudgeEnds();
    station_.features().liveStat().endTracking();
    markingEnded_ = false;
    const bool left = event.button() == Qt::LeftButton;
    if (event.button() == Qt::MiddleButton || (left && pan_.spaceHeld()))
        pan_.begin(event.position().toPoint());
    else if (left)
        pressLeft(event);
    else if (event.button() == Qt::RightButton)
        pressRight(event);
    else
        return false;
    return true;
}

void CFloorInput::pressLeft(const QMouseEvent& event) {
    view_.endFind();
    const FloorPointer pointer = pointerAt(event);
    hand_.press(pointer);
    redrawSelected();
    if (pointer.Busy || !gesture().buttonDown())
        return;
    hover_.showOnly(nullptr);
    if (pointer.hits.empty())
        return;
    hover(event.position().toPoint(), true);
    const CHardware& topmost = *pointer.hits.front();
    if (!pointer.ctrl && topmost.Type == DeviceType::LocationMarker)
        setSelectedMarker(topmost.RecID);
    if (station_.features().liveStat().settings().LSAutoPerform)
        station_.features().liveStat().performNow();
}

void CFloorInput::pressRight(const QMouseEvent& event) {
    if (const std::int32_t marker = endMarking()) {
        markingEnded_ = true;
        setSelectedMarker(marker);
        return;
    }
    if (!gesture().buttonDown())
        hand_.pressRight(pointerAt(event));
}

bool CFloorInput::release(const QMouseEvent& event) {
    if (pan_.active()) {
        pan_.end();
        return true;
    }
    if (event.button() != Qt::LeftButton)
        return false;
    pan_.stopPushing();
    pan_.showLeaving(false);
    if (leavesFloor(event.position().toPoint()))
        dropElsewhere();
    hand_.release(pointerAt(event));
    redrawSelected();
    return true;
}

/// Its first half was a press and a release, and selected the device.
bool CFloorInput::doubleClick(const QMouseEvent& event) {
    if (event.button() != Qt::LeftButton || gesture().shown().MarkingMarker != 0 || pan_.spaceHeld())
        return press(event);
    station_.features().liveStat().endTracking();
    view_.endFind();
    Q_EMIT propertiesWanted();
    return true;
}

void CFloorInput::startMarking(std::int32_t recID) {
    gesture().startMarking(recID, true);
    view_.drawing().invalidateAll();
}

std::int32_t CFloorInput::endMarking() {
    const std::int32_t marker = gesture().endMarking();
    if (marker != 0)
        view_.drawing().invalidateAll();
    return marker;
}

void CFloorInput::checkMarking() {
    const CHardware* marker = station_.document().findDevice(gesture().shown().MarkingMarker);
    if (!marker || marker->Type != DeviceType::LocationMarker)
        endMarking();
}

/// Their labels come and go with the button.
void CFloorInput::redrawSelected() {
    for (const CHardware* device : station_.selection().members(CSelection::Scope::Floor))
        view_.drawing().invalidate(*device);
}

// ---- the keys

bool CFloorInput::keyPress(const QKeyEvent& event) {
    switch (event.key()) {
    case Qt::Key_Escape:
        hand_.giveUp();
        redrawSelected();
        return true;
    case Qt::Key_Space:
        pan_.setSpaceHeld(true);
        return true;
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
        return !event.modifiers().testFlag(Qt::ControlModifier) && walk(event.key() == Qt::Key_Tab);
    default:
        return nudge(event);
    }
}

bool CFloorInput::nudge(const QKeyEvent& event) {
    constexpr std::int32_t farStep = 10;
    const std::int32_t step = event.modifiers().testFlag(Qt::ShiftModifier) ? farStep : 1;
    switch (event.key()) {
    case Qt::Key_Left:
        return hand_.nudge({-step, 0});
    case Qt::Key_Right:
        return hand_.nudge({step, 0});
    case Qt::Key_Up:
        return hand_.nudge({0, -step});
    case Qt::Key_Down:
        return hand_.nudge({0, step});
    default:
        return false;
    }
}

/// Where there is no device to go to, the key leads to the next control as everywhere.
bool CFloorInput::walk(bool forward) {
    hand_.nudgeEnds();
    const CHardware* device = station_.busy() || gesture().buttonDown() ? nullptr : hand_.walk(forward);
    if (device)
        view_.showDevice(*device);
    return device != nullptr;
}

/// A key that is held repeats; what it did is saved once.
void CFloorInput::keysReleased() {
    hand_.nudgeEnds();
    pan_.setSpaceHeld(false);
}

// ---- what the hand asks for

void CFloorInput::setSelectedMarker(std::int32_t recID) {
    view_.setSelectedMarker(recID);
}

/// The box is on top of everything, and so is the line to the pointer unless its marker is not.
void CFloorInput::repaintFloor() {
    view_.drawing().invalidateTop();
    if (const CHardware* marker = station_.document().findDevice(gesture().shown().MarkingMarker))
        view_.drawing().invalidate(*marker);
}

const CHardware* CFloorInput::deviceUnder(QPoint windowPoint) const {
    const auto hits = hover_.hitsAt(view_.scaledPoint(windowPoint));
    return hits.empty() ? nullptr : hits.front();
}

void CFloorInput::linesChanged() {
    view_.viewport()->update();
}

/// Without a map devices may be put wherever one sees floor.
FloorBounds CFloorInput::bounds() {
    const FloorZoom& zoom = view_.state().view.zoom;
    QSize extent = view_.drawing().extent(zoom.ZoomPercent);
    if (view_.drawing().mapSize().isEmpty()) {
        const QPoint end = view_.scaledPoint({view_.viewport()->width(), view_.viewport()->height()});
        extent = extent.expandedTo({end.x(), end.y()});
    }
    return {{extent.width(), extent.height()}, zoom.ZoomPercent, zoom.ZoomDevicesPercent};
}

} // namespace mirovane
