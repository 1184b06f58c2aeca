#include "model/FloorMap.h"

#include <utility>

namespace mirovane {

FloorMapValues floorMapOf(const CMirovaneDoc& document) {
    const CHardware* record = document.findSpecial(SpecialType::FloorMapRecord);
    return record ? floorMapFromRecord(*record) : FloorMapValues();
}

bool setFloorMap(CMirovaneDoc& document, const FloorMapValues& map) {
    const CHardware* record = document.findSpecial(SpecialType::FloorMapRecord);
    if (!record) {
        CHardware fresh;
        fresh.Type = SpecialType::FloorMapRecord;
        record = document.append(std::move(fresh));
    }
    if (!record)
        return false;
    document.editByUser(*record, [&map](CHardware& held) { toRecord(map, held); });
    return true;
}

} // namespace mirovane
