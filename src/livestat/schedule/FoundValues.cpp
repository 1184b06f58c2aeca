#include "livestat/schedule/FoundValues.h"

#include "model/records/Criteria.h"

#include <functional>

namespace mirovane {

namespace {

std::string nameOf(const CHardware& device) {
    const std::string& name = device.Name.empty() ? device.ToJack : device.Name;
    const std::string type(typeName(device.Type));
    return (type.empty() ? "Device" : type) + " " + (name.empty() ? std::to_string(device.RecID) : name);
}

} // namespace

std::optional<std::string> CFoundValues::replace(const CHardware& before, const CHardware& after, int row) {
    if (row == 0)
        return std::nullopt;
    const std::string& was = before.*criteriaTargetField(row);
    const std::string& is = after.*criteriaTargetField(row);
    if (was == is)
        return std::nullopt;
    const std::uint64_t key = std::uint64_t{static_cast<std::uint32_t>(before.RecID)} * criteriaRowCount +
                              static_cast<std::uint64_t>(row);
    const auto known = found_.find(key);
    const bool foundHere = known != found_.end() && known->second == std::hash<std::string>()(was);
    found_.insert_or_assign(key, std::hash<std::string>()(is));
    if (was.empty() || foundHere)
        return std::nullopt;
    const std::string change = is.empty() ? " emptied, was " : " is now " + is + ", was ";
    return nameOf(before) + ": " + std::string(criteriaRowLabel(row)) + change + was;
}

} // namespace mirovane
