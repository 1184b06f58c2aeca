#include "discover/DiscoveredDevice.h"

#include "discover/AddressRanges.h"
#include "model/records/KeptText.h"
#include "probes/names/HostAddress.h"

#include <arpa/inet.h>

namespace mirovane {

std::optional<std::uint32_t> deviceAddress(const CHardware& record) {
    if (!record.isDevice() || record.IPAddress.empty())
        return std::nullopt;
    const auto address = parseDottedAddress(withoutKeptMark(record.IPAddress));
    return address ? std::optional<std::uint32_t>(ntohl(*address)) : std::nullopt;
}

CKnownAddresses::CKnownAddresses(CMirovaneDoc& document) : document_(document) {
    document_.addObserver(*this);
}

CKnownAddresses::~CKnownAddresses() {
    document_.removeObserver(*this);
}

bool CKnownAddresses::contains(std::uint32_t address) {
    if (!built_)
        build();
    return devices_.contains(address);
}

void CKnownAddresses::build() {
    devices_.reserve(document_.deviceCount());
    for (std::size_t i = 0; i < document_.size(); ++i)
        insert(document_.at(i));
    built_ = true;
}

void CKnownAddresses::insert(const CHardware& record) {
    if (const auto address = deviceAddress(record))
        ++devices_[*address];
}

void CKnownAddresses::erase(const CHardware& record) {
    const auto address = deviceAddress(record);
    const auto found = address ? devices_.find(*address) : devices_.end();
    if (found != devices_.end() && --found->second == 0)
        devices_.erase(found);
}

void CKnownAddresses::recordAdded(const CHardware& record) {
    if (built_)
        insert(record);
}

void CKnownAddresses::recordChanged(const CHardware& before, const CHardware& after) {
    if (!built_ || (before.IPAddress == after.IPAddress && before.isDevice() == after.isDevice()))
        return;
    erase(before);
    insert(after);
}

void CKnownAddresses::recordRemoved(const CHardware& record) {
    if (built_)
        erase(record);
}

void CKnownAddresses::documentReplaced() {
    devices_.clear();
    built_ = false;
}

const CHardware* addDiscoveredDevice(CMirovaneDoc& document, std::uint32_t address, const std::string& name) {
    return document.addDevice(
        DeviceType::Unknown + DeviceType::discoveredOffset,
        [address, &name](CHardware& device) {
            device.State = DeviceState::On;
            device.IPAddress = formatRangeAddress(address);
            device.Name = name;
            device.Comment = "NEW";
        });
}

} // namespace mirovane
