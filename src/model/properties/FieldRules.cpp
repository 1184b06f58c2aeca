#include "model/properties/FieldRules.h"

#include "model/records/ActionCatalogue.h"
#include "model/records/FieldNames.h"

namespace mirovane {

std::optional<int> ruleRowOf(std::string_view name) {
    const RecordField* field = findRecordField(name);
    const auto* member = field ? std::get_if<std::string CHardware::*>(&field->member) : nullptr;
    for (int row = 1; member && row < criteriaRowCount; ++row)
        if (criteriaTargetField(row) == *member)
            return row;
    return std::nullopt;
}

std::optional<FieldRule> fieldRule(const CMirovaneDoc& document, std::int32_t type, std::string_view field) {
    const auto row = ruleRowOf(field);
    const CHardware* record = row ? document.criteria(type, *row) : nullptr;
    if (!record || floorCode(type) == DeviceType::LocationMarker)
        return std::nullopt;
    FieldRule rule{*row, criteriaFromRecord(*record)};
    // A name that no action has does nothing.
    if (actionEntry(rule.criteria.Command).name == Action::DoNothing)
        return std::nullopt;
    return rule;
}

} // namespace mirovane
