#pragma once

#include "model/MapBox.h"
#include "model/records/Hardware.h"
#include "ui/floor/paint/FloorViewState.h"

#include <QPoint>

#include <cstdint>
#include <optional>
#include <variant>
#include <vector>

namespace mirovane {

/// One event of the pointer or of its left button.
struct FloorPointer {
    QPoint at; ///< scaled coordinates
    std::int32_t ZoomPercent = 100;
    bool ctrl = false;
    bool Busy = false; ///< the records must be left alone just now
    bool free = false; ///< what is dragged shall not snap to its neighbours

    /// The visible devices under the pointer, topmost first. Looked at for a press and a release only.
    std::vector<const CHardware*> hits;
};

/// What is to be done about an event. The devices are those of the event.
namespace FloorIntent {
/// Alone on the floor; null: nothing is to be selected there.
struct SelectOnly {
    const CHardware* device;
};
struct AddToSelection {
    std::vector<const CHardware*> devices;
};
struct Deselect {
    const CHardware* device;
};
/// To the end of the list, where nothing is drawn over it.
struct BringToFront {
    const CHardware* device;
};
/// `first`: the drag begins. `free`: without snapping.
struct MoveSelection {
    MapPoint by;
    bool first;
    bool free;
};
/// The devices that were moved are to be saved.
struct FinishMove {};
/// They go back to where they were.
struct GiveUpMove {};
/// `StartNewArea`: the point replaces the area that the marker has.
struct AddMarkerPoint {
    std::int32_t MarkingMarker;
    MapPoint at;
    bool StartNewArea;
};
/// The marker whose area is about to be replaced is not shown as the current one any more.
struct ForgetSelectedMarker {};
/// The box, or the line to the pointer while an area is marked, came, went or changed.
struct Repaint {};
} // namespace FloorIntent

using AnyFloorIntent =
    std::variant<FloorIntent::SelectOnly, FloorIntent::AddToSelection, FloorIntent::Deselect,
                 FloorIntent::BringToFront, FloorIntent::MoveSelection, FloorIntent::FinishMove,
                 FloorIntent::GiveUpMove, FloorIntent::AddMarkerPoint, FloorIntent::ForgetSelectedMarker,
                 FloorIntent::Repaint>;

/// In the order in which they are to be carried out.
using FloorIntents = std::vector<AnyFloorIntent>;

/// What the left button does on the floor: which press begins a drag and which a box, and what a release
/// makes of it. Neither widget nor document: events come in as values, and what is to be done comes out.
/// Main thread.
class CFloorGesture {
public:
    FloorIntents press(const FloorPointer& pointer);

    /// With the button down or up: the state knows.
    FloorIntents move(const FloorPointer& pointer);
    FloorIntents release(const FloorPointer& pointer);

    /// The user thinks better of it: the drag or the box under way ends as if it had not begun, and what is
    /// left of the button's press means nothing. With the button up a box that was left goes.
    FloorIntents giveUp();

    /// From now on each click adds a point to the area of this Location Marker.
    void startMarking(std::int32_t recID, bool StartNewArea);

    /// Returns the marker whose area was being marked; 0 when none was.
    std::int32_t endMarking();

    /// The marker got another record ID.
    void renumber(std::int32_t oldRecID, std::int32_t newRecID);

    /// Another datafile: no box and no marker of the one before.
    void reset();

    /// On the floor, for anything but marking.
    bool buttonDown() const;

    /// The selected devices follow the pointer.
    bool dragging() const { return std::holds_alternative<Dragging>(state_); }

    /// What of it shows on the floor.
    GestureState shown() const;

private:
    struct Idle {};

    /// The button is down and the pointer has not moved.
    struct Pressing {
        QPoint ClickPoint;
        bool startsBox = false;
        bool CtrlClickOnSelected = false;
    };

    /// The pointer moves with the button down, and the selected devices with it.
    struct Dragging {
        QPoint from; ///< up to here the devices have followed
        bool moved = false;
    };
    struct Boxing {
        MapPoint BoxStart;
    };

    /// The button is still down after giveUp().
    struct GivenUp {};

    /// Stays from click to click until endMarking().
    struct Marking {
        std::int32_t MarkingMarker = 0;
        bool StartNewArea = false;
    };

    using State = std::variant<Idle, Pressing, Dragging, Boxing, GivenUp, Marking>;

    FloorIntents pressWithCtrl(const FloorPointer& pointer);
    FloorIntents pressAlone(const FloorPointer& pointer);
    static FloorIntents drag(Dragging& dragging, const FloorPointer& pointer);
    FloorIntents releaseUnmoved(const Pressing& pressing, const FloorPointer& pointer);
    bool labelsHidden() const;
    void leavePressing(const FloorPointer& pointer);
    FloorIntents removeBox();

    State state_;
    QPoint LastPoint_;
    std::optional<MapBox> box_; ///< stays after the button went up, until the next click
};

} // namespace mirovane
