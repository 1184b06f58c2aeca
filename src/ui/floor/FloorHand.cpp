#include "ui/floor/FloorHand.h"

#include "model/floor/FloorEdits.h"

#include <algorithm>
#include <utility>

namespace mirovane {

namespace {

/// On the screen, whatever the zoom.
constexpr std::int32_t snapReach = 4;

/// How far away a device may be and still be a neighbour; beyond it a line would point at something that the
/// user does not think of.
constexpr std::int32_t neighbourReach = 400;

constexpr std::string_view moveVerb = "Move";

template <typename... Handlers>
struct Overloaded : Handlers... {
    using Handlers::operator()...;
};
template <typename... Handlers>
Overloaded(Handlers...) -> Overloaded<Handlers...>;

} // namespace

CFloorHand::CFloorHand(CStation& station, const CFloorIndex& index, const CIconSizes& icons,
                       FloorHandHost& host)
    : station_(station), index_(index), icons_(icons), host_(host) {}

// ---- the left button

void CFloorHand::press(const FloorPointer& pointer) {
    station_.edits().liveMove().hold();
    carryOut(gesture_.press(pointer));
}

void CFloorHand::move(const FloorPointer& pointer) {
    carryOut(gesture_.move(pointer));
}

void CFloorHand::release(const FloorPointer& pointer) {
    carryOut(gesture_.release(pointer));
    letGo();
}

void CFloorHand::giveUp() {
    carryOut(gesture_.giveUp());
    if (!gesture_.buttonDown() && station_.edits().liveMove().underWay()) { // a key is held
        station_.edits().liveMove().giveUp();
        dragged_.clear();
    }
}

void CFloorHand::letGo() {
    dragged_.clear();
    showLines({});
    station_.edits().liveMove().finish(moveVerb);
}

void CFloorHand::carryOut(const FloorIntents& intents) {
    CSelection& selection = station_.selection();
    const auto carryOutOne = Overloaded{
        [&selection](const FloorIntent::SelectOnly& intent) {
            if (intent.device)
                selection.only(*intent.device);
            else
                selection.none(CSelection::Scope::Floor);
        },
        [&selection](const FloorIntent::AddToSelection& intent) {
            for (const CHardware* device : intent.devices)
                selection.add(*device);
        },
        [&selection](const FloorIntent::Deselect& intent) { selection.remove(*intent.device); },
        [this](const FloorIntent::BringToFront& intent) { station_.edits().bringToFront(*intent.device); },
        [this](const FloorIntent::MoveSelection& intent) {
            if (intent.first)
                gather();
            follow(intent.by, !intent.free);
        },
        [this](const FloorIntent::FinishMove&) { letGo(); },
        [this](const FloorIntent::GiveUpMove&) {
            dragged_.clear();
            showLines({});
            station_.edits().liveMove().giveUp();
        },
        [this](const FloorIntent::AddMarkerPoint& intent) {
            const FloorEdit edit = addMarkerPoint(intent.MarkingMarker, intent.at, intent.StartNewArea);
            station_.edit(edit.request, edit.change);
        },
        [this](const FloorIntent::ForgetSelectedMarker&) { host_.setSelectedMarker(0); },
        [this](const FloorIntent::Repaint&) { host_.repaintFloor(); },
    };
    for (const AnyFloorIntent& intent : intents)
        std::visit(carryOutOne, intent);
}

// ---- the right button

void CFloorHand::pressRight(const FloorPointer& pointer) {
    if (pointer.Busy || pointer.hits.empty() || pointer.hits.front()->Selected != 0)
        return;
    if (pointer.ctrl)
        station_.selection().add(*pointer.hits.front());
    else
        station_.selection().only(*pointer.hits.front());
}

// ---- devices that follow

PixelSize CFloorHand::iconOf(const CHardware& device) const {
    const QSize size = icons_.of(device.Type);
    return {size.width(), size.height()};
}

PlacedDevice CFloorHand::placed(const CHardware& device) const {
    const FloorZoom zoom = floorZoom(station_.display());
    const PixelSize drawn = scaled(iconOf(device), zoom.ZoomDevicesPercent);
    return {station_.document().keyOf(device),
            device.Position,
            {unscaled(drawn.width, zoom.ZoomPercent), unscaled(drawn.height, zoom.ZoomPercent)}};
}

std::vector<PlacedDevice> CFloorHand::selected() const {
    std::vector<PlacedDevice> devices;
    for (const CHardware* device : station_.selection().members(CSelection::Scope::Floor))
        devices.push_back(placed(*device));
    return devices;
}

void CFloorHand::gather() {
    dragged_.clear();
    bounds_ = host_.bounds();
    for (const CHardware* device : station_.selection().members(CSelection::Scope::Floor))
        dragged_.push_back({placed(*device), iconOf(*device)});
}

void CFloorHand::follow(MapPoint by, bool snaps) {
    if (dragged_.empty())
        return;
    std::vector<PlacedDevice> all;
    all.reserve(dragged_.size());
    for (Dragged& dragged : dragged_) {
        dragged.device.at = onFloor(moved(dragged.device.at, by), dragged.icon, bounds_);
        all.push_back(dragged.device);
    }
    Snap snapped;
    if (snaps) {
        const PlacedDevice block = around(all);
        snapped = snap(block, neighbours(block), unscaled(snapReach, bounds_.ZoomPercent));
    }
    showLines(snapped);
    std::vector<DeviceMove> moves;
    moves.reserve(dragged_.size());
    for (const Dragged& dragged : dragged_)
        moves.push_back(
            {dragged.device.device, onFloor(moved(dragged.device.at, snapped.by), dragged.icon, bounds_)});
    station_.edits().liveMove().moveTo(moves);
}

std::vector<PlacedDevice> CFloorHand::neighbours(const PlacedDevice& dragged) const {
    const std::int64_t reach = unscaled(neighbourReach, bounds_.ZoomPercent);
    const CFloorIndex::Area area{dragged.at.x - reach, dragged.at.y - reach,
                                 std::int64_t{dragged.at.x} + dragged.size.width + reach,
                                 std::int64_t{dragged.at.y} + dragged.size.height + reach};
    std::vector<PlacedDevice> found;
    for (const CHardware* device : index_.devicesIn(area))
        if (device->Selected == 0 && station_.display().typeVisible(device->Type))
            found.push_back(placed(*device));
    return found;
}

void CFloorHand::showLines(const Snap& snap) {
    std::vector<AlignmentLine> lines;
    for (const auto& line : {snap.vertical, snap.horizontal})
        if (line)
            lines.push_back(*line);
    if (lines == lines_)
        return;
    lines_ = std::move(lines);
    host_.linesChanged();
}

// ---- keys

bool CFloorHand::nudge(MapPoint by) {
    if (gesture_.buttonDown() || station_.busy() || station_.selection().empty(CSelection::Scope::Floor))
        return false;
    if (!station_.edits().liveMove().underWay())
        gather();
    follow(by, false);
    return true;
}

void CFloorHand::nudgeEnds() {
    if (!gesture_.buttonDown() && station_.edits().liveMove().held())
        letGo();
}

const CHardware* CFloorHand::walk(bool forward) {
    const CMirovaneDoc& document = station_.document();
    std::vector<PlacedDevice> devices;
    for (std::size_t i = 0; i < document.size(); ++i)
        if (document.at(i).onFloor() && station_.display().typeVisible(document.at(i).Type))
            devices.push_back(placed(document.at(i)));
    if (devices.empty())
        return nullptr;
    devices = inReadingOrder(std::move(devices));
    if (!forward)
        std::ranges::reverse(devices);
    auto next = devices.begin();
    if (const CHardware* current = station_.selection().lastOnFloor()) {
        next = std::ranges::find(devices, document.keyOf(*current), &PlacedDevice::device);
        next = next == devices.end() || next + 1 == devices.end() ? devices.begin() : next + 1;
    }
    const CHardware* device = document.findDevice(next->device);
    station_.selection().only(*device);
    return device;
}

} // namespace mirovane
