#pragma once

#include "station/Station.h"

#include <cstdint>
#include <functional>
#include <span>
#include <vector>

namespace mirovane::test {

inline std::vector<DeviceKey> keys(std::span<const std::int32_t> recIDs) {
    std::vector<DeviceKey> all;
    for (const std::int32_t recID : recIDs)
        all.push_back({recID, 0});
    return all;
}

/// The user changes these devices.
inline SaveReport updateDevices(CStation& station, std::span<const std::int32_t> recIDs,
                                const std::function<void(CHardware&)>& change) {
    const EditRequest request{EditRequest::Kind::Change, "Change devices", keys(recIDs)};
    return station.edit(request, [&](CMirovaneDoc& document) {
        for (const DeviceKey& key : request.devices)
            if (const CHardware* device = document.findDevice(key))
                document.editByUser(*device, change);
    });
}

/// The user deletes these devices.
inline SaveReport deleteDevices(CStation& station, std::span<const std::int32_t> recIDs) {
    const EditRequest request{EditRequest::Kind::Delete, "Delete devices", keys(recIDs)};
    return station.edit(request, [&](CMirovaneDoc& document) { document.removeDevices(request.devices); });
}

} // namespace mirovane::test
