#include "model/records/SpecialRecords.h"

#include <filesystem>
#include <system_error>

namespace mirovane {

namespace {

namespace fs = std::filesystem;

bool isFile(const fs::path& path) {
    std::error_code failed;
    return fs::is_regular_file(path, failed);
}

bool isFolder(const fs::path& path) {
    std::error_code failed;
    return fs::is_directory(path, failed);
}

std::string findFrom(const std::string& datafile, const std::string& named,
                     bool (*isThere)(const fs::path&)) {
    if (named.empty())
        return {};
    const bool relative = fs::path(named).is_relative();
    if (datafile.empty() || (!relative && isThere(named)))
        return named;
    std::error_code failed;
    const fs::path folder = fs::absolute(datafile, failed).parent_path();
    if (const fs::path path = (folder / named).lexically_normal(); isThere(path))
        return path.string();
    if (relative && isThere(named))
        return named;
    const std::string lastName = named.substr(named.find_last_of("\\/") + 1);
    const fs::path beside = folder / lastName;
    return !lastName.empty() && isThere(beside) ? beside.string() : named;
}

} // namespace

std::string FloorMapValues::findMap(const std::string& datafile) const {
    return findFrom(datafile, mapPath, isFile);
}

std::string FloorMapValues::findPhotos(const std::string& datafile) const {
    return findFrom(datafile, photoFolder, isFolder);
}

FloorMapValues floorMapFromRecord(const CHardware& record) {
    return {record.Name, record.Username};
}

void toRecord(const FloorMapValues& map, CHardware& record) {
    record.Name = map.mapPath;
    record.Username = map.photoFolder;
}

ApplicationValues applicationFromRecord(const CHardware& record) {
    return {record.State == 1, record.Name, record.ToJack};
}

void toRecord(const ApplicationValues& application, CHardware& record) {
    record.State = application.onMenu ? 1 : 0;
    record.Name = application.name;
    record.ToJack = application.command;
}

RangeText rangeFromRecord(const CHardware& record) {
    return {record.Name, record.IPAddress};
}

void toRecord(const RangeText& range, CHardware& record) {
    record.Name = range.From;
    record.IPAddress = range.To;
}

OwnerValues ownerFromRecord(const CHardware& record) {
    return {record.State > 0,
            {record.Name, record.Username},
            record.Modified,
            {record.MACAddress, record.Comment, record.IPAddress}};
}

void toRecord(const OwnerValues& owner, CHardware& record) {
    record.State = owner.on ? 1 : 0;
    record.Name = owner.station.computerName;
    record.Username = owner.station.userName;
    record.Modified = owner.modified;
    record.MACAddress = owner.walk.from;
    record.Comment = owner.walk.to;
    record.IPAddress = owner.walk.next;
}

VersionValues versionFromRecord(const CHardware& record) {
    return {record.State, record.Modified};
}

void toRecord(const VersionValues& version, CHardware& record) {
    record.State = version.version;
    record.Modified = version.created;
}

bool isOwnerRecord(const CHardware& record) {
    return record.Type == SpecialType::LiveStatOwnerRecord ||
           record.Type == SpecialType::LiveDiscoverOwnerRecord;
}

bool isListedSpecial(std::int32_t type) {
    return type == SpecialType::ApplicationRecord || type == SpecialType::DiscoverRangeRecord;
}

} // namespace mirovane
