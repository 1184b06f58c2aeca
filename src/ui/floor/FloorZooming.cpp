#include "ui/floor/FloorZooming.h"

#include "model/Settings.h"
#include "ui/floor/MirovaneView.h"

#include <QGestureEvent>
#include <QNativeGestureEvent>
#include <QPinchGesture>
#include <QWheelEvent>

namespace mirovane {

namespace {

constexpr int wheelNotch = 120; ///< eighths of a degree

} // namespace

CFloorZooming::CFloorZooming(CMirovaneView& view, DisplaySettings& display, CSettings& settings)
    : QObject(&view), view_(view), display_(display), settings_(settings) {
    view_.viewport()->grabGesture(Qt::PinchGesture);
    view_.viewport()->installEventFilter(this);
}

ZoomState CFloorZooming::current() const {
    return zoomStateOf(display_, view_.state().view.LabelFontHeight);
}

void CFloorZooming::run(ZoomCommand command) {
    const QSize client = view_.viewport()->size();
    applyInMiddle(zoomed(current(), command, client, view_.drawing().mapSize()));
    store();
}

ZoomState CFloorZooming::stored() const {
    ZoomState zoom = current();
    zoom.ZoomPercent = settings_.read("ZoomPercent", 100);
    zoom.ZoomDevicesPercent = settings_.read("ZoomDevicesPercent", 100);
    zoom.ZoomFontScale = settings_.read("ZoomFontScale", 0);
    return zoom;
}

void CFloorZooming::custom(std::int32_t ZoomPercent, std::int32_t ZoomDevicesPercent,
                           std::int32_t ZoomFontScale) {
    applyInMiddle(customZoomed(current(), ZoomPercent, ZoomDevicesPercent, ZoomFontScale));
    store();
    settings_.write("ZoomFontScale", ZoomFontScale);
}

void CFloorZooming::customCancelled() {
    ZoomState zoom = current();
    zoom.LabelFontHeight = withStoredFontHeight(stored()).LabelFontHeight;
    apply(zoom, {0, 0});
}

/// Not while a button is down: what is dragged would leave the pointer.
void CFloorZooming::apply(const ZoomState& zoom, QPoint fixedPoint) {
    applyAround(zoom, fixedPoint, fixedPoint);
}

/// Of what is seen of the floor: where the floor is smaller than the window, the window's own middle lies
/// beyond it, and a step inwards would lead to the floor's last corner.
void CFloorZooming::applyInMiddle(const ZoomState& zoom) {
    const QRect window = view_.viewport()->rect();
    const QRect floor(-view_.scaledPoint({0, 0}), view_.drawing().extent(current().ZoomPercent));
    const QRect seen = window & floor;
    applyAround(zoom, seen.isEmpty() ? window.center() : seen.center(), window.center());
}

void CFloorZooming::applyAround(const ZoomState& zoom, QPoint from, QPoint to) {
    const ZoomState before = current();
    if (zoom == before || view_.input().gesture().buttonDown())
        return;
    const QPoint origin =
        originAround(from, view_.scaledPoint({0, 0}), before.ZoomPercent, zoom.ZoomPercent) + from - to;
    display_.ZoomPercent = zoom.ZoomPercent;
    display_.ZoomDevicesPercent = zoom.ZoomDevicesPercent;
    display_.ZoomFontScale = zoom.ZoomFontScale;
    view_.setZoom(zoom.LabelFontHeight, origin);
}

void CFloorZooming::store() const {
    settings_.write("ZoomPercent", display_.ZoomPercent);
    settings_.write("ZoomDevicesPercent", display_.ZoomDevicesPercent);
}

bool CFloorZooming::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
    case QEvent::Wheel:
        return wheel(static_cast<QWheelEvent&>(*event));
    case QEvent::NativeGesture:
        return fingers(static_cast<QNativeGestureEvent&>(*event));
    case QEvent::Gesture:
        if (const QGesture* gesture = static_cast<QGestureEvent*>(event)->gesture(Qt::PinchGesture))
            return pinch(static_cast<const QPinchGesture&>(*gesture));
        return false;
    default:
        return QObject::eventFilter(watched, event);
    }
}

/// Smooth wheels tell parts of a notch; what is left over counts for the next event.
bool CFloorZooming::wheel(const QWheelEvent& event) {
    if (!event.modifiers().testFlag(Qt::ControlModifier))
        return false;
    wheelRest_ += event.angleDelta().y();
    const QPoint at = event.position().toPoint();
    for (; wheelRest_ >= wheelNotch; wheelRest_ -= wheelNotch)
        apply(zoomedByNotch(current(), true), at);
    for (; wheelRest_ <= -wheelNotch; wheelRest_ += wheelNotch)
        apply(zoomedByNotch(current(), false), at);
    store();
    return true;
}

bool CFloorZooming::fingers(const QNativeGestureEvent& event) {
    if (event.gestureType() == Qt::BeginNativeGesture) {
        pinched_ = 1;
        beforePinch_ = current();
    }
    if (event.gestureType() == Qt::EndNativeGesture)
        store();
    if (event.gestureType() != Qt::ZoomNativeGesture)
        return false;
    pinchBy(1 + event.value(), event.position().toPoint());
    return true;
}

bool CFloorZooming::pinch(const QPinchGesture& gesture) {
    if (gesture.state() == Qt::GestureStarted) {
        pinched_ = 1;
        beforePinch_ = current();
    }
    pinchBy(gesture.scaleFactor(), view_.viewport()->mapFromGlobal(gesture.centerPoint()).toPoint());
    if (gesture.state() == Qt::GestureFinished || gesture.state() == Qt::GestureCanceled)
        store();
    return true;
}

/// Counted from where the fingers came down: single events are too small to change a whole percent.
void CFloorZooming::pinchBy(double factor, QPoint at) {
    pinched_ *= factor;
    ZoomState from = beforePinch_;
    from.LabelFontHeight = current().LabelFontHeight;
    apply(zoomedBy(from, pinched_), at);
}

} // namespace mirovane
