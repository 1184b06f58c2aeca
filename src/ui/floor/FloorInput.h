#pragma once

#include "station/Station.h"
#include "ui/floor/FloorHand.h"
#include "ui/floor/FloorHover.h"
#include "ui/floor/FloorPan.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QObject>

#include <cstdint>
#include <optional>

namespace mirovane {

class CMirovaneView;

/// A window beside the floor that takes devices which are dragged off it.
class FloorDropTarget {
public:
    virtual ~FloorDropTarget() = default;

    /// It is what one sees at this point of the screen.
    virtual bool isAt(QPoint screenPoint) const = 0;

    /// The selected devices were let go over it, and are on the floor where they were before the drag.
    virtual void devicesDropped() = 0;
};

/// Mouse and keys on the floor: turns the events of the view into gestures, hover and scrolling. Belongs to
/// the view. Main thread.
class CFloorInput : public QObject, private FloorHandHost {
    Q_OBJECT

public:
    /// The station outlives the view.
    CFloorInput(CMirovaneView& view, CStation& station);

    CFloorGesture& gesture() { return hand_.gesture(); }
    const CFloorHand& hand() const { return hand_; }

    /// The pointer is in the area of SelectedMarker, or was when it left the floor for a menu.
    bool PointerInMarkedArea() const { return pointerInMarkedArea_; }

    /// From now on each click adds a corner to the area of this Location Marker, until a right click. The
    /// first one takes the place of the area that it has.
    void startMarking(std::int32_t recID);

    /// The area stays as it is marked so far. Returns whose it is, 0 when none was being marked.
    std::int32_t endMarking();

    /// The marker whose area is being marked may have been deleted, here or by a colleague.
    void checkMarking();

    /// What an arrow key that is still held has moved becomes an edit now, before another command.
    void endNudge() { hand_.nudgeEnds(); }

    /// The topmost visible device at a point of the window; null when there is none.
    const CHardware* deviceUnder(QPoint windowPoint) const;

    /// This device shows all its labels until the pointer moves.
    void showLabels(const CHardware& device) { hover_.showOnly(&device); }

    /// Outlives the view; null: devices stay on the floor.
    void setDropTarget(FloorDropTarget* target) { dropTarget_ = target; }

    /// Another device may have come to lie under a pointer that rests.
    void floorScrolled();

Q_SIGNALS:
    /// Where the pointer is on the map; nothing when it has left.
    void pointerMoved(std::optional<mirovane::MapPoint> at);

    /// A double-click: the properties of the selected devices are to be shown.
    void propertiesWanted();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // FloorHandHost
    void setSelectedMarker(std::int32_t recID) override;
    void repaintFloor() override;
    void linesChanged() override;
    FloorBounds bounds() override;

    bool pointerEvent(QEvent& event);
    bool keyEvent(QEvent& event);
    bool press(const QMouseEvent& event);
    void pressLeft(const QMouseEvent& event);
    void pressRight(const QMouseEvent& event);
    void move(const QMouseEvent& event);
    bool release(const QMouseEvent& event);
    bool doubleClick(const QMouseEvent& event);
    void leave();
    bool keyPress(const QKeyEvent& event);
    bool nudge(const QKeyEvent& event);
    bool walk(bool forward);
    void keysReleased();
    void drag(QPoint windowPoint, Qt::KeyboardModifiers held);
    void dropElsewhere();
    bool leavesFloor(QPoint windowPoint) const;
    void hover(QPoint windowPoint, bool synthetic);
    void tellPointer(std::optional<QPoint> windowPoint);
    void redrawSelected();
    FloorPointer pointerAt(QPoint windowPoint, Qt::KeyboardModifiers held, bool looks) const;
    FloorPointer pointerAt(const QMouseEvent& event) const;

    CMirovaneView& view_;
    CStation& station_;
    CFloorHover hover_;
    CFloorHand hand_;
    CFloorPan pan_;
    FloorDropTarget* dropTarget_ = nullptr;
    std::optional<QPoint> pointer_; ///< where it rests over the floor, in window coordinates
    bool pointerInMarkedArea_ = false;
    bool markingEnded_ = false; ///< by the right button, whose menu is not wanted this time
};

} // namespace mirovane
