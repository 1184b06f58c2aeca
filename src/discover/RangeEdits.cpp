#include "discover/RangeEdits.h"

#include "discover/AddressRanges.h"

#include <algorithm>

namespace mirovane {

namespace {

bool apply(CMirovaneDoc& document, const RangeEdit& edit, const CHardware* record) {
    if (record && edit.after) {
        document.editByUser(*record, [&edit](CHardware& held) { toRecord(*edit.after, held); });
        return true;
    }
    if (record) {
        document.remove(*record);
        return true;
    }
    if (!edit.after)
        return false;
    CHardware range;
    range.Type = SpecialType::DiscoverRangeRecord;
    range.Modified = document.now();
    toRecord(*edit.after, range);
    return document.append(std::move(range)) != nullptr;
}

} // namespace

bool applyRangeEdits(CMirovaneDoc& document, std::span<const RangeEdit> edits) {
    bool changed = false;
    // Found before anything changes: an edit must not find the range that another edit has just written.
    const std::vector<const CHardware*> ranges = discoverRanges(document);
    std::vector<bool> taken(ranges.size(), false);
    std::vector<const CHardware*> records;
    for (const RangeEdit& edit : edits) {
        const CHardware* record = nullptr;
        for (std::size_t i = 0; edit.before && !record && i < ranges.size(); ++i) {
            if (!taken[i] && rangeFromRecord(*ranges[i]) == *edit.before) {
                taken[i] = true;
                record = ranges[i];
            }
        }
        records.push_back(record);
    }
    for (std::size_t i = 0; i < edits.size(); ++i)
        changed = (edits[i].changes() && apply(document, edits[i], records[i])) || changed;
    return changed;
}

} // namespace mirovane
