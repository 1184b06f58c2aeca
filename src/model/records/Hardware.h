#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace mirovane {

/// Seconds since 1970-01-01 00:00 UTC; 0 means never.
using TimeStamp = std::int32_t;

/// Floor codes of the device types. The same device waiting in the Discovered/Misc window carries the code
/// plus 1000.
namespace DeviceType {
constexpr std::int32_t Jack = 1;
constexpr std::int32_t Computer = 2;
constexpr std::int32_t Printer = 3;
constexpr std::int32_t Laptop = 4;
constexpr std::int32_t Switch = 5;
constexpr std::int32_t Router = 6;
constexpr std::int32_t Phone = 7;
constexpr std::int32_t Camera = 8;
constexpr std::int32_t Unknown = 9;
constexpr std::int32_t Ups = 10;
constexpr std::int32_t CardModule = 11;
constexpr std::int32_t Wireless = 12;
constexpr std::int32_t LocationMarker = 13;

constexpr std::int32_t first = Jack;
constexpr std::int32_t last = LocationMarker;
constexpr std::int32_t discoveredOffset = 1000;
} // namespace DeviceType

/// Types below zero: records that carry settings shared through the datafile.
namespace SpecialType {
constexpr std::int32_t FloorMapRecord = -1;
constexpr std::int32_t ApplicationRecord = -2;
constexpr std::int32_t LiveStatOwnerRecord = -3;
constexpr std::int32_t DiscoverRangeRecord = -4;
constexpr std::int32_t LiveDiscoverOwnerRecord = -5;
constexpr std::int32_t VersionRecord = -6;
} // namespace SpecialType

namespace DeviceState {
constexpr std::int32_t Def = 0;
constexpr std::int32_t On = 1;
constexpr std::int32_t Off = 2;
} // namespace DeviceState

/// Map pixels at 100 %.
struct MapPoint {
    std::int32_t x = 0;
    std::int32_t y = 0;

    bool operator==(const MapPoint&) const = default;
};

struct DateTime {
    static constexpr std::int32_t valid = 0;
    static constexpr std::int32_t invalid = 1;
    static constexpr std::int32_t null = 2;

    std::int32_t status = null;
    double value = 0.0; ///< days since 1899-12-30 00:00, the fraction is the time of day

    bool operator==(const DateTime&) const = default;
};

/// Criteria rows of a device type: row 0 decides the state, rows 1 to 11 fill fields.
constexpr int criteriaRowCount = 12;

/// The one record type: a device when `Type` is above 0, shared settings when it is below. A plain value. The
/// document owns the records of a datafile and alone changes them, on the main thread; everyone else reads or
/// holds copies. Texts are the bytes of the datafile, whatever code page the station that wrote them used.
struct CHardware {
    // Stored in the datafile. What is read in walks over the list comes first, and the numbers are next to
    // each other: a site has tens of thousands of these.
    std::int32_t Type = 0;
    std::int32_t RecID = 0;
    std::int32_t State = DeviceState::Def;
    std::int32_t Priority = 1; ///< 1 to 5
    MapPoint Position;
    TimeStamp Modified = 0;
    TimeStamp StampsModified = 0;                            ///< the Modified for which RuleStamps hold
    std::array<TimeStamp, criteriaRowCount> RuleStamps = {}; ///< by row: age of the text file last searched
    std::int32_t SlashDraw = 0;
    std::int32_t BackslashDraw = 0;
    std::int32_t VertDraw = 0;
    std::int32_t HorzDraw = 0;
    std::int32_t ReminderOn = 0;

    // Live only while the program runs.
    std::int32_t ShowAll = 0;
    std::int32_t ReminderDue = 0;
    std::int32_t SortPending = 0;
    std::int32_t Selected = 0;
    std::int32_t LSNowMark = 0;

    // Stored in the datafile.
    DateTime ReminderDate;
    std::string ToJack;
    std::string Name;
    std::string IPAddress;
    std::string MACAddress;
    std::string Username;
    std::string Comment;
    std::string SlashText;
    std::string BackslashText;
    std::string HorzText;
    std::string VertText;
    std::string ToDo;

    bool operator==(const CHardware&) const = default;

    bool isDevice() const { return Type > 0; }
    bool onFloor() const { return Type >= 1 && Type < DeviceType::discoveredOffset; }
    bool inDiscovered() const { return Type > DeviceType::discoveredOffset; }
};

/// End of a field's text that the user keeps for himself: Live Stat never overwrites it.
constexpr std::string_view keptByUser = ">>";

/// `Type` without the offset of the Discovered/Misc window.
std::int32_t floorCode(std::int32_t type);

/// "Computer" for 2 and 1002; empty for any code that is not a device type.
std::string_view typeName(std::int32_t type);

/// Floor code for a display name, upper and lower case alike; 0 when there is none.
std::int32_t typeFromName(std::string_view name);

/// Live Stat priority that a new device of this type gets; 1 for a code that is not a device type.
std::int32_t newDevicePriority(std::int32_t type);

/// Equal bytes, so that an undefined number in a damaged file still equals itself.
bool sameBits(const DateTime& a, const DateTime& b);

/// Copies what the datafile stores, and ReminderDue, and nothing else: what a snapshot of a record needs.
void copyStored(const CHardware& from, CHardware& to);

/// True when everything that the datafile stores is equal.
bool sameStored(const CHardware& a, const CHardware& b);

} // namespace mirovane
