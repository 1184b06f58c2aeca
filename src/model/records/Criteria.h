#pragma once

#include "model/records/Hardware.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace mirovane {

/// Names of the actions that a criteria row can hold, spelled as the datafile stores them.
namespace Action {
constexpr std::string_view DoNothing = "Do Nothing";
constexpr std::string_view Ping = "Ping";
constexpr std::string_view SearchInTextFile = "Search in Text File";
constexpr std::string_view SearchForFile = "Search for File";
constexpr std::string_view Registry = "Registry";
constexpr std::string_view SnmpGet = "SNMPGet";
constexpr std::string_view MatchToJack = "Match to Jack#";
constexpr std::string_view NsLookup = "NS Lookup";
constexpr std::string_view NsLookupReverse = "NS Lookup(reverse)";
constexpr std::string_view SetValue = "Set Value";
constexpr std::string_view WhosLogon = "Who's Logon";
} // namespace Action

/// A device by its name, then by its address. The one argument of "Who's Logon".
constexpr std::string_view nameAndAddressArgument = "$mvN $mvI";

/// One criteria row's values, read out of the record that stores them under other names.
struct CriteriaRow {
    std::string Command;
    std::string Argument;
    std::string Delimiter;
    std::int32_t FieldPos = 0;
    std::string SearchFor;
    std::string Condition;
    std::int32_t IfMatch = 0;

    bool operator==(const CriteriaRow&) const = default;
};

enum class CriteriaColumn { Command, Argument, Delimiter, FieldPos, SearchFor, IfMatch, Condition };

/// `Type` of the record that holds row `row` of device type `type` (1 to 13, with or without the
/// Discovered/Misc offset): -100 to -111 for the jack's rows, -120 to -131 for the computer's, and so on.
constexpr std::int32_t criteriaRecordType(std::int32_t type, int row) {
    const std::int32_t floor =
        type > DeviceType::discoveredOffset ? type - DeviceType::discoveredOffset : type;
    return -(20 * floor + 80 + row);
}

/// The device type, without offset, and the row of such a record. Only for a criteria record's `Type`.
constexpr std::int32_t criteriaTypeOf(std::int32_t recordType) {
    return (-recordType - 80) / 20;
}
constexpr int criteriaRowOf(std::int32_t recordType) {
    return (-recordType - 80) % 20;
}

constexpr bool isCriteriaRecordType(std::int32_t recordType) {
    return recordType <= criteriaRecordType(DeviceType::first, 0) &&
           recordType >= criteriaRecordType(DeviceType::last, criteriaRowCount - 1) &&
           criteriaRowOf(recordType) < criteriaRowCount;
}

CriteriaRow criteriaFromRecord(const CHardware& record);
void toRecord(const CriteriaRow& row, CHardware& record);

/// "Command" for the field "Name": what a criteria record keeps in a field of CHardware. The field's own name
/// where it keeps nothing there.
std::string_view criteriaMeaning(std::string_view field);

/// Writes one value from its text form: FieldPos stops at the first non-digit, IfMatch is "T" or anything
/// else.
void setCriteriaValue(CHardware& record, CriteriaColumn column, std::string_view text);

/// The defaults of types 1 to 12; a Location Marker's record is left alone, its rows are never used.
void applyCriteriaDefaults(CHardware& record);

/// What a row 11 (To Do) record gets when it is added to a datafile that has none.
void applyToDoRowDefaults(CHardware& record);

/// "Name", "IP Address", ... as the criteria window labels the rows.
std::string_view criteriaRowLabel(int row);

/// The device field that rows 1 to 11 write. `row` must not be 0.
std::string CHardware::*criteriaTargetField(int row);

/// The flag that rows 7 to 11 set beside the field; null for the others.
std::int32_t CHardware::*criteriaDrawFlag(int row);

/// Actions that a row offers, in the order of its list.
std::span<const std::string_view> actionsForRow(std::int32_t type, int row);

} // namespace mirovane
