#include "model/floor/FloorEdits.h"

#include <utility>

namespace mirovane {

namespace {

void clearSelection(CMirovaneDoc& document) {
    for (std::size_t i = 0; i < document.size(); ++i)
        if (document.at(i).Selected != 0)
            document.setSelected(document.at(i), false);
}

/// The devices may have gone between the command and its turn.
void changeEach(CMirovaneDoc& document, const std::vector<DeviceKey>& devices,
                const std::function<void(CHardware&)>& change) {
    for (const DeviceKey& key : devices)
        if (const CHardware* device = document.findDevice(key))
            document.editByUser(*device, change);
}

} // namespace

EditName stepName(std::string_view verb, std::size_t devices, std::string_view rest) {
    return {std::string(verb) + (devices == 1 ? " 1 device" : " %1 devices") + std::string(rest), devices};
}

std::vector<DeviceKey> keysOf(const CMirovaneDoc& document, const CSelection::Devices& devices) {
    std::vector<DeviceKey> keys;
    keys.reserve(devices.size());
    for (const CHardware* device : devices)
        keys.push_back(document.keyOf(*device));
    return keys;
}

// ---- adding

FloorEdit addDevice(std::int32_t type, MapPoint place) {
    EditRequest request{EditRequest::Kind::Add, "Add " + std::string(typeName(type)), {}};
    return {std::move(request), [type, place](CMirovaneDoc& document) {
                clearSelection(document);
                const CHardware* added =
                    document.addDevice(type, [place](CHardware& device) { device.Position = place; });
                if (added)
                    document.setSelected(*added, true);
            }};
}

std::string addedMessage(std::int32_t type) {
    return "Added " + std::string(type == DeviceType::Unknown ? "Generic device" : typeName(type));
}

FloorEdit addDevices(EditName name, std::vector<CHardware> devices, std::size_t& added) {
    added = 0;
    return {{EditRequest::Kind::Add, std::move(name), {}},
            [devices = std::move(devices), &added](CMirovaneDoc& document) {
                clearSelection(document);
                for (CHardware device : devices) {
                    device.RecID = document.nextRecordID();
                    const CHardware* record = document.append(std::move(device));
                    if (!record)
                        return;
                    document.setSelected(*record, true);
                    ++added;
                }
            }};
}

// ---- moving and removing

FloorEdit moveDevices(std::string_view verb, std::vector<DeviceMove> moves) {
    EditRequest request{EditRequest::Kind::Place, stepName(verb, moves.size()), {}};
    for (const DeviceMove& move : moves)
        request.devices.push_back(move.device);
    return {std::move(request), [moves = std::move(moves)](CMirovaneDoc& document) {
                for (const DeviceMove& move : moves)
                    changeEach(document, {move.device},
                               [&move](CHardware& held) { held.Position = move.to; });
            }};
}

FloorEdit deleteDevices(std::vector<DeviceKey> devices) {
    EditRequest request{EditRequest::Kind::Delete, stepName("Delete", devices.size()), devices};
    return {std::move(request), [devices = std::move(devices)](CMirovaneDoc& document) {
                document.removeDevices(devices);
            }};
}

std::string deleteQuestion(std::size_t devices, bool fromDiscoveredMisc) {
    return "Do you want to delete the " + std::to_string(devices) + " selected item(s)" +
           (fromDiscoveredMisc ? " in Discover/Misc window?" : "?");
}

FloorEdit moveToMisc(std::vector<DeviceKey> devices) {
    EditRequest request{EditRequest::Kind::Place, stepName("Move", devices.size(), " to Discovered/Misc"),
                        devices};
    return {std::move(request), [devices = std::move(devices)](CMirovaneDoc& document) {
                changeEach(document, devices, [](CHardware& device) {
                    if (device.onFloor())
                        device.Type += DeviceType::discoveredOffset;
                });
            }};
}

std::string moveToMiscQuestion(std::size_t devices) {
    return "Do you want to move " + std::to_string(devices) + " device(s) to the Discovered/Misc window?";
}

std::string movedToMiscMessage(std::size_t devices) {
    return "Moved " + std::to_string(devices) + " device(s) to the Discovered/Misc window";
}

FloorEdit resetLiveStatus(std::vector<DeviceKey> devices) {
    EditRequest request{EditRequest::Kind::Place, stepName("Reset", devices.size()), devices};
    return {std::move(request), [devices = std::move(devices)](CMirovaneDoc& document) {
                const auto reset = [now = document.now()](CHardware& device) {
                    if (device.StampsModified == device.Modified)
                        device.StampsModified = now;
                    device.Modified = now;
                    device.State = DeviceState::Def;
                };
                for (const DeviceKey& key : devices)
                    if (const CHardware* device = document.findDevice(key))
                        document.edit(*device, reset);
            }};
}

FloorEdit addMarkerPoint(std::int32_t marker, MapPoint at, bool StartNewArea) {
    EditRequest request{EditRequest::Kind::Place, "Mark area", {{marker, 0}}};
    return {std::move(request), [marker, at, StartNewArea](CMirovaneDoc& document) {
                const CHardware* held = document.findDevice({marker, 0});
                if (!held || held->Type != DeviceType::LocationMarker)
                    return; // a colleague has deleted the marker, and another device may have its number
                document.editByUser(*held, [at, StartNewArea](CHardware& device) {
                    if (StartNewArea)
                        device.ToJack.clear();
                    device.ToJack += std::to_string(at.x) + "," + std::to_string(at.y) + ",";
                });
            }};
}

} // namespace mirovane
