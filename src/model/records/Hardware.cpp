#include "model/records/Hardware.h"

#include "model/records/Text.h"

#include <bit>

namespace mirovane {

namespace {

struct TypeTraits {
    std::string_view name;
    std::int32_t priority;
};

constexpr std::array<TypeTraits, DeviceType::last + 1> types = {{
    {"", 1},
    {"Jack", 1},
    {"Computer", 5},
    {"Printer", 4},
    {"Laptop", 5},
    {"Switch", 2},
    {"Router", 2},
    {"Phone", 4},
    {"Camera", 3},
    {"Unknown", 1},
    {"UPS", 2},
    {"Card Module", 3},
    {"Wireless", 3},
    {"Location Marker", 1},
}};

const TypeTraits& traits(std::int32_t type) {
    const std::int32_t code = floorCode(type);
    const bool known = code >= DeviceType::first && code <= DeviceType::last;
    return types[known ? static_cast<std::size_t>(code) : 0];
}

bool sameTexts(const CHardware& a, const CHardware& b) {
    return a.ToJack == b.ToJack && a.Name == b.Name && a.IPAddress == b.IPAddress &&
           a.MACAddress == b.MACAddress && a.Username == b.Username && a.Comment == b.Comment &&
           a.SlashText == b.SlashText && a.BackslashText == b.BackslashText && a.HorzText == b.HorzText &&
           a.VertText == b.VertText && a.ToDo == b.ToDo;
}

} // namespace

std::int32_t floorCode(std::int32_t type) {
    return type > DeviceType::discoveredOffset ? type - DeviceType::discoveredOffset : type;
}

std::string_view typeName(std::int32_t type) {
    return traits(type).name;
}

std::int32_t typeFromName(std::string_view name) {
    for (std::int32_t code = DeviceType::first; code <= DeviceType::last; ++code)
        if (equalIgnoringCase(name, typeName(code)))
            return code;
    return 0;
}

std::int32_t newDevicePriority(std::int32_t type) {
    return traits(type).priority;
}

bool sameBits(const DateTime& a, const DateTime& b) {
    return a.status == b.status &&
           std::bit_cast<std::uint64_t>(a.value) == std::bit_cast<std::uint64_t>(b.value);
}

void copyStored(const CHardware& from, CHardware& to) {
    CHardware copy = from;
    copy.ShowAll = to.ShowAll;
    copy.SortPending = to.SortPending;
    copy.Selected = to.Selected;
    copy.LSNowMark = to.LSNowMark;
    to = std::move(copy);
}

bool sameStored(const CHardware& a, const CHardware& b) {
    return a.Type == b.Type && a.State == b.State && a.Position == b.Position && a.RecID == b.RecID &&
           a.Modified == b.Modified && a.StampsModified == b.StampsModified && a.RuleStamps == b.RuleStamps &&
           a.SlashDraw == b.SlashDraw && a.BackslashDraw == b.BackslashDraw && a.VertDraw == b.VertDraw &&
           a.HorzDraw == b.HorzDraw && a.ReminderOn == b.ReminderOn &&
           sameBits(a.ReminderDate, b.ReminderDate) && a.Priority == b.Priority && sameTexts(a, b);
}

} // namespace mirovane
