#include "model/Criteria.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <limits>

namespace mirovane {

namespace {

constexpr std::array<std::string_view, 7> testActions = {
    Action::DoNothing, Action::Ping,    Action::SearchInTextFile, Action::SearchForFile,
    Action::Registry,  Action::SnmpGet, Action::MatchToJack,
};

constexpr std::array<std::string_view, 9> fieldActions = {
    Action::DoNothing,        Action::NsLookup,      Action::NsLookupReverse,
    Action::SearchInTextFile, Action::SearchForFile, Action::Registry,
    Action::SetValue,         Action::WhosLogon,     Action::SnmpGet,
};

struct RowTraits {
    std::string_view label;
    std::string CHardware::*field;
    std::int32_t CHardware::*flag;
};

constexpr std::array<RowTraits, criteriaRowCount> rows = {{
    {"Live Stat Status (LSS)", nullptr, nullptr},
    {"Name", &CHardware::Name, nullptr},
    {"IP Address", &CHardware::IPAddress, nullptr},
    {"Username", &CHardware::Username, nullptr},
    {"MAC/Port", &CHardware::MACAddress, nullptr},
    {"to Jack/#", &CHardware::ToJack, nullptr},
    {"Comment/Marker", &CHardware::Comment, nullptr},
    {"/ Text", &CHardware::SlashText, &CHardware::SlashDraw},
    {"\\ Text", &CHardware::BackslashText, &CHardware::BackslashDraw},
    {"-- Text", &CHardware::HorzText, &CHardware::HorzDraw},
    {"| Text", &CHardware::VertText, &CHardware::VertDraw},
    {"To Do", &CHardware::ToDo, &CHardware::ReminderOn},
}};

const RowTraits& rowTraits(int row) {
    assert(row >= 0 && row < criteriaRowCount);
    return rows[static_cast<std::size_t>(row)];
}

/// Decimal text to integer: leading blanks and a sign, then digits up to the first other character. A number
/// that does not fit stays at the limit.
std::int32_t leadingInteger(std::string_view text) {
    std::size_t at = text.find_first_not_of(" \t");
    if (at == std::string_view::npos)
        return 0;
    const bool negative = text[at] == '-';
    if (negative || text[at] == '+')
        ++at;
    std::int64_t value = 0;
    for (; at < text.size() && text[at] >= '0' && text[at] <= '9'; ++at)
        value =
            std::min<std::int64_t>(value * 10 + (text[at] - '0'), std::numeric_limits<std::int32_t>::max());
    return static_cast<std::int32_t>(negative ? -value : value);
}

void setRow(CHardware& record, std::string_view command, std::string_view argument,
            std::string_view condition) {
    record.Name = command;
    record.IPAddress = argument;
    record.Username.clear();
    record.State = 0;
    record.MACAddress.clear();
    record.Comment = condition;
}

bool pingsByName(std::int32_t type) {
    return type == DeviceType::Computer || type == DeviceType::Laptop;
}

} // namespace

CriteriaRow criteriaFromRecord(const CHardware& record) {
    return {record.Name,       record.IPAddress, record.Username,  record.State,
            record.MACAddress, record.Comment,   record.ReminderOn};
}

void setCriteriaValue(CHardware& record, CriteriaColumn column, std::string_view text) {
    switch (column) {
    case CriteriaColumn::Command:
        record.Name = text;
        break;
    case CriteriaColumn::Argument:
        record.IPAddress = text;
        break;
    case CriteriaColumn::Delimiter:
        record.Username = text;
        break;
    case CriteriaColumn::FieldPos:
        record.State = leadingInteger(text);
        break;
    case CriteriaColumn::SearchFor:
        record.MACAddress = text;
        break;
    case CriteriaColumn::IfMatch:
        record.ReminderOn = text == "T" ? 1 : 0;
        break;
    case CriteriaColumn::Condition:
        record.Comment = text;
        break;
    }
}

void applyCriteriaDefaults(CHardware& record) {
    if (!isCriteriaRecordType(record.Type))
        return;
    const std::int32_t type = (-record.Type - 80) / 20;
    const int row = (-record.Type - 80) % 20;
    if (type == DeviceType::LocationMarker)
        return;
    setRow(record, Action::DoNothing, "", "On");
    if (row >= 7)
        record.ReminderOn = 1;
    if (row == 0 && type == DeviceType::Jack)
        setRow(record, Action::MatchToJack, "", "On");
    else if (row == 0)
        setRow(record, Action::Ping, pingsByName(type) ? nameAndAddressArgument : "$mvI", "On");
    else if (row == 2 && pingsByName(type))
        setRow(record, Action::NsLookup, "$mvN", "On/Off");
    else if (row == 3 && pingsByName(type))
        setRow(record, Action::WhosLogon, nameAndAddressArgument, "On");
}

void applyToDoRowDefaults(CHardware& record) {
    setRow(record, Action::DoNothing, "", "On");
    record.ReminderOn = 0;
}

std::string_view criteriaRowLabel(int row) {
    return rowTraits(row).label;
}

std::string CHardware::*criteriaTargetField(int row) {
    return rowTraits(row).field;
}

std::int32_t CHardware::*criteriaDrawFlag(int row) {
    return rowTraits(row).flag;
}

std::span<const std::string_view> actionsForRow(std::int32_t type, int row) {
    if (row != 0)
        return fieldActions;
    const bool isJack = floorCode(type) == DeviceType::Jack;
    return std::span(testActions).first(isJack ? testActions.size() : testActions.size() - 1);
}

} // namespace mirovane
