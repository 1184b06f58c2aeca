#include "ui/floor/FloorGesture.h"

#include "ui/floor/geometry/FloorGeometry.h"

#include <algorithm>
#include <utility>

namespace mirovane {

namespace {

/// Scaled coordinates to map coordinates, or a distance in the one to a distance in the other.
MapPoint mapPoint(QPoint scaledPoint, std::int32_t ZoomPercent) {
    return ToMap(scaledPoint, {0, 0}, ZoomPercent);
}

} // namespace

bool CFloorGesture::buttonDown() const {
    return !std::holds_alternative<Idle>(state_) && !std::holds_alternative<Marking>(state_);
}

/// The labels of selected devices would cover where a device is about to go.
bool CFloorGesture::labelsHidden() const {
    return buttonDown() && !std::holds_alternative<GivenUp>(state_);
}

GestureState CFloorGesture::shown() const {
    const auto* marking = std::get_if<Marking>(&state_);
    return {!labelsHidden(), marking ? marking->MarkingMarker : 0, LastPoint_, box_};
}

// ---- press

FloorIntents CFloorGesture::press(const FloorPointer& pointer) {
    if (const auto* marking = std::get_if<Marking>(&state_)) // the point is taken when the button goes up
        return marking->StartNewArea ? FloorIntents{FloorIntent::ForgetSelectedMarker()} : FloorIntents();
    LastPoint_ = pointer.at;
    if (pointer.Busy) {
        state_ = Pressing{pointer.at};
        return {};
    }
    return pointer.ctrl ? pressWithCtrl(pointer) : pressAlone(pointer);
}

/// A device that is selected already is deselected when the button goes up, unless it was dragged until then.
FloorIntents CFloorGesture::pressWithCtrl(const FloorPointer& pointer) {
    const bool onSelected =
        std::ranges::any_of(pointer.hits, [](const CHardware* device) { return device->Selected != 0; });
    state_ = Pressing{pointer.at, false, onSelected};
    if (pointer.hits.empty())
        return {};
    FloorIntents intents = removeBox();
    intents.push_back(FloorIntent::AddToSelection{pointer.hits});
    return intents;
}

/// Where no device is hit a box may begin.
FloorIntents CFloorGesture::pressAlone(const FloorPointer& pointer) {
    state_ = Pressing{pointer.at, pointer.hits.empty()};
    FloorIntents intents = removeBox();
    const CHardware* device = pointer.hits.empty() ? nullptr : pointer.hits.front();
    intents.push_back(FloorIntent::SelectOnly{device});
    if (device)
        intents.push_back(FloorIntent::BringToFront{device});
    return intents;
}

FloorIntents CFloorGesture::removeBox() {
    if (!box_)
        return {};
    box_.reset();
    return {FloorIntent::Repaint()};
}

// ---- move

FloorIntents CFloorGesture::move(const FloorPointer& pointer) {
    LastPoint_ = pointer.at;
    if (std::holds_alternative<Marking>(state_))
        return {FloorIntent::Repaint()};
    leavePressing(pointer);
    if (const auto* boxing = std::get_if<Boxing>(&state_)) {
        box_ = MapBox{boxing->BoxStart, mapPoint(pointer.at, pointer.ZoomPercent)};
        return {FloorIntent::Repaint()};
    }
    if (auto* dragging = std::get_if<Dragging>(&state_))
        return drag(*dragging, pointer);
    return {};
}

/// Distances are whole map pixels. What is cut off of one stays for the next, or devices would fall behind a
/// slow pointer on a floor that is zoomed in.
FloorIntents CFloorGesture::drag(Dragging& dragging, const FloorPointer& pointer) {
    if (pointer.Busy) {
        dragging.from = pointer.at;
        return {};
    }
    const MapPoint by = mapPoint(pointer.at - dragging.from, pointer.ZoomPercent);
    dragging.from += toScaled(by, pointer.ZoomPercent);
    const bool first = !std::exchange(dragging.moved, true);
    return {FloorIntent::MoveSelection{by, first, pointer.free}};
}

/// The first movement decides what the press was the beginning of.
void CFloorGesture::leavePressing(const FloorPointer& pointer) {
    const auto* pressing = std::get_if<Pressing>(&state_);
    if (!pressing)
        return;
    if (pressing->startsBox)
        state_ = Boxing{mapPoint(pressing->ClickPoint, pointer.ZoomPercent)};
    else
        state_ = Dragging{pressing->ClickPoint};
}

// ---- release

FloorIntents CFloorGesture::release(const FloorPointer& pointer) {
    LastPoint_ = pointer.at;
    if (auto* marking = std::get_if<Marking>(&state_))
        return {FloorIntent::AddMarkerPoint{marking->MarkingMarker, mapPoint(pointer.at, pointer.ZoomPercent),
                                            std::exchange(marking->StartNewArea, false)}};
    const State ended = std::exchange(state_, Idle());
    if (std::holds_alternative<Boxing>(ended)) {
        box_ = box_->normalised();
        return {FloorIntent::Repaint()};
    }
    if (const auto* dragging = std::get_if<Dragging>(&ended))
        return dragging->moved ? FloorIntents{FloorIntent::FinishMove()} : FloorIntents();
    if (const auto* pressing = std::get_if<Pressing>(&ended))
        return releaseUnmoved(*pressing, pointer);
    return {};
}

/// A mere click also ends a box that was left on the floor.
FloorIntents CFloorGesture::releaseUnmoved(const Pressing& pressing, const FloorPointer& pointer) {
    FloorIntents intents = removeBox();
    if (pointer.ctrl && pressing.CtrlClickOnSelected && !pointer.hits.empty())
        intents.push_back(FloorIntent::Deselect{pointer.hits.front()});
    return intents;
}

FloorIntents CFloorGesture::giveUp() {
    if (std::holds_alternative<Marking>(state_))
        return {};
    FloorIntents intents = removeBox();
    if (!buttonDown())
        return intents;
    const State ended = std::exchange(state_, GivenUp());
    if (std::holds_alternative<Dragging>(ended))
        intents.push_back(FloorIntent::GiveUpMove());
    return intents;
}

// ---- marking

void CFloorGesture::startMarking(std::int32_t recID, bool StartNewArea) {
    state_ = Marking{recID, StartNewArea};
}

std::int32_t CFloorGesture::endMarking() {
    const auto* marking = std::get_if<Marking>(&state_);
    const std::int32_t marker = marking ? marking->MarkingMarker : 0;
    if (marking)
        state_ = Idle();
    return marker;
}

void CFloorGesture::renumber(std::int32_t oldRecID, std::int32_t newRecID) {
    if (auto* marking = std::get_if<Marking>(&state_); marking && marking->MarkingMarker == oldRecID)
        marking->MarkingMarker = newRecID;
}

void CFloorGesture::reset() {
    *this = CFloorGesture();
}

} // namespace mirovane
