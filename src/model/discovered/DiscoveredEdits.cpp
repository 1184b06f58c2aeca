#include "model/discovered/DiscoveredEdits.h"

#include "model/floor/FloorEdits.h"

#include <cmath>
#include <cstddef>
#include <utility>

namespace mirovane {

namespace {

/// An icon, its label and some air, map pixels.
constexpr MapPoint room{60, 60};

std::string counted(const std::string& before, std::size_t count, const std::string& after) {
    return before + std::to_string(count) + after;
}

/// Calls `change` for each device that is there, with its place among the keys.
template <typename Change>
auto forEach(std::vector<DeviceKey> devices, Change change) {
    return [devices = std::move(devices), change](CMirovaneDoc& document) {
        for (std::size_t i = 0; i < devices.size(); ++i)
            if (const CHardware* device = document.findDevice(devices[i]))
                change(document, *device, i);
    };
}

} // namespace

DiscoveredEdit moveToFloor(std::vector<DeviceKey> devices, std::vector<MapPoint> places) {
    const std::size_t count = devices.size();
    DiscoveredEdit edit;
    edit.request = {EditRequest::Kind::Change, stepName("Move", count, " to the floor"), devices};
    edit.question = counted("Do you want to move ", count, " device(s) to the floor?");
    edit.done = counted("Moved ", count, " device(s) to the floor");
    edit.change =
        forEach(std::move(devices),
                [places = std::move(places)](CMirovaneDoc& document, const CHardware& device, std::size_t i) {
                    if (!device.inDiscovered())
                        return;
                    const MapPoint place = places[places.size() == 1 ? 0 : i];
                    document.editByUser(device, [&place](CHardware& moved) {
                        moved.Type -= DeviceType::discoveredOffset;
                        moved.Position = place;
                    });
                });
    return edit;
}

DiscoveredEdit changeType(std::vector<DeviceKey> devices, std::int32_t type) {
    const std::size_t count = devices.size();
    const std::string name(typeName(type));
    DiscoveredEdit edit;
    edit.request = {EditRequest::Kind::Change, stepName("Make", count, " " + name), devices};
    edit.done = counted("Changed ", count, " device(s) to " + name);
    edit.change =
        forEach(std::move(devices), [type](CMirovaneDoc& document, const CHardware& device, std::size_t) {
            document.editByUser(device, [type](CHardware& changed) {
                const bool discovered = changed.inDiscovered();
                changed.Type = type + (discovered ? DeviceType::discoveredOffset : 0);
                changed.Priority = newDevicePriority(type);
            });
        });
    return edit;
}

DiscoveredEdit deleteSelected(std::vector<DeviceKey> devices) {
    const std::string question = deleteQuestion(devices.size(), true);
    FloorEdit edit = deleteDevices(std::move(devices));
    return {std::move(edit.request), std::move(edit.change), question, "Deleted item(s)."};
}

std::vector<MapPoint> droppedPlaces(MapPoint corner, std::size_t devices) {
    const auto columns = static_cast<std::size_t>(std::ceil(std::sqrt(static_cast<double>(devices))));
    std::vector<MapPoint> places;
    for (std::size_t i = 0; i < devices; ++i)
        places.push_back({corner.x + static_cast<std::int32_t>(i % columns) * room.x,
                          corner.y + static_cast<std::int32_t>(i / columns) * room.y});
    return places;
}

} // namespace mirovane
