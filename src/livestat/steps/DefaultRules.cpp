#include "livestat/steps/DefaultRules.h"

#include "livestat/steps/Engine.h"
#include "model/records/Criteria.h"

#include <algorithm>
#include <array>

namespace mirovane {

namespace {

using Rules = std::array<CriteriaRow, criteriaRowCount>;

Rules defaultsOf(std::int32_t type) {
    Rules rules;
    for (int row = 0; row < criteriaRowCount; ++row) {
        CHardware record;
        record.Type = criteriaRecordType(type, row);
        applyCriteriaDefaults(record);
        rules[static_cast<std::size_t>(row)] = criteriaFromRecord(record);
    }
    return rules;
}

} // namespace

std::size_t devicesWrittenByDefaults(const CMirovaneDoc& document) {
    std::array<Rules, DeviceType::last + 1> rules;
    for (std::int32_t type = DeviceType::first; type <= DeviceType::last; ++type)
        rules[static_cast<std::size_t>(type)] = defaultsOf(type);
    return static_cast<std::size_t>(std::ranges::count_if(document.records(), [&rules](const auto& record) {
        const std::int32_t type = floorCode(record->Type);
        if (!record->isDevice() || type < DeviceType::first || type > DeviceType::last)
            return false;
        for (int row = 1; row < criteriaRowCount; ++row)
            if (rowCounts(*record, row, rules[static_cast<std::size_t>(type)][static_cast<std::size_t>(row)]))
                return true;
        return false;
    }));
}

} // namespace mirovane
