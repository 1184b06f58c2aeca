#include "model/datafile/MergeLines.h"

#include "model/records/Criteria.h"
#include "model/records/SpecialRecords.h"

namespace mirovane::MergeLines {

namespace {

/// In quotes and on one line, with the line breaks to be seen: the log makes blanks of them.
std::string quoted(std::string_view text) {
    std::string line = "\"";
    for (const char c : text)
        if (c == '\r')
            line += "\\r";
        else if (c == '\n')
            line += "\\n";
        else
            line += c;
    return line + "\"";
}

std::string criteriaName(std::int32_t type) {
    return "criteria " + quoted(criteriaRowLabel(criteriaRowOf(type))) + " of " +
           std::string(typeName(criteriaTypeOf(type)));
}

std::string fieldName(const CHardware& record, const RecordField& field) {
    return std::string(isCriteriaRecordType(record.Type) ? criteriaMeaning(field.name) : field.name);
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
        return "external application " + quoted(applicationFromRecord(record).name);
    case SpecialType::DiscoverRangeRecord: {
        const RangeText range = rangeFromRecord(record);
        return "discover range " + quoted(range.From + " - " + range.To);
    }
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
