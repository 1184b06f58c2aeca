#include "model/ListRows.h"

#include "model/Dates.h"
#include "model/Document.h"
#include "model/Text.h"

#include <algorithm>
#include <array>
#include <limits>

namespace mirovane {

namespace {

constexpr std::array<ListColumnDefinition, listColumnCount> columns{{
    {"ID", 30, "RecID"},
    {"Modified", 105, "Modified"},
    {"LS", 20, "State"},
    {"Priority", 17, "Priority"},
    {"Reminder", 105, "ReminderDate"},
    {"To Do", 100, "ToDo"},
    {"Device", 50, "Type"},
    {"Name", 95, "Name"},
    {"IP Address", 90, "IPAddress"},
    {"Username", 80, "Username"},
    {"MAC Address", 50, "MACAddress"},
    {"to Jack/#", 50, "ToJack"},
    {"Comment", 110, "Comment"},
    {"/ Text", 110, "SlashText"},
    {"\\ Text", 110, "BackslashText"},
    {"- Text", 110, "HorzText"},
    {"| Text", 110, "VertText"},
}};

std::string_view stateText(std::int32_t state) {
    if (state == DeviceState::Def)
        return {};
    return state == DeviceState::On ? "Active" : "Inactive";
}

/// The columns that show a text field as it is.
std::string CHardware::*textOf(ListColumn column) {
    switch (column) {
    case ListColumn::ToDo:
        return &CHardware::ToDo;
    case ListColumn::Name:
        return &CHardware::Name;
    case ListColumn::IPAddress:
        return &CHardware::IPAddress;
    case ListColumn::Username:
        return &CHardware::Username;
    case ListColumn::MACAddress:
        return &CHardware::MACAddress;
    case ListColumn::SlashText:
        return &CHardware::SlashText;
    case ListColumn::BackslashText:
        return &CHardware::BackslashText;
    case ListColumn::HorzText:
        return &CHardware::HorzText;
    case ListColumn::VertText:
        return &CHardware::VertText;
    default:
        return &CHardware::Comment;
    }
}

std::string upperCase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - ('a' - 'A')) : c; });
    return text;
}

/// No date comes before every date.
double reminderKey(const DateTime& date) {
    return isCalendarDate(date) ? date.value : -std::numeric_limits<double>::infinity();
}

template <typename Key, typename MakeKey>
void sortByKey(std::vector<const CHardware*>& rows, bool greatestFirst, MakeKey makeKey) {
    struct Entry {
        Key key;
        const CHardware* row;
    };
    std::vector<Entry> entries;
    entries.reserve(rows.size());
    for (const CHardware* row : rows)
        entries.push_back({makeKey(*row), row});
    if (greatestFirst)
        std::stable_sort(entries.begin(), entries.end(),
                         [](const auto& a, const auto& b) { return b.key < a.key; });
    else
        std::stable_sort(entries.begin(), entries.end(),
                         [](const auto& a, const auto& b) { return a.key < b.key; });
    std::transform(entries.begin(), entries.end(), rows.begin(),
                   [](const Entry& entry) { return entry.row; });
}

} // namespace

std::span<const ListColumnDefinition, listColumnCount> listColumns() {
    return columns;
}

std::optional<ListColumn> listColumnFromName(std::string_view name) {
    for (std::size_t column = 0; column < columns.size(); ++column) {
        if (equalIgnoringCase(name, columns[column].title) || equalIgnoringCase(name, columns[column].field))
            return static_cast<ListColumn>(column);
    }
    return std::nullopt;
}

std::string listCellText(const CHardware& device, ListColumn column) {
    std::string text;
    appendListCell(text, device, column);
    return text;
}

void appendListCell(std::string& text, const CHardware& device, ListColumn column) {
    switch (column) {
    case ListColumn::ID:
        text += std::to_string(device.RecID);
        break;
    case ListColumn::Modified:
        text += stampText(device.Modified);
        break;
    case ListColumn::LS:
        text += stateText(device.State);
        break;
    case ListColumn::Priority:
        text += std::to_string(device.Priority);
        break;
    case ListColumn::Reminder:
        if (device.ReminderOn == 1)
            text += dateTimeText(device.ReminderDate);
        break;
    case ListColumn::Device:
        text += typeName(device.Type);
        break;
    case ListColumn::ToJack: // a marker keeps the outline of its area there
        if (floorCode(device.Type) != DeviceType::LocationMarker)
            text += device.ToJack;
        break;
    default:
        text += device.*textOf(column);
    }
}

bool ListFilter::shows(const CHardware& record) const {
    if (!(floor && record.onFloor()) && !(discovered && record.inDiscovered()))
        return false;
    const std::int32_t code = floorCode(record.Type);
    if (code < DeviceType::first || code > DeviceType::last)
        return true;
    return (hiddenTypes & (std::uint32_t{1} << (code - 1))) == 0;
}

void sortListRows(std::vector<const CHardware*>& rows, ListColumn column, bool greatestFirst) {
    switch (column) {
    case ListColumn::ID:
        return sortByKey<std::int32_t>(rows, greatestFirst, [](const CHardware& row) { return row.RecID; });
    case ListColumn::Modified:
        return sortByKey<TimeStamp>(rows, greatestFirst, [](const CHardware& row) { return row.Modified; });
    case ListColumn::LS:
        return sortByKey<std::int32_t>(rows, greatestFirst, [](const CHardware& row) { return row.State; });
    case ListColumn::Priority:
        return sortByKey<std::int32_t>(rows, greatestFirst,
                                       [](const CHardware& row) { return row.Priority; });
    case ListColumn::Reminder:
        return sortByKey<double>(rows, greatestFirst,
                                 [](const CHardware& row) { return reminderKey(row.ReminderDate); });
    default:
        return sortByKey<std::string>(rows, greatestFirst, [column](const CHardware& row) {
            return upperCase(listCellText(row, column));
        });
    }
}

std::vector<const CHardware*> listViewRows(const CMirovaneDoc& document, const ListViewState& state) {
    std::vector<const CHardware*> rows;
    for (std::size_t i = 0; i < document.size(); ++i) {
        if (state.filter.shows(document.at(i)))
            rows.push_back(&document.at(i));
    }
    sortListRows(rows, state.column, state.greatestFirst);
    return rows;
}

} // namespace mirovane
