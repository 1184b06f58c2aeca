#pragma once

#include "model/format/Datafile.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace mirovane {

/// What a record is by its type: "Computer", "VersionRecord", "criteria row Computer 3", or "type 4711".
std::string recordKind(std::int32_t type);

/// Something in a datafile that this system would not have written.
struct Oddity {
    static constexpr std::size_t wholeFile = static_cast<std::size_t>(-1);

    std::size_t record = wholeFile; ///< place in the list, from 0
    std::int32_t recID = 0;         ///< of a device, else 0
    std::string text;               ///< one sentence
};

struct DeviceCount {
    std::size_t onFloor = 0;
    std::size_t discovered = 0;
};

/// What an owner record says: on at the station of these names where State is above 0.
struct OwnerState {
    bool exists = false;
    std::int32_t State = 0;
    std::string Name;
    std::string Username;
    TimeStamp Modified = 0;
};

struct DatafileReport {
    std::int32_t fileVersion = 0;
    TimeStamp created = 0; ///< 0 where no VersionRecord says it
    std::size_t records = 0;
    std::map<std::int32_t, DeviceCount> devices; ///< by floor code, unknown ones by `Type`
    std::map<std::int32_t, std::size_t> special; ///< by type; criteria rows are counted under criteriaType
    OwnerState liveStat;                         ///< its Modified is the owner's last sign of life
    OwnerState liveDiscover;
    std::vector<Oddity> oddities; ///< in record order, then those of the whole file

    static constexpr std::int32_t criteriaType = -100;
};

DatafileReport inspectDatafile(const Datafile::Content& content);

} // namespace mirovane
