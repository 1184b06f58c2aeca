#include "model/datafile/NewRecords.h"

#include "model/records/Criteria.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace mirovane {

namespace {

constexpr int toDoRow = 11;

CHardware special(std::int32_t type, std::int32_t state, TimeStamp now) {
    CHardware record;
    record.Type = type;
    record.State = state;
    record.Modified = now;
    return record;
}

void add(Datafile::RecordList& records, CHardware record) {
    if (records.size() < Datafile::maxRecords)
        records.push_back(std::make_unique<CHardware>(std::move(record)));
}

auto find(Datafile::RecordList& records, std::int32_t type) {
    return std::ranges::find_if(
        records, [type](const auto& record) { return record->Type == type; });
}

void addUnlessThere(Datafile::RecordList& records, CHardware record) {
    if (find(records, record.Type) == records.end())
        add(records, std::move(record));
}

void addCriteria(Datafile::RecordList& records, std::int32_t type, int row) {
    CHardware record;
    record.Type = criteriaRecordType(type, row);
    applyCriteriaDefaults(record);
    add(records, std::move(record));
}

/// Datafiles from before the To Do row have none of the thirteen.
void addToDoRows(Datafile::RecordList& records) {
    if (find(records, criteriaRecordType(DeviceType::first, toDoRow)) != records.end())
        return;
    for (std::int32_t type = DeviceType::first; type <= DeviceType::last; ++type)
        addCriteria(records, type, toDoRow);
    for (std::int32_t type = DeviceType::first; type <= DeviceType::last; ++type)
        for (const auto& record : records)
            if (record->Type == criteriaRecordType(type, toDoRow))
                applyToDoRowDefaults(*record);
}

} // namespace

Datafile::RecordList newRecords(const StationIdentity& station, TimeStamp now) {
    Datafile::RecordList records;
    add(records, special(SpecialType::VersionRecord, Datafile::currentVersion, now));
    for (const std::int32_t type : {SpecialType::LiveStatOwnerRecord, SpecialType::LiveDiscoverOwnerRecord}) {
        CHardware owner = special(type, 0, now);
        owner.Name = station.computerName;
        owner.Username = station.userName;
        add(records, std::move(owner));
    }
    for (std::int32_t type = DeviceType::first; type <= DeviceType::last; ++type)
        for (int row = 0; row < criteriaRowCount; ++row)
            addCriteria(records, type, row);
    return records;
}

void completeRecords(Datafile::RecordList& records, std::int32_t fileVersion, TimeStamp now) {
    addUnlessThere(records, special(SpecialType::VersionRecord, fileVersion, now));
    addUnlessThere(records, special(SpecialType::LiveStatOwnerRecord, 0, now));
    addUnlessThere(records, special(SpecialType::LiveDiscoverOwnerRecord, 0, now));
    if (const auto version = find(records, SpecialType::VersionRecord); version != records.end()) {
        if (fileVersion != Datafile::currentVersion)
            (*version)->State = Datafile::currentVersion;
        std::swap(records.front(), *version);
    }
    addToDoRows(records);
}

} // namespace mirovane
