#pragma once

#include "model/Document.h"

#include <cstddef>
#include <optional>
#include <span>
#include <unordered_map>
#include <vector>

namespace mirovane {

/// Devices that stay known while others work on the list. A record ID is not enough for that: a colleague who
/// deletes a device and adds another one gives the new device the number of the old. A device that is gone
/// stays gone. Main thread; the document outlives it.
class CFollowedDevices final : private DocumentObserver {
public:
    CFollowedDevices(const CMirovaneDoc& document, std::span<const DeviceKey> keys);
    CFollowedDevices(const CFollowedDevices&) = delete;
    CFollowedDevices& operator=(const CFollowedDevices&) = delete;
    ~CFollowedDevices() override;

    /// With those that are gone.
    std::size_t size() const { return devices_.size(); }

    /// Null when it is gone.
    const CHardware* at(std::size_t place) const { return devices_[place]; }

    /// Nothing when it is not among them. Takes constant time.
    std::optional<std::size_t> placeOf(const CHardware& device) const;

    std::size_t gone() const { return devices_.size() - places_.size(); }

    /// Of those that are left.
    std::vector<DeviceKey> keys() const;

private:
    // DocumentObserver
    void recordRemoved(const CHardware& record) override;
    void recordRenumbered(std::int32_t oldRecID, std::int32_t newRecID) override;
    void documentReplaced() override;

    const CMirovaneDoc& document_;
    std::vector<const CHardware*> devices_;
    std::unordered_map<const CHardware*, std::size_t> places_;
    std::unordered_map<std::int32_t, std::int32_t> newIDs_; ///< until the list is replaced, which comes next
};

} // namespace mirovane
