#include "model/RecordIndex.h"

#include <algorithm>
#include <utility>

namespace mirovane {

// ---- CFirstPlaceTable

std::optional<CFirstPlaceTable::Entry> CFirstPlaceTable::find(std::int32_t key) const {
    const auto found = entries_.find(key);
    return found == entries_.end() ? std::nullopt : std::optional(found->second);
}

void CFirstPlaceTable::add(std::int32_t key, std::uint32_t place) {
    const auto [entry, first] = entries_.try_emplace(key, Entry{place, false});
    if (!first)
        entry->second = {std::min(entry->second.place, place), true};
}

void CFirstPlaceTable::closeGap(std::uint32_t place) {
    for (auto& [key, entry] : entries_)
        if (entry.place > place)
            --entry.place;
}

// ---- CRecordIndex

CRecordIndex::Key CRecordIndex::keyOf(std::int32_t type, std::int32_t recID) {
    return type > 0 ? Key{true, recID} : Key{false, type};
}

void CRecordIndex::add(const Key& key, std::size_t place) {
    if (key.isDevice)
        ++deviceCount_;
    table(key).add(key.number, static_cast<std::uint32_t>(place));
}

/// The list no longer holds `key` where it did.
void CRecordIndex::drop(const Datafile::RecordList& records, const Key& key) {
    if (key.isDevice)
        --deviceCount_;
    const auto known = table(key).find(key.number);
    if (known && known->repeated)
        searchAgain(records, key);
    else
        table(key).erase(key.number);
    if (key.isDevice && key.number > 0)
        lowestFree_ = std::min(lowestFree_, key.number);
}

void CRecordIndex::searchAgain(const Datafile::RecordList& records, const Key& key) {
    std::optional<CFirstPlaceTable::Entry> entry;
    for (std::size_t i = 0; i < records.size() && !(entry && entry->repeated); ++i) {
        if (keyOf(*records[i]) != key)
            continue;
        if (entry)
            entry->repeated = true;
        else
            entry = CFirstPlaceTable::Entry{static_cast<std::uint32_t>(i), false};
    }
    if (entry)
        table(key).put(key.number, *entry);
    else
        table(key).erase(key.number);
}

void CRecordIndex::rebuild(const Datafile::RecordList& records) {
    devices_.clear();
    specials_.clear();
    lowestFree_ = 1;
    deviceCount_ = 0;
    devices_.reserve(records.size());
    for (std::size_t i = 0; i < records.size(); ++i)
        add(keyOf(*records[i]), i);
}

void CRecordIndex::appended(const Datafile::RecordList& records) {
    add(keyOf(*records.back()), records.size() - 1);
}

void CRecordIndex::removed(const Datafile::RecordList& records, std::size_t place, const CHardware& record) {
    devices_.closeGap(static_cast<std::uint32_t>(place));
    specials_.closeGap(static_cast<std::uint32_t>(place));
    drop(records, keyOf(record));
}

void CRecordIndex::exchanged(const Datafile::RecordList& records, std::size_t a, std::size_t b) {
    moved(records, keyOf(*records[a]), a);
    moved(records, keyOf(*records[b]), b);
}

void CRecordIndex::moved(const Datafile::RecordList& records, const Key& key, std::size_t to) {
    const auto known = table(key).find(key.number);
    if (known && known->repeated)
        searchAgain(records, key);
    else
        table(key).put(key.number, {static_cast<std::uint32_t>(to), false});
}

void CRecordIndex::rekeyed(const Datafile::RecordList& records, std::size_t place, std::int32_t oldType,
                           std::int32_t oldRecID) {
    const Key before = keyOf(oldType, oldRecID);
    const Key after = keyOf(*records[place]);
    if (before == after)
        return;
    drop(records, before);
    add(after, place);
}

std::optional<std::size_t> CRecordIndex::device(std::int32_t recID) const {
    const auto known = devices_.find(recID);
    return known ? std::optional<std::size_t>(known->place) : std::nullopt;
}

std::optional<std::size_t> CRecordIndex::device(const Datafile::RecordList& records, std::int32_t recID,
                                                std::size_t twin) const {
    const auto known = devices_.find(recID);
    if (!known || (twin > 0 && !known->repeated))
        return std::nullopt;
    for (std::size_t i = known->place; i < records.size(); ++i)
        if (keyOf(*records[i]) == Key{true, recID} && twin-- == 0)
            return i;
    return std::nullopt;
}

std::size_t CRecordIndex::twinOf(const Datafile::RecordList& records, std::size_t place) const {
    const auto known = devices_.find(records[place]->RecID);
    if (!known || !known->repeated)
        return 0;
    const Key key = keyOf(*records[place]);
    std::size_t before = 0;
    for (std::size_t i = known->place; i < place; ++i)
        before += keyOf(*records[i]) == key ? 1 : 0;
    return before;
}

std::int32_t CRecordIndex::nextRecordID() const {
    while (devices_.find(lowestFree_))
        ++lowestFree_;
    return lowestFree_;
}

std::optional<std::size_t> CRecordIndex::special(std::int32_t type) const {
    const auto known = specials_.find(type);
    return known ? std::optional<std::size_t>(known->place) : std::nullopt;
}

} // namespace mirovane
