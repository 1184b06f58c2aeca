#include "discover/sweep/HostAdder.h"

#include "discover/DiscoveredDevice.h"

namespace mirovane {

void CHostAdder::add(const std::vector<FoundHost>& hosts) {
    const auto survivors = stillThere();
    result_.alreadyKnown = 0;
    result_.datafileFull = false;
    result_.added.clear();
    CKnownAddresses known(document_);
    for (const FoundHost& host : hosts) {
        if (const auto survivor = survivors.find(host.address); survivor != survivors.end()) {
            result_.added.push_back({survivor->second, host});
            continue;
        }
        if (known.contains(host.address)) {
            ++result_.alreadyKnown;
            continue;
        }
        const CHardware* device = addDiscoveredDevice(document_, host.address, host.name);
        if (!device) {
            result_.datafileFull = true;
            return;
        }
        result_.added.push_back({device->RecID, host});
    }
}

void CHostAdder::followNumbers() {
    const auto there = stillThere();
    for (SweepResult::Added& one : result_.added)
        if (const auto survivor = there.find(one.host.address); survivor != there.end())
            one.recID = survivor->second;
}

/// Record IDs of the devices that were added and are in the document, by address.
std::unordered_map<std::uint32_t, std::int32_t> CHostAdder::stillThere() const {
    std::unordered_map<std::uint32_t, std::int32_t> there;
    if (result_.added.empty())
        return there;
    for (const SweepResult::Added& one : result_.added)
        there.emplace(one.host.address, 0);
    for (std::size_t i = 0; i < document_.size(); ++i) {
        const CHardware& record = document_.at(i);
        const auto address = deviceAddress(record);
        const auto place = address ? there.find(*address) : there.end();
        if (place != there.end() && place->second == 0 && record.inDiscovered())
            place->second = record.RecID;
    }
    std::erase_if(there, [](const auto& entry) { return entry.second == 0; });
    return there;
}

} // namespace mirovane
