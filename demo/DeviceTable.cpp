#include "DeviceTable.h"

#include "model/records/Dates.h"

#include <algorithm>
#include <charconv>
#include <map>
#include <optional>
#include <stdexcept>

namespace mirovane::demo {

namespace {

using Cells = std::vector<std::string>;
using Row = std::map<std::string, std::string, std::less<>>;

struct BadCell : std::runtime_error {
    using std::runtime_error::runtime_error;
};

Cells splitLine(std::string_view line) {
    Cells cells(1);
    bool quoted = false;
    for (std::size_t i = 0; i < line.size(); ++i) {
        const char c = line[i];
        if (c == '"' && quoted && i + 1 < line.size() && line[i + 1] == '"')
            cells.back() += line[++i];
        else if (c == '"')
            quoted = !quoted;
        else if (c == ',' && !quoted)
            cells.emplace_back();
        else
            cells.back() += c;
    }
    if (quoted)
        throw BadCell("a double quote is not closed");
    return cells;
}

std::int32_t number(const Row& row, std::string_view column) {
    const std::string& text = row.find(column)->second;
    std::int32_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size())
        throw BadCell("\"" + text + "\" in the column " + std::string(column) + " is not a whole number");
    return value;
}

DateTime dateTime(const std::string& text) {
    const std::optional<DateTime> value = dateTimeFromIso(text);
    if (!value)
        throw BadCell("\"" + text + "\" in the column Reminder is not a date and time like 2026-01-12 09:30");
    return *value;
}

std::string withLineBreaks(std::string text) {
    for (std::size_t at = text.find("\\n"); at != std::string::npos; at = text.find("\\n", at))
        text.replace(at, 2, "\r\n");
    return text;
}

std::int32_t deviceType(const Row& row) {
    const std::string& name = row.find("Type")->second;
    const std::int32_t type = typeFromName(name);
    if (type == 0)
        throw BadCell("\"" + name + "\" in the column Type is not a device type");
    const std::string& place = row.find("Place")->second;
    if (place != "floor" && place != "misc")
        throw BadCell("\"" + place + "\" in the column Place is neither floor nor misc");
    return place == "misc" ? type + DeviceType::discoveredOffset : type;
}

void fillTexts(CHardware& device, const Row& row) {
    using Field = std::string CHardware::*;
    static const std::map<std::string_view, Field> fields = {
        {"Name", &CHardware::Name},
        {"IPAddress", &CHardware::IPAddress},
        {"Username", &CHardware::Username},
        {"MACAddress", &CHardware::MACAddress},
        {"ToJack", &CHardware::ToJack},
        {"SlashText", &CHardware::SlashText},
        {"BackslashText", &CHardware::BackslashText},
        {"HorzText", &CHardware::HorzText},
        {"VertText", &CHardware::VertText},
        {"ToDo", &CHardware::ToDo},
    };
    for (const auto& [column, field] : fields)
        device.*field = row.find(column)->second;
    device.Comment = withLineBreaks(row.find("Comment")->second);
}

CHardware device(const Row& row) {
    CHardware device;
    device.Type = deviceType(row);
    device.Position = {number(row, "X"), number(row, "Y")};
    fillTexts(device, row);
    const std::string& draw = row.find("Draw")->second;
    device.SlashDraw = draw.find('/') != std::string::npos;
    device.BackslashDraw = draw.find('\\') != std::string::npos;
    device.HorzDraw = draw.find('-') != std::string::npos;
    device.VertDraw = draw.find('|') != std::string::npos;
    if (const std::string& reminder = row.find("Reminder")->second; !reminder.empty()) {
        device.ReminderOn = 1;
        device.ReminderDate = dateTime(reminder);
    }
    device.Priority = row.find("Priority")->second.empty() ? newDevicePriority(floorCode(device.Type))
                                                           : number(row, "Priority");
    if (device.Priority < 1 || device.Priority > 5)
        throw BadCell("the Priority is not 1 to 5");
    return device;
}

const Cells& requiredColumns() {
    static const Cells columns = {"Type",      "Place",         "X",          "Y",        "Name",
                                  "IPAddress", "Username",      "MACAddress", "ToJack",   "Comment",
                                  "SlashText", "BackslashText", "HorzText",   "VertText", "Draw",
                                  "Reminder",  "ToDo",          "Priority"};
    return columns;
}

void requireHeader(const Cells& header) {
    if (header == requiredColumns())
        return;
    std::string expected;
    for (const std::string& column : requiredColumns())
        expected += (expected.empty() ? "" : ",") + column;
    throw BadCell("the first line must be " + expected);
}

CHardware deviceOfLine(std::string_view line) {
    const Cells cells = splitLine(line);
    if (cells.size() != requiredColumns().size())
        throw BadCell("there are " + std::to_string(cells.size()) + " cells instead of " +
                      std::to_string(requiredColumns().size()));
    Row row;
    for (std::size_t i = 0; i < cells.size(); ++i)
        row[requiredColumns()[i]] = cells[i];
    return device(row);
}

std::string_view takeLine(std::string_view& text) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    if (line.ends_with('\r'))
        line.remove_suffix(1);
    return line;
}

} // namespace

Result<std::vector<CHardware>, std::string> readDeviceTable(std::string_view text) {
    std::vector<CHardware> devices;
    for (int number = 1; !text.empty(); ++number) {
        const std::string_view line = takeLine(text);
        try {
            if (number == 1)
                requireHeader(splitLine(line));
            else if (!line.empty())
                devices.push_back(deviceOfLine(line));
        } catch (const BadCell& bad) {
            return "line " + std::to_string(number) + ": " + bad.what();
        }
    }
    return devices;
}

} // namespace mirovane::demo
