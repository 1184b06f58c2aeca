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

std::string stateText(std::int32_t state) {
    if (state == DeviceState::Def)
        return {};
    return state == DeviceState::On ? "Active" : "Inactive";
}

/// A marker keeps the outline of its area where other devices keep their jack.
std::string jackText(const CHardware& device) {
    return floorCode(device.Type) == DeviceType::LocationMarker ? std::string() : device.ToJack;
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
    switch (column) {
    case ListColumn::ID:
        return std::to_string(device.RecID);
    case ListColumn::Modified:
        return stampText(device.Modified);
    case ListColumn::LS:
        return stateText(device.State);
    case ListColumn::Priority:
        return std::to_string(device.Priority);
    case ListColumn::Reminder:
        return device.ReminderOn == 1 ? dateTimeText(device.ReminderDate) : std::string();
    case ListColumn::ToDo:
        return device.ToDo;
    case ListColumn::Device:
        return std::string(typeName(device.Type));
    case ListColumn::Name:
        return device.Name;
    case ListColumn::IPAddress:
        return device.IPAddress;
    case ListColumn::Username:
        return device.Username;
    case ListColumn::MACAddress:
        return device.MACAddress;
    case ListColumn::ToJack:
        return jackText(device);
    case ListColumn::Comment:
        return device.Comment;
    case ListColumn::SlashText:
        return device.SlashText;
    case ListColumn::BackslashText:
        return device.BackslashText;
    case ListColumn::HorzText:
        return device.HorzText;
    case ListColumn::VertText:
        return device.VertText;
    }
    return {};
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
