#include "ui/floor/paint/FloorScene.h"

#include <algorithm>

namespace mirovane {

namespace {

bool showsItsArea(const CHardware& device, const FloorViewState& state) {
    return device.Type == DeviceType::LocationMarker && device.RecID != 0 &&
           (device.RecID == state.SelectedMarker || device.RecID == state.gesture.MarkingMarker);
}

/// A marked area may lie far from its marker.
bool reaches(const CHardware& device, const FloorViewState& state) {
    return showsItsArea(device, state) || state.view.shows(device.Position);
}

/// Map coordinates that may show in the window, rounded outwards; the exact test follows on each device.
CFloorIndex::Area around(const FloorView& view) {
    if (view.paper)
        return view.within ? CFloorIndex::Area{view.within->BoxStart.x, view.within->BoxStart.y,
                                               view.within->BoxEnd.x, view.within->BoxEnd.y}
                           : CFloorIndex::Area{INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX};
    const std::int32_t ZoomPercent = view.zoom.ZoomPercent;
    const std::int64_t slack = 100 / ZoomPercent + 2;
    const auto low = [&](int scroll) {
        return (std::int64_t{scroll} - cullMargin) * 100 / ZoomPercent - slack;
    };
    const auto high = [&](int scroll, int length) {
        return (std::int64_t{scroll} + length) * 100 / ZoomPercent + slack;
    };
    return {low(view.origin.x()), low(view.origin.y()), high(view.origin.x(), view.client.width()),
            high(view.origin.y(), view.client.height())};
}

} // namespace

const CFloorIndex::Devices& CFloorScene::devices(const FloorViewState& state) {
    const Key key{state.view, state.SelectedMarker, state.gesture.MarkingMarker, index_.revision(),
                  document_.orderRevision()};
    if (key_ != key)
        collect(key, state);
    return devices_;
}

void CFloorScene::collect(const Key& key, const FloorViewState& state) {
    devices_ = index_.devicesIn(around(state.view));
    std::erase_if(devices_, [&](const CHardware* device) { return !state.view.shows(device->Position); });
    for (const std::int32_t recID : {state.SelectedMarker, state.gesture.MarkingMarker}) {
        const CHardware* marker = recID == 0 ? nullptr : document_.findDevice(recID);
        if (marker && marker->onFloor() && showsItsArea(*marker, state) &&
            std::ranges::find(devices_, marker) == devices_.end())
            devices_.push_back(marker);
    }
    index_.inListOrder(devices_);
    key_ = key;
}

bool CFloorScene::wanted(const CHardware& device) const {
    return display_.typeVisible(device.Type) || (device.ReminderDue && display_.ReminderDeviceShow);
}

bool CFloorScene::inFirstPass(const CHardware& device, const FloorViewState& state) const {
    return !device.Selected && !device.ShowAll && wanted(device) && reaches(device, state);
}

bool CFloorScene::inSecondPass(const CHardware& device, const FloorViewState& state) const {
    return (device.Selected || device.ShowAll) && (wanted(device) || !state.find.FindNothingFound) &&
           reaches(device, state);
}

} // namespace mirovane
