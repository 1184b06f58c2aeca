#pragma once

#include <QAbstractScrollArea>
#include <QTimer>

#include <functional>
#include <optional>

namespace mirovane {

/// The floor follows the pointer: dragged by the middle button or with Space held, and pushed on by a pointer
/// that drags something out of the window. Main thread; belongs to the view that it scrolls.
class CFloorPan {
public:
    /// `pointerStays` is called while the floor is pushed on under a pointer that rests outside the window:
    /// what it drags comes to another place with each step.
    CFloorPan(QAbstractScrollArea& view, std::function<void(QPoint windowPoint)> pointerStays);

    /// Space went down or up: with it, the left button drags the floor.
    void setSpaceHeld(bool held);
    bool spaceHeld() const { return spaceHeld_; }

    void begin(QPoint windowPoint);
    bool active() const { return grip_.has_value(); }
    void moveTo(QPoint windowPoint);
    void end();

    /// Something is dragged to this point: a step toward it when it is outside, and more until it is inside
    /// again or stopPushing() is called.
    void pushTo(QPoint windowPoint);
    void stopPushing() { pushing_.stop(); }

    /// What is dragged would be dropped into another window.
    void showLeaving(bool leaves);

private:
    struct Grip {
        QPoint at;     ///< window coordinates
        QPoint scroll; ///< at that moment
    };

    QPoint scroll() const;
    void scrollTo(QPoint scroll);
    void showCursor();

    QAbstractScrollArea& view_;
    std::function<void(QPoint)> pointerStays_;
    std::optional<Grip> grip_;
    QPoint pushedTo_;
    QTimer pushing_;
    bool spaceHeld_ = false;
    bool leaves_ = false;
};

} // namespace mirovane
