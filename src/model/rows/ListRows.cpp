#include "model/rows/ListRows.h"

#include "model/Document.h"
#include "model/records/Dates.h"
#include "model/records/Text.h"

#include <algorithm>
#include <array>
#include <limits>
#include <type_traits>

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

std::string_view shownState(std::int32_t state) {
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

char upperCase(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - ('a' - 'A')) : c;
}

std::string upperCase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](char c) { return upperCase(c); });
    return text;
}

/// No date comes before every date.
double reminderKey(const DateTime& date) {
    return isCalendarDate(date) ? date.value : -std::numeric_limits<double>::infinity();
}

/// Every number in the text with so many zeros before it that texts in order are numbers in order.
std::string paddedNumbers(std::string_view text) {
    constexpr std::size_t digits = 5; // of an address none has more
    std::string padded;
    const auto isDigit = [](char c) {
        return c >= '0' && c <= '9';
    };
    for (std::size_t i = 0; i < text.size();) {
        std::size_t end = i;
        while (end < text.size() && isDigit(text[end]))
            ++end;
        if (end == i) {
            padded += text[i++];
            continue;
        }
        padded.append(digits - std::min(digits, end - i), '0').append(text.substr(i, end - i));
        i = end;
    }
    return padded;
}

/// Calls `use` with the function that makes a column's key of a record.
template <typename Use>
auto withSortKey(ListColumn column, AddressOrder addresses, Use use) {
    switch (column) {
    case ListColumn::ID:
        return use([](const CHardware& row) { return row.RecID; });
    case ListColumn::Modified:
        return use([](const CHardware& row) { return row.Modified; });
    case ListColumn::LS:
        return use([](const CHardware& row) { return row.State; });
    case ListColumn::Priority:
        return use([](const CHardware& row) { return row.Priority; });
    case ListColumn::Reminder:
        return use([](const CHardware& row) { return reminderKey(row.ReminderDate); });
    case ListColumn::IPAddress:
        if (addresses == AddressOrder::Number)
            return use([](const CHardware& row) { return paddedNumbers(upperCase(row.IPAddress)); });
        break;
    default:
        break;
    }
    return use([column](const CHardware& row) { return upperCase(listCellText(row, column)); });
}

/// Equal keys stay in their order in both directions.
template <typename Entry, typename Less>
void sortEntries(std::vector<const CHardware*>& rows, std::vector<Entry>& entries, bool greatestFirst,
                 Less less) {
    if (greatestFirst)
        std::stable_sort(entries.begin(), entries.end(),
                         [less](const Entry& a, const Entry& b) { return less(b, a); });
    else
        std::stable_sort(entries.begin(), entries.end(), less);
    std::transform(entries.begin(), entries.end(), rows.begin(),
                   [](const Entry& entry) { return entry.row; });
}

template <typename MakeKey>
void sortByNumber(std::vector<const CHardware*>& rows, bool greatestFirst, MakeKey makeKey) {
    struct Entry {
        decltype(makeKey(*rows.front())) key;
        const CHardware* row;
    };
    std::vector<Entry> entries;
    entries.reserve(rows.size());
    for (const CHardware* row : rows)
        entries.push_back({makeKey(*row), row});
    sortEntries(rows, entries, greatestFirst, [](const Entry& a, const Entry& b) { return a.key < b.key; });
}

/// A text to sort by: eight of its bytes as a number, which decides most comparisons without a look at the
/// text itself.
struct TextEntry {
    std::uint64_t head;
    std::string_view text;
    const CHardware* row;
};

std::size_t commonPrefix(std::string_view a, std::string_view b) {
    const auto ends = std::mismatch(a.begin(), a.end(), b.begin(), b.end());
    return static_cast<std::size_t>(ends.first - a.begin());
}

std::uint64_t headOf(std::string_view text, std::size_t from) {
    std::uint64_t head = 0;
    for (std::size_t i = from; i < from + sizeof head; ++i)
        head = head << 8 | (i < text.size() ? static_cast<unsigned char>(text[i]) : 0U);
    return head;
}

/// The keys are in one block, because a text of its own for each row costs more than the comparisons. What
/// all keys begin with ("workstation-") says nothing about their order, so the heads start after it.
template <typename MakeKey>
void sortByText(std::vector<const CHardware*>& rows, bool greatestFirst, MakeKey makeKey) {
    std::string block;
    std::vector<std::size_t> ends;
    ends.reserve(rows.size());
    for (const CHardware* row : rows) {
        block += makeKey(*row);
        ends.push_back(block.size());
    }
    std::vector<TextEntry> entries;
    entries.reserve(rows.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const std::size_t from = i == 0 ? 0 : ends[i - 1];
        entries.push_back({0, std::string_view(block).substr(from, ends[i] - from), rows[i]});
    }
    std::size_t common = entries.empty() ? 0 : entries.front().text.size();
    for (const TextEntry& entry : entries)
        common = commonPrefix(entries.front().text.substr(0, common), entry.text);
    for (TextEntry& entry : entries)
        entry.head = headOf(entry.text, common);
    sortEntries(rows, entries, greatestFirst, [](const TextEntry& a, const TextEntry& b) {
        return a.head != b.head ? a.head < b.head : a.text < b.text;
    });
}

} // namespace

std::span<const ListColumnDefinition, listColumnCount> listColumns() {
    return columns;
}

std::optional<ListColumn> listColumnFromName(std::string_view name) {
    for (std::size_t column = 0; column < columns.size(); ++column)
        if (equalIgnoringCase(name, columns[column].title) || equalIgnoringCase(name, columns[column].field))
            return static_cast<ListColumn>(column);
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
        text += shownState(device.State);
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

void sortListRows(std::vector<const CHardware*>& rows, ListColumn column, bool greatestFirst,
                  AddressOrder addresses) {
    withSortKey(
        column, addresses,
        [&rows, greatestFirst](auto makeKey) {
            if constexpr (std::is_same_v<decltype(makeKey(*rows.front())), std::string>)
                sortByText(rows, greatestFirst, makeKey);
            else
                sortByNumber(rows, greatestFirst, makeKey);
        });
}

bool sameSortKey(const CHardware& a, const CHardware& b, const ListViewState& state) {
    return withSortKey(
        state.column, state.addresses,
        [&a, &b](auto makeKey) { return !(makeKey(a) < makeKey(b)) && !(makeKey(b) < makeKey(a)); });
}

std::size_t sortedPlace(std::span<const CHardware* const> rows, const CHardware& record,
                        const ListViewState& state, const CMirovaneDoc& document) {
    const auto place = document.indexOfDevice(record.RecID);
    return withSortKey(state.column, state.addresses, [&](auto makeKey) {
        const auto key = makeKey(record);
        const auto standsBefore = [&](const CHardware* row) {
            const auto other = makeKey(*row);
            if (other < key || key < other)
                return (other < key) != state.greatestFirst;
            return document.indexOfDevice(row->RecID) < place;
        };
        const auto found = std::partition_point(rows.begin(), rows.end(), standsBefore);
        return static_cast<std::size_t>(found - rows.begin());
    });
}

std::vector<const CHardware*> listViewRows(const CMirovaneDoc& document, const ListViewState& state) {
    std::vector<const CHardware*> rows;
    for (std::size_t i = 0; i < document.size(); ++i)
        if (state.filter.shows(document.at(i)))
            rows.push_back(&document.at(i));
    sortListRows(rows, state.column, state.greatestFirst, state.addresses);
    return rows;
}

} // namespace mirovane
