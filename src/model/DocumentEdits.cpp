#include "model/Criteria.h"
#include "model/Document.h"

#include <algorithm>
#include <cassert>
#include <new>
#include <unordered_set>
#include <utility>

namespace mirovane {

namespace {

constexpr std::size_t firstRowOfTexts = 7;

} // namespace

/// Without telling anybody: for what happens while the document is filled.
const CHardware* CMirovaneDoc::insert(CHardware record) {
    if (records_.size() >= Datafile::maxRecords) {
        log_.LogMessage("The datafile is full (65,534 records); nothing was added", true);
        return nullptr;
    }
    try {
        records_.push_back(std::make_unique<CHardware>(std::move(record)));
        index_.appended(records_);
    } catch (const std::bad_alloc&) {
        log_.LogMessage("Out of memory", true);
        return nullptr;
    }
    ++orderRevision_;
    return records_.back().get();
}

const CHardware* CMirovaneDoc::append(CHardware record) {
    const CHardware* added = insert(std::move(record));
    if (!added)
        return nullptr;
    modified_ = true;
    if (!path_.empty())
        journal_.added(*added);
    for (DocumentObserver* observer : observers_)
        observer->recordAdded(*added);
    return added;
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
    if (!sameStored(before, held)) {
        modified_ = true;
        if (!path_.empty())
            journal_.changed(before, held, byUser ? allFields : FieldSet());
    }
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
    edit(record, [this, &change](CHardware& held) {
        change(held);
        held.Modified = now();
    });
}

void CMirovaneDoc::remove(const CHardware& record) {
    const std::size_t place = placeOf(record);
    std::unique_ptr<CHardware> gone = std::move(records_[place]);
    records_.erase(records_.begin() + static_cast<std::ptrdiff_t>(place));
    index_.removed(records_, place, *gone);
    ++orderRevision_;
    modified_ = true;
    for (DocumentObserver* observer : observers_)
        observer->recordRemoved(*gone);
    if (!path_.empty())
        journal_.removed(std::move(gone));
}

/// One pass over the list, however many go.
std::size_t CMirovaneDoc::removeDevices(std::span<const std::int32_t> recIDs) {
    const std::unordered_set<std::int32_t> wanted(recIDs.begin(), recIDs.end());
    Datafile::RecordList gone;
    for (auto& record : records_) {
        if (record->isDevice() && wanted.contains(record->RecID))
            gone.push_back(std::move(record));
    }
    if (gone.empty())
        return 0;
    std::erase(records_, nullptr);
    index_.rebuild(records_);
    ++orderRevision_;
    modified_ = true;
    for (auto& record : gone) {
        for (DocumentObserver* observer : observers_)
            observer->recordRemoved(*record);
        if (!path_.empty())
            journal_.removed(std::move(record));
    }
    return gone.size();
}

void CMirovaneDoc::trade(std::size_t a, std::size_t b) {
    assert(a < records_.size() && b < records_.size());
    std::swap(records_[a], records_[b]);
    index_.exchanged(records_, a, b);
    ++orderRevision_;
}

void CMirovaneDoc::exchange(std::size_t a, std::size_t b) {
    if (a == b)
        return;
    trade(a, b);
    modified_ = true;
    for (DocumentObserver* observer : observers_)
        observer->orderChanged();
}

// ---- criteria

void CMirovaneDoc::setCriteria(std::int32_t type, int row, int column, const std::string& text) {
    const auto what = static_cast<CriteriaColumn>(column);
    const CHardware* record = criteria(type, row);
    if (!record) {
        CHardware missing;
        missing.Type = criteriaRecordType(type, row);
        applyCriteriaDefaults(missing);
        record = append(std::move(missing));
    }
    if (!record)
        return;
    edit(*record, [what, &text](CHardware& held) { setCriteriaValue(held, what, text); });
    forgetTextFileStamps(floorCode(type), what != CriteriaColumn::IfMatch);
}

void CMirovaneDoc::forgetTextFileStamps(std::int32_t type, bool allRows) {
    const std::size_t firstRow = allRows ? 0 : firstRowOfTexts;
    for (const auto& record : records_) {
        const auto stamps = std::span(record->RuleStamps).subspan(firstRow);
        const auto isSet = [](TimeStamp stamp) {
            return stamp != 0;
        };
        if (record->Type != type || std::none_of(stamps.begin(), stamps.end(), isSet))
            continue;
        editInBackground(*record, [firstRow](CHardware& held) {
            std::fill(held.RuleStamps.begin() + static_cast<std::ptrdiff_t>(firstRow), held.RuleStamps.end(),
                      0);
        });
    }
}

void CMirovaneDoc::resetCriteria() {
    for (const auto& record : records_) {
        if (isCriteriaRecordType(record->Type))
            edit(*record, [](CHardware& held) { applyCriteriaDefaults(held); });
    }
}

// ---- the floor map's record

bool CMirovaneDoc::setFloorMapField(std::string CHardware::*field, const std::string& text) {
    const CHardware* record = findSpecial(SpecialType::FloorMapRecord);
    if (!record)
        record = append(makeSpecial(SpecialType::FloorMapRecord, 0));
    if (!record)
        return false;
    editByUser(*record, [field, &text](CHardware& held) { held.*field = text; });
    return true;
}

bool CMirovaneDoc::setFloorMapPath(const std::string& path) {
    return setFloorMapField(&CHardware::Name, path);
}

bool CMirovaneDoc::setPhotoFolder(const std::string& folder) {
    return setFloorMapField(&CHardware::Username, folder);
}

} // namespace mirovane
