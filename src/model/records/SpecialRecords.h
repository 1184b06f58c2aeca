#pragma once

#include "model/records/Hardware.h"
#include "platform/Host.h"

#include <cstdint>
#include <string>

namespace mirovane {

// What the special records of a datafile mean. They are stored as CHardware, in fields that have other names;
// which field holds what is written down here and, for the criteria rows, in Criteria.h, and nowhere else.
// xFromRecord() reads a value out of its record; toRecord() writes it back and leaves the record's other
// fields alone. Neither looks at the record's Type.

/// Where the floor map and the photos of the users are, as the user who chose them named them.
struct FloorMapValues {
    std::string mapPath;
    std::string photoFolder;

    bool operator==(const FloorMapValues&) const = default;

    /// Where the map is found from here. A relative path counts from the datafile's folder, then from the
    /// current one. A path that does not exist here (the datafile came from another computer, perhaps with
    /// another kind of path) is looked for by its last name beside the datafile. As it is when nothing is
    /// found, so that messages name what the user knows. Asks the disk: it may wait for a slow share.
    std::string findMap(const std::string& datafile) const;

    /// The same for the folder.
    std::string findPhotos(const std::string& datafile) const;
};

FloorMapValues floorMapFromRecord(const CHardware& record);
void toRecord(const FloorMapValues& map, CHardware& record);

/// An External Application: a named command line.
struct ApplicationValues {
    bool onMenu = false;
    std::string name;
    std::string command;

    bool operator==(const ApplicationValues&) const = default;
};

ApplicationValues applicationFromRecord(const CHardware& record);
void toRecord(const ApplicationValues& application, CHardware& record);

/// The two ends of an address range as somebody typed them, right or wrong.
struct RangeText {
    std::string From;
    std::string To;

    bool operator==(const RangeText&) const = default;
};

RangeText rangeFromRecord(const CHardware& record);
void toRecord(const RangeText& range, CHardware& record);

/// The address range that Live Discover is in and the address that it asks next. All empty: it has not begun.
struct DiscoverWalk {
    std::string from;
    std::string to;
    std::string next;

    bool operator==(const DiscoverWalk&) const = default;
};

/// Which station runs Live Stat or Live Discover.
struct OwnerValues {
    bool on = false;
    StationIdentity station; ///< the one that runs it, or ran it last
    TimeStamp modified = 0;  ///< Live Stat: its last sign of life. Live Discover: its last discovery
    DiscoverWalk walk;       ///< Live Discover only
};

OwnerValues ownerFromRecord(const CHardware& record);
void toRecord(const OwnerValues& owner, CHardware& record);

/// Which layout the datafile has, and since when it exists.
struct VersionValues {
    std::int32_t version = 0;
    TimeStamp created = 0;

    bool operator==(const VersionValues&) const = default;
};

VersionValues versionFromRecord(const CHardware& record);
void toRecord(const VersionValues& version, CHardware& record);

/// The records that tell which station runs a feature.
bool isOwnerRecord(const CHardware& record);

/// There may be several of this special record, and nothing numbers them.
bool isListedSpecial(std::int32_t type);

} // namespace mirovane
