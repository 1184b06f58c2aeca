#include "model/Criteria.h"
#include "model/Document.h"
#include "platform/FilePaths.h"

#include <filesystem>
#include <string_view>
#include <utility>

namespace mirovane {

namespace {

constexpr std::int32_t firstToDoRow = criteriaRecordType(DeviceType::first, 11);

Datafile::Error cannotRead(const FileError& error) {
    return {Datafile::Error::Kind::CannotRead, 0, 0, error.sentence};
}

bool looksLikeWindowsPath(std::string_view path) {
    const bool drive = path.size() > 2 && path[1] == ':' && (path[2] == '\\' || path[2] == '/');
    return drive || path.starts_with("\\\\");
}

/// `stored` as it is found from the folder of `datafile`.
std::string resolveFrom(const std::string& datafile, const std::string& stored) {
    const std::filesystem::path folder = std::filesystem::path(datafile).parent_path();
    if (stored.empty() || stored.front() == '/' || datafile.empty())
        return stored;
    if (!looksLikeWindowsPath(stored))
        return (folder / stored).string();
    if (existsOnDisk(stored))
        return stored;
    const std::filesystem::path beside = folder / stored.substr(stored.find_last_of("\\/") + 1);
    return existsOnDisk(beside.string()) ? beside.string() : stored;
}

} // namespace

// ---- a new datafile

CHardware CMirovaneDoc::makeSpecial(std::int32_t type, std::int32_t state) const {
    CHardware record;
    record.Type = type;
    record.State = state;
    record.Modified = now();
    return record;
}

void CMirovaneDoc::newDatafile() {
    path_.clear();
    knownIdentity_.reset();
    journal_.clear();
    fileVersion_ = Datafile::currentVersion;
    saveNote_.clear();
    loading_ = pendingChanges_ = upgradePending_ = mustReload_ = exportAuto_ = false;
    discovered_ = 0;
    fillNewDatafile();
    creationTime_ = findSpecial(SpecialType::VersionRecord)->Modified;
    modified_ = false;
    tellReplaced();
}

void CMirovaneDoc::fillNewDatafile() {
    records_.clear();
    index_.rebuild(records_);
    insert(makeSpecial(SpecialType::VersionRecord, Datafile::currentVersion));
    for (const std::int32_t type : {SpecialType::LiveStatOwnerRecord, SpecialType::LiveDiscoverOwnerRecord}) {
        CHardware owner = makeSpecial(type, 0);
        owner.Name = station_.computerName;
        owner.Username = station_.userName;
        insert(std::move(owner));
    }
    for (std::int32_t type = DeviceType::first; type <= DeviceType::last; ++type) {
        for (int row = 0; row < criteriaRowCount; ++row) {
            CHardware record;
            record.Type = criteriaRecordType(type, row);
            applyCriteriaDefaults(record);
            insert(std::move(record));
        }
    }
}

void CMirovaneDoc::tellReplaced() {
    ++orderRevision_;
    for (DocumentObserver* observer : observers_)
        observer->documentReplaced();
}

// ---- reading

std::optional<Datafile::Error> CMirovaneDoc::load(const std::string& path) {
    auto locked = files_.lock(path, FileAccess::Read, lockPatience);
    if (!locked)
        return cannotRead(locked.error());
    const auto bytes = locked.value()->read();
    if (!bytes)
        return cannotRead(bytes.error());
    auto content = Datafile::decode(bytes.value());
    if (!content)
        return content.error();
    path_ = path;
    fileVersion_ = content.value().fileVersion;
    knownIdentity_ = locked.value()->identity();
    journal_.clear();
    records_ = std::move(content.value().records);
    index_.rebuild(records_);
    mustReload_ = modified_ = false;
    reportedError_.clear();
    if (const CHardware* version = findSpecial(SpecialType::VersionRecord))
        creationTime_ = version->Modified;
    display_.readAtOpen(settings_);
    return std::nullopt;
}

std::optional<Datafile::Error> CMirovaneDoc::open(const std::string& path) {
    if (auto error = load(absolutePath(path)))
        return error;
    saveNote_.clear();
    loading_ = pendingChanges_ = upgradePending_ = false;
    discovered_ = 0;
    runPostLoadPass();
    tellReplaced();
    return std::nullopt;
}

/// The run-time flags need no clearing: every record is fresh.
void CMirovaneDoc::runPostLoadPass() {
    exportAuto_ = readExportAuto(settings_, path_);
    addMissingRecords();
    upgradeVersion();
    if (!holdsSpecial(firstToDoRow))
        addToDoRows();
}

/// A datafile that lost them is still somebody's: ownership and saving need these records.
void CMirovaneDoc::addMissingRecords() {
    if (!holdsSpecial(SpecialType::VersionRecord))
        insert(makeSpecial(SpecialType::VersionRecord, fileVersion_));
    for (const std::int32_t owner :
         {SpecialType::LiveStatOwnerRecord, SpecialType::LiveDiscoverOwnerRecord}) {
        if (!holdsSpecial(owner))
            insert(makeSpecial(owner, 0));
    }
}

void CMirovaneDoc::upgradeVersion() {
    const auto place = index_.special(SpecialType::VersionRecord);
    if (!place)
        return;
    creationTime_ = records_[*place]->Modified;
    if (fileVersion_ != Datafile::currentVersion) {
        records_[*place]->State = Datafile::currentVersion;
        saveNote_ = "updated datafile version " + std::to_string(fileVersion_) + " to " +
                    std::to_string(Datafile::currentVersion) + " ";
        pendingChanges_ = upgradePending_ = true;
    }
    if (*place > 0)
        trade(0, *place);
}

/// Datafiles from before the To Do row have none of the thirteen.
void CMirovaneDoc::addToDoRows() {
    for (std::int32_t type = DeviceType::first; type <= DeviceType::last; ++type) {
        CHardware record;
        record.Type = criteriaRecordType(type, 11);
        insert(std::move(record));
    }
    for (const auto& record : records_) {
        if (isCriteriaRecordType(record->Type) && (-record->Type - 80) % 20 == 11)
            applyToDoRowDefaults(*record);
    }
}

// ---- the floor map's record

std::string CMirovaneDoc::floorMapPath() const {
    const CHardware* record = findSpecial(SpecialType::FloorMapRecord);
    return record ? record->Name : std::string();
}

std::string CMirovaneDoc::photoFolder() const {
    const CHardware* record = findSpecial(SpecialType::FloorMapRecord);
    return record ? record->Username : std::string();
}

std::string CMirovaneDoc::resolvedFloorMapPath() const {
    return resolveFrom(path_, floorMapPath());
}

std::string CMirovaneDoc::resolvedPhotoFolder() const {
    return resolveFrom(path_, photoFolder());
}

} // namespace mirovane
