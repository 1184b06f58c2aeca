#include "model/properties/Duplicates.h"

#include "model/properties/PropertiesGroup.h"
#include "model/records/Text.h"

#include <algorithm>
#include <array>

namespace mirovane {

namespace {

struct OwnValue {
    std::string CHardware::*text;
    std::string_view label;
};

constexpr std::array deviceValues{
    OwnValue{&CHardware::Name, "Name"},
    OwnValue{&CHardware::IPAddress, "IP Address"},
    OwnValue{&CHardware::MACAddress, "MAC Addr"},
    OwnValue{&CHardware::ToJack, "to Jack"},
};
constexpr std::array jackValues{OwnValue{&CHardware::ToJack, "Jack#"}};

std::span<const OwnValue> ownValues(PropertiesGroup group) {
    switch (group) {
    case PropertiesGroup::Devices:
        return deviceValues;
    case PropertiesGroup::Jacks:
        return jackValues;
    case PropertiesGroup::LocationMarkers:
        break;
    }
    return {};
}

std::vector<std::string_view> sameValues(std::span<const OwnValue> values, const CHardware& a,
                                         const CHardware& b) {
    std::vector<std::string_view> labels;
    for (const OwnValue& value : values)
        if (!(a.*value.text).empty() && equalIgnoringCase(a.*value.text, b.*value.text))
            labels.push_back(value.label);
    return labels;
}

} // namespace

std::string Duplicate::question() const {
    std::string text = jack ? "Another Jack has the same " : "Another device has the same ";
    for (const std::string_view label : labels)
        text.append("\"").append(label).append("\" ");
    return text + (jack ? "value, do you want to continue?" : "value(s), do you want to continue?");
}

std::optional<Duplicate> findDuplicate(const CMirovaneDoc& document, const CHardware& edited,
                                       std::span<const DeviceKey> selected) {
    const PropertiesGroup group = propertiesGroupOf(edited.Type);
    const auto values = ownValues(group);
    for (std::size_t i = 0; i < document.size() && !values.empty(); ++i) {
        const CHardware& other = document.at(i);
        if (!other.isDevice() || propertiesGroupOf(other.Type) != group)
            continue;
        auto labels = sameValues(values, edited, other);
        if (labels.empty())
            continue;
        const DeviceKey key = document.keyOf(other);
        if (std::ranges::find(selected, key) == selected.end())
            return Duplicate{key, group == PropertiesGroup::Jacks, std::move(labels)};
    }
    return std::nullopt;
}

} // namespace mirovane
