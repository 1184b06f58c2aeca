#include "model/records/FieldNames.h"

#include "model/records/Dates.h"
#include "model/records/Text.h"

#include <array>
#include <charconv>

namespace mirovane {

namespace {

constexpr std::string_view byDocument = "it is the number by which the datafile knows the device";
constexpr std::string_view byClock = "every change sets it to the current time";
constexpr std::string_view byLiveStat = "Live Stat keeps it";

constexpr std::array<RecordField, 25> fields{{
    {"State", FieldKind::State, &CHardware::State},
    {"Type", FieldKind::Type, &CHardware::Type},
    {"Position", FieldKind::Position, {}},
    {"ToJack", FieldKind::Text, &CHardware::ToJack},
    {"Name", FieldKind::Text, &CHardware::Name},
    {"IPAddress", FieldKind::Text, &CHardware::IPAddress},
    {"MACAddress", FieldKind::Text, &CHardware::MACAddress},
    {"Username", FieldKind::Text, &CHardware::Username},
    {"Comment", FieldKind::Text, &CHardware::Comment},
    {"RecID", FieldKind::Number, &CHardware::RecID, byDocument},
    {"Modified", FieldKind::Stamp, &CHardware::Modified, byClock},
    {"StampsModified", FieldKind::Stamp, &CHardware::StampsModified, byLiveStat},
    {"RuleStamps", FieldKind::RuleStamps, {}, byLiveStat},
    {"SlashText", FieldKind::Text, &CHardware::SlashText},
    {"BackslashText", FieldKind::Text, &CHardware::BackslashText},
    {"HorzText", FieldKind::Text, &CHardware::HorzText},
    {"VertText", FieldKind::Text, &CHardware::VertText},
    {"SlashDraw", FieldKind::Flag, &CHardware::SlashDraw},
    {"BackslashDraw", FieldKind::Flag, &CHardware::BackslashDraw},
    {"VertDraw", FieldKind::Flag, &CHardware::VertDraw},
    {"HorzDraw", FieldKind::Flag, &CHardware::HorzDraw},
    {"ReminderOn", FieldKind::Flag, &CHardware::ReminderOn},
    {"ReminderDate", FieldKind::DateTime, {}},
    {"ToDo", FieldKind::Text, &CHardware::ToDo},
    {"Priority", FieldKind::Priority, &CHardware::Priority},
}};

constexpr std::array<std::string_view, 3> stateNames{"Def", "On", "Off"};

std::optional<std::int32_t> numberFrom(std::string_view text) {
    std::int32_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc{} || end != text.data() + text.size())
        return std::nullopt;
    return number;
}

std::optional<std::int32_t> numberFrom(std::string_view text, std::int32_t least, std::int32_t most) {
    const auto number = numberFrom(text);
    return number && *number >= least && *number <= most ? number : std::nullopt;
}

std::optional<std::int32_t> stateFrom(std::string_view text) {
    for (std::size_t state = 0; state < stateNames.size(); ++state)
        if (equalIgnoringCase(text, stateNames[state]))
            return static_cast<std::int32_t>(state);
    return numberFrom(text, DeviceState::Def, DeviceState::Off);
}

/// A name leaves the device where it is, on the floor or in the Discovered/Misc window; a code says both.
std::optional<std::int32_t> typeFrom(std::string_view text, std::int32_t now) {
    if (const std::int32_t floor = typeFromName(text); floor != 0)
        return now > DeviceType::discoveredOffset ? floor + DeviceType::discoveredOffset : floor;
    const auto code = numberFrom(text);
    return code && *code > 0 && !typeName(*code).empty() ? code : std::nullopt;
}

std::optional<MapPoint> positionFrom(std::string_view text) {
    const std::size_t comma = text.find(',');
    if (comma == std::string_view::npos)
        return std::nullopt;
    const auto x = numberFrom(text.substr(0, comma));
    const auto y = numberFrom(text.substr(comma + 1));
    if (!x || !y)
        return std::nullopt;
    return MapPoint{*x, *y};
}

std::optional<DateTime> dateTimeFrom(std::string_view text) {
    return text.empty() ? DateTime{} : dateTimeFromIso(text);
}

std::string_view expectation(FieldKind kind) {
    switch (kind) {
    case FieldKind::Flag:
        return "give 0 or 1";
    case FieldKind::Priority:
        return "give a number from 1 to 5";
    case FieldKind::State:
        return "give Def, On or Off";
    case FieldKind::Type:
        return "give a device type such as Computer or \"Card Module\"";
    case FieldKind::Position:
        return "give x and y in map pixels, such as 100,200";
    case FieldKind::DateTime:
        return "give date and time as 2026-11-22 14:30, or nothing for none";
    default:
        return "give a whole number";
    }
}

std::string refusal(const RecordField& field, std::string_view text) {
    constexpr std::size_t shown = 60;
    std::string value(text.substr(0, shown));
    if (text.size() > shown)
        value += "...";
    return std::string(field.name) + " cannot be \"" + value + "\": " + std::string(expectation(field.kind));
}

template <typename Value>
bool assign(Value& to, const std::optional<Value>& value) {
    if (value)
        to = *value;
    return value.has_value();
}

bool assignNumber(CHardware& device, const RecordField& field, std::string_view text) {
    std::int32_t& number = device.*std::get<std::int32_t CHardware::*>(field.member);
    switch (field.kind) {
    case FieldKind::Flag:
        return assign(number, numberFrom(text, 0, 1));
    case FieldKind::Priority:
        return assign(number, numberFrom(text, 1, 5));
    case FieldKind::State:
        return assign(number, stateFrom(text));
    case FieldKind::Type:
        return assign(number, typeFrom(text, number));
    default:
        return assign(number, numberFrom(text));
    }
}

std::string stampsValue(const CHardware& record) {
    std::string text;
    for (const TimeStamp stamp : record.RuleStamps) {
        if (!text.empty())
            text += ' ';
        text += std::to_string(stamp);
    }
    return text;
}

std::string numberValue(const RecordField& field, std::int32_t number) {
    if (field.kind == FieldKind::State && number >= 0 &&
        number < static_cast<std::int32_t>(stateNames.size()))
        return std::string(stateNames[static_cast<std::size_t>(number)]);
    return std::to_string(number);
}

} // namespace

std::span<const RecordField> recordFields() {
    return fields;
}

const RecordField* findRecordField(std::string_view name) {
    for (const RecordField& field : fields)
        if (equalIgnoringCase(field.name, name))
            return &field;
    return nullptr;
}

std::string settableFieldNames() {
    std::string names;
    for (const RecordField& field : fields)
        if (field.keeper.empty())
            names += (names.empty() ? "" : ", ") + std::string(field.name);
    return names;
}

std::string fieldValue(const CHardware& record, const RecordField& field) {
    if (const auto* text = std::get_if<std::string CHardware::*>(&field.member))
        return record.**text;
    if (const auto* number = std::get_if<std::int32_t CHardware::*>(&field.member))
        return numberValue(field, record.**number);
    switch (field.kind) {
    case FieldKind::Position:
        return std::to_string(record.Position.x) + "," + std::to_string(record.Position.y);
    case FieldKind::RuleStamps:
        return stampsValue(record);
    default:
        return isoDateTimeText(record.ReminderDate);
    }
}

bool sameField(const CHardware& a, const CHardware& b, const RecordField& field) {
    if (const auto* text = std::get_if<std::string CHardware::*>(&field.member))
        return a.**text == b.**text;
    if (const auto* number = std::get_if<std::int32_t CHardware::*>(&field.member))
        return a.**number == b.**number;
    switch (field.kind) {
    case FieldKind::Position:
        return a.Position == b.Position;
    case FieldKind::RuleStamps:
        return a.RuleStamps == b.RuleStamps;
    default:
        return sameBits(a.ReminderDate, b.ReminderDate);
    }
}

void copyField(const CHardware& from, CHardware& to, const RecordField& field) {
    if (const auto* text = std::get_if<std::string CHardware::*>(&field.member))
        to.** text = from.**text;
    else if (const auto* number = std::get_if<std::int32_t CHardware::*>(&field.member))
        to.** number = from.**number;
    else if (field.kind == FieldKind::Position)
        to.Position = from.Position;
    else if (field.kind == FieldKind::RuleStamps)
        to.RuleStamps = from.RuleStamps;
    else
        to.ReminderDate = from.ReminderDate;
}

std::optional<std::string> setFieldValue(CHardware& device, const RecordField& field, std::string_view text) {
    if (!field.keeper.empty())
        return std::string(field.name) + " cannot be set: " + std::string(field.keeper);
    if (const auto* member = std::get_if<std::string CHardware::*>(&field.member)) {
        (device.**member).assign(text);
        return std::nullopt;
    }
    bool done = false;
    if (field.kind == FieldKind::Position)
        done = assign(device.Position, positionFrom(text));
    else if (field.kind == FieldKind::DateTime)
        done = assign(device.ReminderDate, dateTimeFrom(text));
    else
        done = assignNumber(device, field, text);
    return done ? std::nullopt : std::optional(refusal(field, text));
}

} // namespace mirovane
