#include "model/Document.h"

#include "model/records/Criteria.h"

#include <algorithm>
#include <cassert>
#include <new>
#include <stdexcept>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace mirovane {

namespace {

/// What the user sees of a device beyond its stored fields.
struct SeenFlags {
    DeviceKey device;
    bool selected = false;
    bool marked = false;
};

} // namespace

CMirovaneDoc::CMirovaneDoc(const Clock& clock, CMessageLog& log, StationIdentity station)
    : clock_(clock), log_(log), station_(std::move(station)) {
    index_.rebuild(records_);
}

TimeStamp CMirovaneDoc::now() const {
    return static_cast<TimeStamp>(std::chrono::system_clock::to_time_t(clock_.wall()));
}

// ---- look-ups

const CHardware* CMirovaneDoc::findDevice(std::int32_t recID) const {
    const auto place = index_.device(recID);
    return place ? records_[*place].get() : nullptr;
}

const CHardware* CMirovaneDoc::findDevice(const DeviceKey& key) const {
    const auto place = index_.device(records_, key.recID, key.twin);
    return place ? records_[*place].get() : nullptr;
}

DeviceKey CMirovaneDoc::keyOf(const CHardware& device) const {
    return {device.RecID, index_.twinOf(records_, placeOf(device))};
}

const CHardware* CMirovaneDoc::findSpecial(std::int32_t type) const {
    const auto place = index_.special(type);
    return place ? records_[*place].get() : nullptr;
}

/// A damaged file may hold any number as a device's type, and for a large one the arithmetic ends at the rows
/// of some other type.
const CHardware* CMirovaneDoc::criteria(std::int32_t type, int row) const {
    const std::int32_t floor = floorCode(type);
    if (floor < DeviceType::first || floor > DeviceType::last)
        return nullptr;
    return findSpecial(criteriaRecordType(type, row));
}

/// The index knows the place of all but the repeated ones, which a look through the list finds.
std::size_t CMirovaneDoc::placeOf(const CHardware& record) const {
    const auto known = record.isDevice() ? index_.device(record.RecID) : index_.special(record.Type);
    if (known && records_[*known].get() == &record)
        return *known;
    const auto found = std::find_if(records_.begin(), records_.end(),
                                    [&record](const auto& held) { return held.get() == &record; });
    if (found == records_.end())
        throw std::logic_error("a record that is not in the document was to be changed");
    return static_cast<std::size_t>(found - records_.begin());
}

CHardware& CMirovaneDoc::slot(const CHardware& record) {
    return *records_[placeOf(record)];
}

// ---- edits

template <typename Note>
void CMirovaneDoc::journalise(Note note) {
    modified_ = true;
    if (since_) {
        since_->modified = true;
        note(since_->journal);
    }
    if (keepsJournal_)
        note(journal_);
}

const CHardware* CMirovaneDoc::append(CHardware record) {
    return appended(std::move(record), &CEditJournal::added);
}

const CHardware* CMirovaneDoc::bringBack(CHardware record) {
    return appended(std::move(record), &CEditJournal::cameBack);
}

const CHardware* CMirovaneDoc::appended(CHardware record, void (CEditJournal::*note)(const CHardware&)) {
    if (records_.size() >= Datafile::maxRecords) {
        log_.LogTrouble("The datafile is full (65,534 records); nothing was added", true);
        return nullptr;
    }
    try {
        records_.push_back(std::make_unique<CHardware>(std::move(record)));
        index_.appended(records_);
    } catch (const std::bad_alloc&) {
        log_.LogTrouble("Out of memory", true);
        return nullptr;
    }
    ++orderRevision_;
    const CHardware& added = *records_.back();
    journalise([&](CEditJournal& journal) { (journal.*note)(added); });
    for (DocumentObserver* observer : observers_)
        observer->recordAdded(added);
    return &added;
}

const CHardware* CMirovaneDoc::addDevice(std::int32_t type, const std::function<void(CHardware&)>& fill) {
    CHardware device;
    device.Type = type;
    device.RecID = nextRecordID();
    device.Priority = newDevicePriority(type);
    device.Modified = now();
    if (fill)
        fill(device);
    return append(std::move(device));
}

void CMirovaneDoc::change(const CHardware& record, const std::function<void(CHardware&)>& change,
                          bool byUser) {
    const std::size_t place = placeOf(record);
    CHardware& held = *records_[place];
    const CHardware before = held;
    change(held);
    if (before == held)
        return;
    index_.rekeyed(records_, place, before.Type, before.RecID);
    if (held.Type != before.Type || held.Priority != before.Priority || held.RecID != before.RecID)
        ++orderRevision_;
    if (!sameStored(before, held))
        journalise(
            [&](CEditJournal& journal) { journal.changed(before, held, byUser ? allFields : FieldSet()); });
    for (DocumentObserver* observer : observers_)
        observer->recordChanged(before, held);
}

void CMirovaneDoc::edit(const CHardware& record, const std::function<void(CHardware&)>& change) {
    this->change(record, change, true);
}

void CMirovaneDoc::editInBackground(const CHardware& record, const std::function<void(CHardware&)>& change) {
    this->change(record, change, false);
}

void CMirovaneDoc::editByUser(const CHardware& record, const std::function<void(CHardware&)>& change) {
    const auto stamped = [this, &change](CHardware& held) {
        change(held);
        held.Modified = now();
    };
    edit(record, stamped);
}

void CMirovaneDoc::remove(const CHardware& record) {
    const std::size_t place = placeOf(record);
    std::unique_ptr<CHardware> gone = std::move(records_[place]);
    records_.erase(records_.begin() + static_cast<std::ptrdiff_t>(place));
    index_.removed(records_, place, *gone);
    ++orderRevision_;
    for (DocumentObserver* observer : observers_)
        observer->recordRemoved(*gone);
    journaliseRemoval(std::move(gone));
}

void CMirovaneDoc::journaliseRemoval(std::unique_ptr<CHardware> gone) {
    modified_ = true;
    if (since_) {
        since_->modified = true;
        since_->journal.removed(*gone);
    }
    if (keepsJournal_)
        journal_.removed(std::move(gone));
}

std::size_t CMirovaneDoc::removeDevices(std::span<const DeviceKey> keys) {
    std::unordered_set<const CHardware*> wanted;
    for (const DeviceKey& key : keys)
        if (const CHardware* device = findDevice(key))
            wanted.insert(device);
    if (wanted.empty())
        return 0;
    Datafile::RecordList gone;
    for (auto& record : records_)
        if (wanted.contains(record.get()))
            gone.push_back(std::move(record));
    std::erase(records_, nullptr);
    index_.rebuild(records_);
    ++orderRevision_;
    for (auto& record : gone) {
        for (DocumentObserver* observer : observers_)
            observer->recordRemoved(*record);
        journaliseRemoval(std::move(record));
    }
    return gone.size();
}

void CMirovaneDoc::exchange(std::size_t a, std::size_t b) {
    assert(a < records_.size() && b < records_.size());
    if (a == b)
        return;
    std::swap(records_[a], records_[b]);
    index_.exchanged(records_, a, b);
    ++orderRevision_;
    modified_ = true;
    if (since_)
        since_->modified = true;
    for (DocumentObserver* observer : observers_)
        observer->orderChanged();
}

// ---- run-time flags

void CMirovaneDoc::setFlag(const CHardware& record, std::int32_t CHardware::*flag, bool on) {
    const std::int32_t value = on ? 1 : 0;
    if (record.*flag == value)
        return;
    slot(record).*flag = value;
    for (DocumentObserver* observer : observers_)
        observer->flagsChanged(record);
}

void CMirovaneDoc::setSelected(const CHardware& record, bool on) {
    setFlag(record, &CHardware::Selected, on);
}

void CMirovaneDoc::setShowAll(const CHardware& record, bool on) {
    setFlag(record, &CHardware::ShowAll, on);
}

void CMirovaneDoc::setLSNowMark(const CHardware& record, bool on) {
    setFlag(record, &CHardware::LSNowMark, on);
}

void CMirovaneDoc::setReminderDue(const CHardware& record, bool on) {
    setFlag(record, &CHardware::ReminderDue, on);
}

// ---- other records

void CMirovaneDoc::replaceAll(Datafile::RecordList records, bool inDatafile) {
    records_ = std::move(records);
    index_.rebuild(records_);
    journal_.clear();
    since_.reset();
    keepsJournal_ = inDatafile;
    modified_ = false;
    tellReplaced();
}

void CMirovaneDoc::replaceByReload(Datafile::RecordList records, CEditJournal journal,
                                   const std::vector<Renumbering>& renumbered) {
    std::unordered_map<std::int32_t, std::int32_t> newIDs;
    for (const Renumbering& change : renumbered)
        newIDs[change.from] = change.to;
    std::vector<SeenFlags> seen;
    for (const auto& record : records_) {
        if (!record->isDevice() || (record->Selected == 0 && record->LSNowMark == 0))
            continue;
        const auto moved = newIDs.find(record->RecID);
        const DeviceKey key = moved == newIDs.end() ? keyOf(*record) : DeviceKey{moved->second, 0};
        seen.push_back({key, record->Selected != 0, record->LSNowMark != 0});
    }
    journal_ = std::move(journal);
    since_.reset();
    // Observers let go of the records before they are freed.
    const Datafile::RecordList before = std::exchange(records_, std::move(records));
    index_.rebuild(records_);
    for (const SeenFlags& flags : seen) {
        if (const CHardware* device = findDevice(flags.device)) {
            CHardware& held = slot(*device);
            held.Selected = held.ShowAll = flags.selected ? 1 : 0;
            held.LSNowMark = flags.marked ? 1 : 0;
        }
    }
    modified_ = unsavedEdits();
    for (const Renumbering& change : renumbered)
        for (DocumentObserver* observer : observers_)
            observer->recordRenumbered(change.from, change.to);
    recordsBeforeReload_ = &before;
    tellReplaced();
    recordsBeforeReload_ = nullptr;
}

void CMirovaneDoc::tellReplaced() {
    ++orderRevision_;
    for (DocumentObserver* observer : observers_)
        observer->documentReplaced();
}

void CMirovaneDoc::saveBegins(const std::function<bool(const CHardware&)>& stays) {
    since_.emplace();
    if (!stays)
        return;
    for (const auto& [record, change] : journal_.changes())
        if (stays(*record))
            since_->journal.takeOver(*record, journal_);
    since_->modified = !since_->journal.nothingToKeep();
}

void CMirovaneDoc::allSaved() {
    if (since_)
        journal_ = std::move(since_->journal);
    else
        journal_.clear();
    modified_ = since_ && since_->modified;
    since_.reset();
    ++arrivals_;
    keepsJournal_ = true;
}

// ---- observers

void CMirovaneDoc::addObserver(DocumentObserver& observer) const {
    observers_.push_back(&observer);
}

void CMirovaneDoc::removeObserver(DocumentObserver& observer) const {
    std::erase(observers_, &observer);
}

} // namespace mirovane
