#include "ui/floor/FloorScene.h"

#include "ui/floor/FloorGeometry.h"

#include <algorithm>

namespace mirovane {

namespace {

bool showsItsArea(const CHardware& device, const FloorViewState& state) {
    return device.Type == DeviceType::LocationMarker && device.RecID != 0 &&
           (device.RecID == state.SelectedMarker || device.RecID == state.MarkingMarker);
}

/// Map coordinates that may show in the window, rounded outwards; the exact test follows on each device.
FloorIndex::Area around(const FloorViewState& state, std::int32_t ZoomPercent) {
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

bool FloorScene::culled(const CHardware& device, const FloorViewState& state) const {
    const QPoint at = toScaled(device.Position, floorZoom(document_.display()).ZoomPercent);
    return !insideCull(at, state.scroll, state.client);
}

const FloorIndex::Devices& FloorScene::devices(const FloorViewState& state) {
    const Key key{state.scroll,
                  state.client,
                  floorZoom(document_.display()).ZoomPercent,
                  state.SelectedMarker,
                  state.MarkingMarker,
                  index_.revision(),
                  document_.orderRevision()};
    if (key_ != key)
        collect(key, state);
    return devices_;
}

void FloorScene::collect(const Key& key, const FloorViewState& state) {
    devices_ = index_.devicesIn(around(state, key.ZoomPercent));
    std::erase_if(devices_, [&](const CHardware* device) { return culled(*device, state); });
    for (const std::int32_t recID : {state.SelectedMarker, state.MarkingMarker}) {
        const CHardware* marker = recID == 0 ? nullptr : document_.findDevice(recID);
        if (marker && marker->onFloor() && showsItsArea(*marker, state) &&
            std::ranges::find(devices_, marker) == devices_.end())
            devices_.push_back(marker);
    }
    index_.inListOrder(devices_);
    key_ = key;
}

bool FloorScene::wanted(const CHardware& device) const {
    const DisplaySettings& display = document_.display();
    return display.typeVisible(device.Type) || (device.ReminderDue && display.ReminderDeviceShow);
}

bool FloorScene::inFirstPass(const CHardware& device, const FloorViewState& state) const {
    return !device.Selected && !device.ShowAll && wanted(device) && !culled(device, state);
}

bool FloorScene::inSecondPass(const CHardware& device, const FloorViewState& state) const {
    return (device.Selected || device.ShowAll) && (wanted(device) || !state.FindNothingFound) &&
           (showsItsArea(device, state) || !culled(device, state));
}

} // namespace mirovane
