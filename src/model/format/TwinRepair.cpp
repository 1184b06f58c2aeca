#include "model/format/TwinRepair.h"

#include <unordered_set>

namespace mirovane {

std::vector<TwinRenumbering> renumberTwins(Datafile::RecordList& records) {
    // All of them first: a twin must not get the number of a device further down the list.
    std::unordered_set<std::int32_t> taken;
    std::vector<CHardware*> twins;
    for (const auto& record : records)
        if (record->isDevice() && !taken.insert(record->RecID).second)
            twins.push_back(record.get());
    std::vector<TwinRenumbering> renumbered;
    std::int32_t free = 1;
    for (CHardware* twin : twins) {
        while (!taken.insert(free).second)
            ++free;
        const bool jack = floorCode(twin->Type) == DeviceType::Jack;
        renumbered.push_back({twin->RecID, free, jack ? twin->ToJack : twin->Name});
        twin->RecID = free;
    }
    return renumbered;
}

} // namespace mirovane
