#include "model/MergeLines.h"

#include "model/Criteria.h"

namespace mirovane::MergeLines {

namespace {

/// In quotes and on one line.
std::string quoted(std::string_view text) {
    std::string line = "\"";
    for (const char c : text) {
        if (c == '\r')
            line += "\\r";
        else if (c == '\n')
            line += "\\n";
        else if (static_cast<unsigned char>(c) < 0x20)
            line += ' ';
        else
            line += c;
    }
    return line + "\"";
}

std::string criteriaName(std::int32_t type) {
    const std::int32_t code = -type - 80;
    return "criteria " + quoted(criteriaRowLabel(code % 20)) + " of " + std::string(typeName(code / 20));
}

/// Criteria rows borrow the fields of devices for other things.
std::string fieldName(const CHardware& record, const RecordField& field) {
    if (isCriteriaRecordType(record.Type)) {
        struct Borrowed {
            std::string_view field, meaning;
        };
        for (const Borrowed& borrowed : {Borrowed{"Name", "Command"},
                                         {"IPAddress", "Argument"},
                                         {"Username", "Delimiter"},
                                         {"State", "FieldPos"},
                                         {"MACAddress", "SearchFor"},
                                         {"Comment", "Condition"},
                                         {"ReminderOn", "IfMatch"}}) {
            if (borrowed.field == field.name)
                return std::string(borrowed.meaning);
        }
    }
    return std::string(field.name);
}

std::string inFront(std::string text) {
    if (!text.empty() && text.front() >= 'a' && text.front() <= 'z')
        text.front() = static_cast<char>(text.front() - 'a' + 'A');
    return text;
}

} // namespace

std::string nameOf(const CHardware& record) {
    switch (record.Type) {
    case SpecialType::FloorMapRecord:
        return "floor map";
    case SpecialType::ApplicationRecord:
        return "external application " + quoted(record.Name);
    case SpecialType::DiscoverRangeRecord:
        return "discover range " + quoted(record.Name + " - " + record.IPAddress);
    default:
        break;
    }
    if (isCriteriaRecordType(record.Type))
        return criteriaName(record.Type);
    if (!record.isDevice())
        return "record of type " + std::to_string(record.Type);
    const std::string& name = floorCode(record.Type) == DeviceType::Jack ? record.ToJack : record.Name;
    return "device " + std::to_string(record.RecID) + (name.empty() ? "" : " " + quoted(name));
}

std::string gaveWay(const CHardware& ours, const CHardware& theirs, const RecordField& field) {
    return "Merge: " + fieldName(ours, field) + " of " + nameOf(ours) + ": " +
           quoted(fieldValue(theirs, field)) + ", saved by another station, gave way to " +
           quoted(fieldValue(ours, field));
}

std::string cameBack(const CHardware& ours) {
    return "Merge: " + inFront(nameOf(ours)) + " was deleted by another station and changed here: it is kept";
}

std::string keptTheirs(const CHardware& theirs) {
    return "Merge: " + inFront(nameOf(theirs)) +
           " was deleted here and changed by another station: it is kept";
}

std::string renumbered(const CHardware& ours, std::int32_t newRecID) {
    return "Merge: " + inFront(nameOf(ours)) + " has the RecID " + std::to_string(newRecID) +
           " now: another station gave its own to a device of its own";
}

} // namespace mirovane::MergeLines
