#include "model/records/Criteria.h"

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

/// IfMatch stays as it is.
void setRow(CHardware& record, std::string_view command, std::string_view argument,
            std::string_view condition) {
    CriteriaRow row;
    row.Command = command;
    row.Argument = argument;
    row.Condition = condition;
    row.IfMatch = criteriaFromRecord(record).IfMatch;
    toRecord(row, record);
}

void setIfMatch(CHardware& record, std::int32_t ifMatch) {
    CriteriaRow row = criteriaFromRecord(record);
    row.IfMatch = ifMatch;
    toRecord(row, record);
}

bool pingsByName(std::int32_t type) {
    return type == DeviceType::Computer || type == DeviceType::Laptop;
}

} // namespace

CriteriaRow criteriaFromRecord(const CHardware& record) {
    return {record.Name,       record.IPAddress, record.Username,  record.State,
            record.MACAddress, record.Comment,   record.ReminderOn};
}

void toRecord(const CriteriaRow& row, CHardware& record) {
    record.Name = row.Command;
    record.IPAddress = row.Argument;
    record.Username = row.Delimiter;
    record.State = row.FieldPos;
    record.MACAddress = row.SearchFor;
    record.Comment = row.Condition;
    record.ReminderOn = row.IfMatch;
}

std::string_view criteriaMeaning(std::string_view field) {
    struct Meaning {
        std::string_view field, meaning;
    };
    constexpr std::array<Meaning, 7> meanings = {{{"Name", "Command"},
                                                  {"IPAddress", "Argument"},
                                                  {"Username", "Delimiter"},
                                                  {"State", "FieldPos"},
                                                  {"MACAddress", "SearchFor"},
                                                  {"Comment", "Condition"},
                                                  {"ReminderOn", "IfMatch"}}};
    const auto found = std::ranges::find(meanings, field, &Meaning::field);
    return found == meanings.end() ? field : found->meaning;
}

void setCriteriaValue(CHardware& record, CriteriaColumn column, std::string_view text) {
    CriteriaRow row = criteriaFromRecord(record);
    switch (column) {
    case CriteriaColumn::Command:
        row.Command = text;
        break;
    case CriteriaColumn::Argument:
        row.Argument = text;
        break;
    case CriteriaColumn::Delimiter:
        row.Delimiter = text;
        break;
    case CriteriaColumn::FieldPos:
        row.FieldPos = leadingInteger(text);
        break;
    case CriteriaColumn::SearchFor:
        row.SearchFor = text;
        break;
    case CriteriaColumn::IfMatch:
        row.IfMatch = text == "T" ? 1 : 0;
        break;
    case CriteriaColumn::Condition:
        row.Condition = text;
        break;
    }
    toRecord(row, record);
}

void applyCriteriaDefaults(CHardware& record) {
    if (!isCriteriaRecordType(record.Type))
        return;
    const std::int32_t type = criteriaTypeOf(record.Type);
    const int row = criteriaRowOf(record.Type);
    if (type == DeviceType::LocationMarker)
        return;
    setRow(record, Action::DoNothing, "", "On");
    if (row >= 7)
        setIfMatch(record, 1);
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
    setIfMatch(record, 0);
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
