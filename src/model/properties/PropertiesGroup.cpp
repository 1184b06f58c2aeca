#include "model/properties/PropertiesGroup.h"

#include <array>

namespace mirovane {

namespace {

constexpr std::array groupsInOrder{PropertiesGroup::Devices, PropertiesGroup::Jacks,
                                   PropertiesGroup::LocationMarkers};

constexpr std::array<std::string_view, 19> deviceFields{
    "Priority", "Type",      "Name",       "IPAddress",     "MACAddress",    "Username", "ToJack",
    "Comment",  "SlashDraw", "SlashText",  "BackslashDraw", "BackslashText", "HorzDraw", "HorzText",
    "VertDraw", "VertText",  "ReminderOn", "ReminderDate",  "ToDo",
};
constexpr std::array<std::string_view, 3> jackFields{"Priority", "ToJack", "Comment"};
constexpr std::array<std::string_view, 2> markerFields{"Comment", "VertText"};

constexpr std::array<std::string_view, 8> unusedInJacks{
    "Name", "IPAddress", "MACAddress", "Username", "SlashText", "BackslashText", "HorzText", "VertText",
};
constexpr std::array<std::string_view, 7> unusedInMarkers{
    "Name", "IPAddress", "MACAddress", "Username", "SlashText", "BackslashText", "HorzText",
};

} // namespace

PropertiesGroup propertiesGroupOf(std::int32_t type) {
    switch (floorCode(type)) {
    case DeviceType::Jack:
        return PropertiesGroup::Jacks;
    case DeviceType::LocationMarker:
        return PropertiesGroup::LocationMarkers;
    default:
        return PropertiesGroup::Devices;
    }
}

std::span<const std::string_view> propertiesFields(PropertiesGroup group) {
    switch (group) {
    case PropertiesGroup::Jacks:
        return jackFields;
    case PropertiesGroup::LocationMarkers:
        return markerFields;
    case PropertiesGroup::Devices:
        break;
    }
    return deviceFields;
}

std::span<const std::string_view> unusedTexts(PropertiesGroup group) {
    switch (group) {
    case PropertiesGroup::Jacks:
        return unusedInJacks;
    case PropertiesGroup::LocationMarkers:
        return unusedInMarkers;
    case PropertiesGroup::Devices:
        break;
    }
    return {};
}

std::vector<PropertiesSet> classified(const CMirovaneDoc& document,
                                      const std::vector<const CHardware*>& devices) {
    std::vector<PropertiesSet> sets;
    for (const PropertiesGroup group : groupsInOrder) {
        PropertiesSet set{group, {}, false};
        for (const CHardware* device : devices)
            if (propertiesGroupOf(device->Type) == group)
                set.devices.push_back(document.keyOf(*device));
        set.together = set.devices.size() < devices.size();
        if (!set.devices.empty())
            sets.push_back(std::move(set));
    }
    return sets;
}

} // namespace mirovane
