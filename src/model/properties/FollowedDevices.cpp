#include "model/properties/FollowedDevices.h"

#include "model/datafile/RecordMatch.h"

namespace mirovane {

CFollowedDevices::CFollowedDevices(const CMirovaneDoc& document, std::span<const DeviceKey> keys)
    : document_(document) {
    for (const DeviceKey& key : keys) {
        devices_.push_back(document.findDevice(key));
        if (devices_.back())
            places_.emplace(devices_.back(), devices_.size() - 1);
    }
    document_.addObserver(*this);
}

CFollowedDevices::~CFollowedDevices() {
    document_.removeObserver(*this);
}

std::optional<std::size_t> CFollowedDevices::placeOf(const CHardware& device) const {
    const auto found = places_.find(&device);
    return found == places_.end() ? std::nullopt : std::optional(found->second);
}

std::vector<DeviceKey> CFollowedDevices::keys() const {
    std::vector<DeviceKey> keys;
    for (const CHardware* device : devices_)
        if (device)
            keys.push_back(document_.keyOf(*device));
    return keys;
}

void CFollowedDevices::recordRemoved(const CHardware& record) {
    const auto found = places_.find(&record);
    if (found == places_.end())
        return;
    devices_[found->second] = nullptr;
    places_.erase(found);
}

void CFollowedDevices::recordRenumbered(std::int32_t oldRecID, std::int32_t newRecID) {
    newIDs_[oldRecID] = newRecID;
}

/// By the rule by which edits that cross are merged: what is shown and what is saved is the same device.
void CFollowedDevices::documentReplaced() {
    const Datafile::RecordList* before = document_.recordsBeforeReload();
    const CEditJournal nothingAdded;
    std::optional<CRecordMatch> match;
    if (before && !places_.empty())
        match.emplace(*before, nothingAdded, document_.records());
    places_.clear();
    for (std::size_t place = 0; place < devices_.size(); ++place) {
        const CHardware*& device = devices_[place];
        if (!device || !match) {
            device = nullptr;
            continue;
        }
        const auto moved = newIDs_.find(device->RecID);
        if (moved == newIDs_.end()) {
            device = match->findChanged(*device, *device);
        } else {
            CHardware renumbered = *device;
            renumbered.RecID = moved->second;
            device = match->findChanged(renumbered, *device);
        }
        if (device)
            places_.emplace(device, place);
    }
    newIDs_.clear();
}

} // namespace mirovane
