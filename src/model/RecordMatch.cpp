#include "model/RecordMatch.h"

#include <algorithm>

namespace mirovane {

namespace {

bool sameNonEmpty(const std::string& a, const std::string& b) {
    return !a.empty() && a == b;
}

/// Anything by which a person would say that it is the same device.
bool looksLikeSameDevice(const CHardware& a, const CHardware& b) {
    return sameNonEmpty(a.Name, b.Name) || sameNonEmpty(a.IPAddress, b.IPAddress) ||
           sameNonEmpty(a.MACAddress, b.MACAddress) ||
           (a.Position == b.Position && a.Position != MapPoint{}) || changedFields(a, b).none();
}

/// Name and command of an application; first and last address of a range.
bool looksLikeSameEntry(const CHardware& a, const CHardware& b) {
    return sameNonEmpty(a.Name, b.Name) || sameNonEmpty(a.ToJack, b.ToJack) ||
           sameNonEmpty(a.IPAddress, b.IPAddress);
}

bool sameContent(const CHardware& a, const CHardware& b) {
    return changedFields(a, b).none();
}

} // namespace

bool isListedSpecial(std::int32_t type) {
    return type == SpecialType::ApplicationRecord || type == SpecialType::DiscoverRangeRecord;
}

CRecordMatch::CRecordMatch(const Datafile::RecordList& ours, const EditJournal& journal,
                           const Datafile::RecordList& theirs)
    : ours_(ours), journal_(journal), theirs_(theirs) {
    index_.rebuild(theirs_);
}

CHardware* CRecordMatch::find(const CHardware& base) {
    if (!isListedSpecial(base.Type)) {
        const auto place = base.isDevice() ? index_.device(base.RecID) : index_.special(base.Type);
        return place ? theirs_[*place].get() : nullptr;
    }
    matchListed(base.Type);
    const auto found = listed_.find(&base);
    return found == listed_.end() ? nullptr : found->second;
}

CHardware* CRecordMatch::findChanged(const CHardware& base, const CHardware& held) {
    CHardware* record = find(base);
    if (!record || !base.isDevice() || looksLikeSameDevice(base, *record) ||
        keptItsPlace(held, *index_.device(base.RecID)))
        return record;
    return nullptr;
}

CHardware* CRecordMatch::findSameNew(const CHardware& added) {
    if (added.isDevice()) {
        const auto place = index_.device(added.RecID);
        if (!place || !sameContent(*theirs_[*place], added))
            return nullptr;
        // Two users who each add a blank device at the same place have two devices, not one.
        return theirs_[*place]->Modified == added.Modified ? theirs_[*place].get() : nullptr;
    }
    if (!isListedSpecial(added.Type))
        return nullptr;
    matchListed(added.Type);
    for (const auto& record : theirs_) {
        if (record->Type == added.Type && !listedTaken_.contains(record.get()) && sameContent(*record, added))
            return record.get();
    }
    return nullptr;
}

/// A device that got the number of one that was deleted stands at the end of the list. The old one still
/// stands in front of whatever stood behind it.
bool CRecordMatch::keptItsPlace(const CHardware& held, std::size_t place) const {
    auto at = std::find_if(ours_.begin(), ours_.end(),
                           [&held](const auto& record) { return record.get() == &held; });
    for (; at != ours_.end(); ++at) {
        if (at->get() == &held || !(*at)->isDevice() || journal_.isAdded(**at))
            continue;
        if (const auto behind = index_.device((*at)->RecID);
            behind && looksLikeSameDevice(**at, *theirs_[*behind]))
            return place < *behind;
    }
    return false;
}

std::vector<const CHardware*> CRecordMatch::basesOf(std::int32_t type) const {
    std::vector<const CHardware*> bases;
    for (const auto& record : ours_) {
        if (record->Type != type || journal_.isAdded(*record))
            continue;
        const EditJournal::Change* change = journal_.changeOf(*record);
        bases.push_back(change ? &change->base : record.get());
    }
    for (const auto& record : journal_.removals()) {
        if (record->Type == type)
            bases.push_back(record.get());
    }
    return bases;
}

/// Who is unchanged is found first; then who kept a name or a command; then, where as many are there as were,
/// the rest by their order.
void CRecordMatch::matchListed(std::int32_t type) {
    if (!listedTypes_.insert(type).second)
        return;
    const std::vector<const CHardware*> bases = basesOf(type);
    std::vector<CHardware*> records;
    for (const auto& record : theirs_) {
        if (record->Type == type)
            records.push_back(record.get());
    }
    const auto pairUp = [&](auto&& fits) {
        for (const CHardware* base : bases) {
            if (listed_.contains(base))
                continue;
            const auto found = std::find_if(records.begin(), records.end(), [&](const CHardware* record) {
                return !listedTaken_.contains(record) && fits(*base, *record);
            });
            if (found == records.end())
                continue;
            listed_[base] = *found;
            listedTaken_.insert(*found);
        }
    };
    pairUp(sameContent);
    pairUp(looksLikeSameEntry);
    if (bases.size() == records.size())
        pairUp([](const CHardware&, const CHardware&) { return true; });
}

} // namespace mirovane
