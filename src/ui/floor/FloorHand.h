#pragma once

#include "model/floor/Arrange.h"
#include "model/floor/Placement.h"
#include "station/Station.h"
#include "ui/floor/FloorGesture.h"
#include "ui/floor/geometry/FloorGeometry.h"
#include "ui/floor/geometry/FloorIndex.h"

#include <cstdint>
#include <vector>

namespace mirovane {

/// What the hand needs of the view.
class FloorHandHost {
public:
    virtual ~FloorHandHost() = default;
    virtual void setSelectedMarker(std::int32_t recID) = 0;

    /// The box, or the line to the pointer while an area is marked, came, went or changed.
    virtual void repaintFloor() = 0;

    /// Other alignment lines than before are to be seen.
    virtual void linesChanged() = 0;

    virtual FloorBounds bounds() = 0;
};

/// The user's hand on the floor: carries out on the station what gestures and keys ask for. Selected devices
/// that are dragged or nudged follow at once and become one edit when the button or the key goes up. Main
/// thread; all references outlive it.
class CFloorHand {
public:
    CFloorHand(CStation& station, const CFloorIndex& index, const CIconSizes& icons, FloorHandHost& host);

    CFloorGesture& gesture() { return gesture_; }
    const CFloorGesture& gesture() const { return gesture_; }

    void press(const FloorPointer& pointer);
    void move(const FloorPointer& pointer);
    void release(const FloorPointer& pointer);
    void giveUp();

    /// The right button works on what is under it: a device that is not selected becomes selected, with Ctrl
    /// beside the others.
    void pressRight(const FloorPointer& pointer);

    /// The selected devices move by map pixels, until nudgeEnds() makes one edit of all. False: nothing is
    /// selected, or the records must be left alone.
    bool nudge(MapPoint by);
    void nudgeEnds();

    /// Selects the next device in reading order alone, the one before for `forward` false; null when there is
    /// no visible device.
    const CHardware* walk(bool forward);

    /// The selected floor devices as they lie on the map.
    std::vector<PlacedDevice> selected() const;

    /// Why what is dragged stopped where it is.
    const std::vector<AlignmentLine>& lines() const { return lines_; }

private:
    struct Dragged {
        PlacedDevice device; ///< where it would be without snapping
        PixelSize icon;      ///< unscaled
    };

    void carryOut(const FloorIntents& intents);
    void gather();
    void follow(MapPoint by, bool snaps);
    void letGo();
    void showLines(const Snap& snap);
    std::vector<PlacedDevice> neighbours(const PlacedDevice& dragged) const;
    PlacedDevice placed(const CHardware& device) const;
    PixelSize iconOf(const CHardware& device) const;

    CStation& station_;
    const CFloorIndex& index_;
    const CIconSizes& icons_;
    FloorHandHost& host_;
    CFloorGesture gesture_;
    std::vector<Dragged> dragged_;
    FloorBounds bounds_; ///< as of the beginning of the drag
    std::vector<AlignmentLine> lines_;
};

} // namespace mirovane
