#include "model/EditJournal.h"

#include "model/records/SpecialRecords.h"

#include <algorithm>
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
    const CHardware& listed = *gone;
    note(listed, std::move(gone));
}

void CEditJournal::removed(const CHardware& gone) {
    note(gone, std::make_unique<CHardware>(gone));
}

void CEditJournal::takeOver(const CHardware& record, const CEditJournal& other) {
    const Change* change = other.changeOf(record);
    if (!change)
        return;
    changes_.insert_or_assign(&record, *change);
    keepsChanges_ = keepsChanges_ || change->byUser.any();
}

/// The journal knows the record by the address that it had in the list.
void CEditJournal::note(const CHardware& listed, std::unique_ptr<CHardware> gone) {
    if (added_.erase(&listed) > 0)
        return;
    if (const auto entry = changes_.find(&listed); entry != changes_.end()) {
        CHardware base = std::move(entry->second.base);
        changes_.erase(entry);
        *gone = std::move(base);
    }
    if (gone->isDevice())
        removedDevices_[gone->RecID] = removals_.size();
    removals_.push_back(std::move(gone));
}

std::optional<std::size_t> CEditJournal::removalOf(const CHardware& record) const {
    if (record.isDevice()) {
        const auto known = removedDevices_.find(record.RecID);
        return known == removedDevices_.end() ? std::nullopt : std::optional(known->second);
    }
    const auto same = std::ranges::find_if(removals_, [&](const auto& gone) {
        return gone->Type == record.Type &&
               (!isListedSpecial(record.Type) || changedFields(*gone, record).none());
    });
    if (same == removals_.end())
        return std::nullopt;
    return static_cast<std::size_t>(same - removals_.begin());
}

void CEditJournal::cameBack(const CHardware& record) {
    const auto place = removalOf(record);
    if (!place) {
        added(record);
        return;
    }
    const std::unique_ptr<CHardware> base = std::exchange(removals_[*place], std::move(removals_.back()));
    removals_.pop_back();
    if (base->isDevice())
        removedDevices_.erase(base->RecID);
    if (*place < removals_.size() && removals_[*place]->isDevice())
        removedDevices_[removals_[*place]->RecID] = *place;
    changed(*base, record, allFields);
}

/// not the clear() of the tables: that would go through the tables as large as they once were at every later
/// save.
void CEditJournal::clear() {
    if (!added_.empty())
        added_ = {};
    if (!changes_.empty())
        changes_ = {};
    if (!removals_.empty())
        removedDevices_ = {};
    removals_.clear();
    keepsChanges_ = false;
}

const CEditJournal::Change* CEditJournal::changeOf(const CHardware& record) const {
    const auto entry = changes_.find(&record);
    return entry == changes_.end() ? nullptr : &entry->second;
}

} // namespace mirovane
