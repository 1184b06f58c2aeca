#include "model/datafile/RecordMatch.h"

#include "model/records/SpecialRecords.h"

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

CRecordMatch::CRecordMatch(const Datafile::RecordList& ours, const CEditJournal& journal,
                           const Datafile::RecordList& theirs)
    : ours_(ours), journal_(journal), theirs_(theirs) {
    index_.rebuild(theirs_);
}

bool CRecordMatch::isRepeated(const CHardware& device) const {
    return device.isDevice() && index_.device(theirs_, device.RecID, 1).has_value();
}

CHardware* CRecordMatch::find(const CHardware& base) {
    if (isRepeated(base)) {
        matchTwins(base.RecID);
    } else if (!isListedSpecial(base.Type)) {
        const auto place = base.isDevice() ? index_.device(base.RecID) : index_.special(base.Type);
        return place ? theirs_[*place].get() : nullptr;
    } else {
        matchListed(base.Type);
    }
    const auto found = listed_.find(&base);
    return found == listed_.end() ? nullptr : found->second;
}

CHardware* CRecordMatch::findChanged(const CHardware& base, const CHardware& held) {
    CHardware* record = find(base);
    if (!record || !base.isDevice() || isRepeated(base) || looksLikeSameDevice(base, *record) ||
        keptItsPlace(held, *index_.device(base.RecID)))
        return record;
    return nullptr;
}

CHardware* CRecordMatch::findSameNew(const CHardware& added) {
    if (added.isDevice()) {
        // Two users who each add a blank device at the same place have two devices, not one.
        for (std::size_t twin = 0; const auto place = index_.device(theirs_, added.RecID, twin); ++twin)
            if (sameContent(*theirs_[*place], added) && theirs_[*place]->Modified == added.Modified)
                return theirs_[*place].get();
        return nullptr;
    }
    if (!isListedSpecial(added.Type))
        return nullptr;
    matchListed(added.Type);
    for (const auto& record : theirs_)
        if (record->Type == added.Type && !listedTaken_.contains(record.get()) && sameContent(*record, added))
            return record.get();
    return nullptr;
}

/// A device that got the number of a deleted one is at the end of the list. The old one is still in front of
/// whatever came after it.
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

std::vector<const CHardware*> CRecordMatch::basesOf(const Group& group) const {
    std::vector<const CHardware*> bases;
    for (const auto& record : ours_) {
        if (!group(*record) || journal_.isAdded(*record))
            continue;
        const CEditJournal::Change* change = journal_.changeOf(*record);
        bases.push_back(change ? &change->base : record.get());
    }
    for (const auto& record : journal_.removals())
        if (group(*record))
            bases.push_back(record.get());
    return bases;
}

void CRecordMatch::matchListed(std::int32_t type) {
    if (listedTypes_.insert(type).second)
        match([type](const CHardware& record) { return record.Type == type; }, looksLikeSameEntry);
}

void CRecordMatch::matchTwins(std::int32_t recID) {
    const auto group = [recID](const CHardware& record) {
        return record.isDevice() && record.RecID == recID;
    };
    if (twinsMatched_.insert(recID).second)
        match(group, looksLikeSameDevice);
}

/// Who is unchanged is found first; then who kept a name or a command; then, where as many are there as were,
/// the rest by their order.
void CRecordMatch::match(const Group& group, bool (*alike)(const CHardware&, const CHardware&)) {
    const std::vector<const CHardware*> bases = basesOf(group);
    std::vector<CHardware*> records;
    for (const auto& record : theirs_)
        if (group(*record))
            records.push_back(record.get());
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
    pairUp(alike);
    if (bases.size() == records.size())
        pairUp([](const CHardware&, const CHardware&) { return true; });
}

} // namespace mirovane
