#pragma once

#include "ui/floor/geometry/ZoomSteps.h"

#include <QObject>

class QPinchGesture;
class QNativeGestureEvent;
class QWheelEvent;

namespace mirovane {

class CMirovaneView;
class CSettings;

/// Zooms a view of the floor, by command and by what the hand does over it: Ctrl with the wheel, and two
/// fingers. Each change is stored in the user's settings at once; fingers store when they let go. The display
/// settings hold the percentages, the view the label height. Main thread; everything given outlives the
/// object.
class CFloorZooming : public QObject {
    Q_OBJECT

public:
    CFloorZooming(CMirovaneView& view, DisplaySettings& display, CSettings& settings);

    /// The middle of the view stays where it is.
    void run(ZoomCommand command);

    /// What the Custom Zoom dialog starts with: the values that are stored.
    ZoomState stored() const;

    void custom(std::int32_t ZoomPercent, std::int32_t ZoomDevicesPercent, std::int32_t ZoomFontScale);

    /// The dialog was cancelled: only the label height follows the stored values.
    void customCancelled();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    ZoomState current() const;
    void apply(const ZoomState& zoom, QPoint fixedPoint);
    void applyInMiddle(const ZoomState& zoom);

    /// What was at one point of the window is at the other.
    void applyAround(const ZoomState& zoom, QPoint from, QPoint to);
    void store() const;
    bool wheel(const QWheelEvent& event);
    bool fingers(const QNativeGestureEvent& event);
    bool pinch(const QPinchGesture& gesture);
    void pinchBy(double factor, QPoint at);

    CMirovaneView& view_;
    DisplaySettings& display_;
    CSettings& settings_;
    int wheelRest_ = 0;     ///< turned, but not by a whole notch yet
    double pinched_ = 1;    ///< since the fingers came down
    ZoomState beforePinch_; ///< what `pinched_` is counted from
};

} // namespace mirovane
