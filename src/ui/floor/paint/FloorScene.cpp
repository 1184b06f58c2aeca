#include "ui/floor/paint/FloorScene.h"

#include "ui/floor/geometry/FloorGeometry.h"

#include <algorithm>

namespace mirovane {

namespace {

bool showsItsArea(const CHardware& device, const FloorViewState& state) {
    return device.Type == DeviceType::LocationMarker && device.RecID != 0 &&
           (device.RecID == state.SelectedMarker || device.RecID == state.gesture.MarkingMarker);
}

/// Map coordinates that may show in the window, rounded outwards; the exact test follows on each device.
CFloorIndex::Area around(const FloorViewState& state, std::int32_t ZoomPercent) {
    const std::int64_t slack = 100 / ZoomPercent + 2;
    const auto low = [&](int scroll) {
        return (std::int64_t{scroll} - cullMargin) * 100 / ZoomPercent - slack;
    };
    const auto high = [&](int scroll, int length) {
        return (std::int64_t{scroll} + length) * 100 / ZoomPercent + slack;
    };
    return {low(state.scroll.x()), low(state.scroll.y()), high(state.scroll.x(), state.client.width()),
            high(state.scroll.y(), state.client.height())};
}

} // namespace

bool CFloorScene::culled(const CHardware& device, const FloorViewState& state) const {
    const QPoint at = toScaled(device.Position, floorZoom(display_).ZoomPercent);
    return !insideCull(at, state.scroll, state.client);
}

const CFloorIndex::Devices& CFloorScene::devices(const FloorViewState& state) {
    const Key key{state.scroll,
                  state.client,
                  floorZoom(display_).ZoomPercent,
                  state.SelectedMarker,
                  state.gesture.MarkingMarker,
                  index_.revision(),
                  document_.orderRevision()};
    if (key_ != key)
        collect(key, state);
    return devices_;
}

void CFloorScene::collect(const Key& key, const FloorViewState& state) {
    devices_ = index_.devicesIn(around(state, key.ZoomPercent));
    std::erase_if(devices_, [&](const CHardware* device) { return culled(*device, state); });
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
    return !device.Selected && !device.ShowAll && wanted(device) && !culled(device, state);
}

bool CFloorScene::inSecondPass(const CHardware& device, const FloorViewState& state) const {
    return (device.Selected || device.ShowAll) && (wanted(device) || !state.find.FindNothingFound) &&
           (showsItsArea(device, state) || !culled(device, state));
}

} // namespace mirovane
