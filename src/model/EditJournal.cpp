#include "model/EditJournal.h"

#include "model/records/SpecialRecords.h"

#include <utility>

namespace mirovane {

bool isMergedField(const RecordField& field) {
    return field.kind != FieldKind::Number && field.kind != FieldKind::Stamp &&
           field.kind != FieldKind::RuleStamps;
}

FieldSet changedFields(const CHardware& before, const CHardware& after) {
    FieldSet set;
    const auto fields = recordFields();
    for (std::size_t i = 0; i < fields.size(); ++i)
        set[i] = isMergedField(fields[i]) && !sameField(before, after, fields[i]);
    return set;
}

bool sameOwner(const CHardware& a, const CHardware& b) {
    const OwnerValues first = ownerFromRecord(a);
    const OwnerValues second = ownerFromRecord(b);
    return first.on == second.on && first.station == second.station;
}

void CEditJournal::changed(const CHardware& before, const CHardware& after, const FieldSet& byUser) {
    if (isAdded(after))
        return;
    // Signs of life and the position of a walk are made anew.
    if (isOwnerRecord(after) && sameOwner(before, after))
        return;
    const FieldSet fields = changedFields(before, after);
    if (fields.none())
        return;
    const auto [entry, first] = changes_.try_emplace(&after);
    Change& change = entry->second;
    if (first)
        copyStored(before, change.base);
    const FieldSet toKeep = isOwnerRecord(after) ? fields : fields & byUser;
    keepsChanges_ = keepsChanges_ || toKeep.any();
    change.byUser |= toKeep;
}

void CEditJournal::removed(std::unique_ptr<CHardware> gone) {
    if (added_.erase(gone.get()) > 0)
        return;
    if (const auto entry = changes_.find(gone.get()); entry != changes_.end()) {
        CHardware base = std::move(entry->second.base);
        changes_.erase(entry);
        *gone = std::move(base);
    }
    removals_.push_back(std::move(gone));
}

/// not the clear() of the tables: that would go through the tables as large as they once were at every later
/// save.
void CEditJournal::clear() {
    if (!added_.empty())
        added_ = {};
    if (!changes_.empty())
        changes_ = {};
    removals_.clear();
    keepsChanges_ = false;
}

const CEditJournal::Change* CEditJournal::changeOf(const CHardware& record) const {
    const auto entry = changes_.find(&record);
    return entry == changes_.end() ? nullptr : &entry->second;
}

} // namespace mirovane
