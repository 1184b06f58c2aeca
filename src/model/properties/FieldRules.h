#pragma once

#include "model/Document.h"
#include "model/records/Criteria.h"

#include <optional>
#include <string_view>

namespace mirovane {

/// The criteria row, 1 to 11, that can write this field; nothing for a field that Live Stat never writes.
std::optional<int> ruleRowOf(std::string_view field);

/// A rule of a device's type that writes a field.
struct FieldRule {
    int row = 0;
    CriteriaRow criteria;
};

/// Nothing when Live Stat leaves the field of this type alone.
std::optional<FieldRule> fieldRule(const CMirovaneDoc& document, std::int32_t type, std::string_view field);

} // namespace mirovane
