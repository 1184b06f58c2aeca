#include "model/properties/Duplicates.h"

#include "model/find/TextCase.h"
#include "model/properties/PropertiesGroup.h"

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

/// A value that is looked for, in upper case.
struct Sought {
    const OwnValue& own;
    std::string upper;
};

std::vector<Sought> soughtValues(const CHardware& edited) {
    std::vector<Sought> sought;
    for (const OwnValue& value : ownValues(propertiesGroupOf(edited.Type)))
        if (!(edited.*value.text).empty())
            sought.push_back({value, upperCaseText(edited.*value.text)});
    return sought;
}

std::vector<std::string_view> sameValues(const std::vector<Sought>& sought, const CHardware& other) {
    std::vector<std::string_view> labels;
    for (const Sought& value : sought)
        if (const std::string& text = other.*value.own.text;
            !text.empty() && upperCaseText(text) == value.upper)
            labels.push_back(value.own.label);
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
    const std::vector<Sought> sought = soughtValues(edited);
    for (std::size_t i = 0; i < document.size() && !sought.empty(); ++i) {
        const CHardware& other = document.at(i);
        if (!other.isDevice() || propertiesGroupOf(other.Type) != group)
            continue;
        auto labels = sameValues(sought, other);
        if (labels.empty())
            continue;
        const DeviceKey key = document.keyOf(other);
        if (std::ranges::find(selected, key) == selected.end())
            return Duplicate{key, group == PropertiesGroup::Jacks, std::move(labels)};
    }
    return std::nullopt;
}

} // namespace mirovane
