#include "model/records/RecordNames.h"

#include "model/records/Criteria.h"
#include "model/records/SpecialRecords.h"

namespace mirovane::RecordNames {

namespace {

std::string criteriaName(std::int32_t type) {
    return "criteria " + quoted(criteriaRowLabel(criteriaRowOf(type))) + " of " +
           std::string(typeName(criteriaTypeOf(type)));
}

} // namespace

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

std::string capitalName(const CHardware& record) {
    std::string text = nameOf(record);
    if (!text.empty() && text.front() >= 'a' && text.front() <= 'z')
        text.front() = static_cast<char>(text.front() - 'a' + 'A');
    return text;
}

std::string fieldName(const CHardware& record, const RecordField& field) {
    return std::string(isCriteriaRecordType(record.Type) ? criteriaMeaning(field.name) : field.name);
}

} // namespace mirovane::RecordNames
