#include "model/properties/FloorSummary.h"

namespace mirovane {

namespace {

void countRecord(FloorSummary& summary, const CHardware& record) {
    if (record.Type == SpecialType::ApplicationRecord) {
        ++summary.applications;
        if (applicationFromRecord(record).onMenu)
            ++summary.applicationsOnMenu;
    }
    const std::int32_t code = floorCode(record.Type);
    if (!record.isDevice() || code < DeviceType::first || code > DeviceType::last)
        return;
    FloorSummary::Count& count = summary.types[static_cast<std::size_t>(code)];
    ++(record.inDiscovered() ? count.discovered : count.floor);
}

OwnerValues ownerOf(const CMirovaneDoc& document, std::int32_t type) {
    const CHardware* record = document.findSpecial(type);
    return record ? ownerFromRecord(*record) : OwnerValues();
}

} // namespace

FloorSummary floorSummary(const CMirovaneDoc& document) {
    FloorSummary summary;
    for (const auto& record : document.records())
        countRecord(summary, *record);
    summary.liveStat = ownerOf(document, SpecialType::LiveStatOwnerRecord);
    summary.liveDiscover = ownerOf(document, SpecialType::LiveDiscoverOwnerRecord);
    return summary;
}

} // namespace mirovane
