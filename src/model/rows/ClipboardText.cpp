#include "model/rows/ClipboardText.h"

#include "model/records/Dates.h"
#include "model/records/Text.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

namespace mirovane {

namespace {

constexpr std::string_view active = "Active";
constexpr std::string_view inactive = "Inactive";
constexpr std::string_view check = "Check";

constexpr std::string_view fieldEnds = "\t\r\n";

/// What spreadsheets put before UTF-8 text.
constexpr std::string_view utf8Mark = "\xEF\xBB\xBF";

/// The places of the fields that are read apart.
constexpr std::size_t modifiedField = 0;
constexpr std::size_t stateField = 1;
constexpr std::size_t reminderField = 2;
constexpr std::size_t typeField = 4;

struct TextField {
    std::size_t place;
    std::string CHardware::*text;
};

constexpr std::array<TextField, 11> textFields{{
    {3, &CHardware::ToDo},
    {5, &CHardware::Name},
    {6, &CHardware::IPAddress},
    {7, &CHardware::Username},
    {8, &CHardware::MACAddress},
    {9, &CHardware::ToJack},
    {10, &CHardware::Comment},
    {12, &CHardware::SlashText},
    {14, &CHardware::BackslashText},
    {16, &CHardware::HorzText},
    {18, &CHardware::VertText},
}};

struct FlagField {
    std::size_t place;
    std::int32_t CHardware::*flag;
};

constexpr std::array<FlagField, 4> flagFields{{
    {11, &CHardware::SlashDraw},
    {13, &CHardware::BackslashDraw},
    {15, &CHardware::HorzDraw},
    {17, &CHardware::VertDraw},
}};

std::string_view stateText(std::int32_t state) {
    if (state == DeviceState::On)
        return active;
    return state == DeviceState::Off ? inactive : std::string_view();
}

std::int32_t stateFromText(std::string_view text) {
    if (text == active)
        return DeviceState::On;
    return text == inactive ? DeviceState::Off : DeviceState::Def;
}

std::string onOneLine(std::string_view text) {
    std::string line;
    line.reserve(text.size());
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char c = text[at];
        if (c == '\n' && at > 0 && text[at - 1] == '\r')
            continue;
        line += c == '\t' || c == '\r' || c == '\n' ? ' ' : c;
    }
    return line;
}

/// A spreadsheet takes a mark at the beginning of a field for the opening one of a quoted field: then the
/// whole is put into marks, or everything up to the next mark would lie in one cell.
std::string fieldText(const std::string& bytes, ClipboardForm form) {
    std::string text = onOneLine(form == ClipboardForm::Shown ? displayText(bytes) : bytes);
    if (!text.starts_with('"'))
        return text;
    std::string inMarks = "\"";
    for (const char c : text)
        inMarks.append(c == '"' ? 2 : 1, c);
    return inMarks + '"';
}

/// What a spreadsheet gives back of a cell that holds a line break or a mark: `"a ""b"" c"`. Takes it from
/// the beginning of the text. Nothing where the marks do not enclose a whole field: then they are part of a
/// plain one.
std::optional<std::string> takeFieldInMarks(std::string_view& text) {
    if (!text.starts_with('"'))
        return std::nullopt;
    std::string field;
    for (std::size_t at = 1;;) {
        const std::size_t mark = text.find('"', at);
        if (mark == std::string_view::npos)
            return std::nullopt;
        field += text.substr(at, mark - at);
        const std::string_view rest = text.substr(mark + 1);
        if (!rest.starts_with('"')) {
            if (!rest.empty() && fieldEnds.find(rest.front()) == std::string_view::npos)
                return std::nullopt;
            text = rest;
            return onOneLine(field);
        }
        field += '"';
        at = mark + 2;
    }
}

/// The fields up to the end of the line, and takes the line with its end from the text.
std::vector<std::string> takeLine(std::string_view& text) {
    std::vector<std::string> fields;
    for (;;) {
        if (auto inMarks = takeFieldInMarks(text)) {
            fields.push_back(std::move(*inMarks));
        } else {
            const std::size_t end = std::min(text.find_first_of(fieldEnds), text.size());
            fields.emplace_back(text.substr(0, end));
            text.remove_prefix(end);
        }
        const bool lineEnds = !text.starts_with('\t');
        text.remove_prefix(std::min<std::size_t>(text.starts_with("\r\n") ? 2 : 1, text.size()));
        if (lineEnds)
            return fields;
    }
}

std::string quoted(std::string_view text) {
    constexpr std::size_t longestQuote = 60;
    return "\"" + std::string(text.substr(0, longestQuote)) + (text.size() > longestQuote ? "..." : "") +
           "\"";
}

/// One line at a time into a reading.
class CLineReader {
public:
    CLineReader(ClipboardReading& reading, TimeStamp now, const ClipboardLimits& limits)
        : reading_(reading), now_(now), limits_(limits) {}

    void read(std::size_t line, std::vector<std::string> fields) {
        line_ = line;
        if (reading_.rows.size() >= limits_.rows) {
            ++reading_.beyond;
            return;
        }
        while (fields.size() > clipboardFieldCount && fields.back().empty())
            fields.pop_back();
        if (fields.size() > clipboardFieldCount)
            return problem("it has " + std::to_string(fields.size()) +
                               " fields with a TAB between them, a "
                               "device has 19",
                           true);
        fields.resize(clipboardFieldCount);
        const std::int32_t type = typeFromName(fields[typeField]);
        if (type == 0)
            return problem("its fifth field " + quoted(fields[typeField]) + " is not a device type", true);
        CHardware device;
        device.Type = type;
        device.Priority = newDevicePriority(type);
        device.State = stateFromText(fields[stateField]);
        for (const TextField& field : textFields)
            device.*field.text = std::move(fields[field.place]);
        for (const FlagField& field : flagFields)
            device.*field.flag = fields[field.place] == check ? 1 : 0;
        readDates(device, fields[modifiedField], fields[reminderField]);
        reading_.rows.push_back({line_, std::move(device)});
    }

private:
    void readDates(CHardware& device, std::string_view modified, std::string_view reminder) {
        const auto stamp = stampFromText(modified);
        device.Modified = stamp.value_or(now_);
        if (!stamp && !modified.empty())
            unreadableDate("Modified", modified);
        if (reminder.empty())
            return;
        const auto date = dateTimeFromText(reminder);
        if (!date)
            return unreadableDate("reminder", reminder);
        device.ReminderOn = 1;
        device.ReminderDate = *date;
    }

    void unreadableDate(std::string_view what, std::string_view text) {
        problem("its " + std::string(what) + " " + quoted(text) +
                    " is not a date that can be read here: write 2026-11-22 14:30, or leave it empty",
                false);
    }

    void problem(std::string sentence, bool dropped) {
        reading_.dropped += dropped ? 1 : 0;
        if (reading_.problems.size() < limits_.problems)
            reading_.problems.push_back({line_, std::move(sentence), dropped});
    }

    ClipboardReading& reading_;
    TimeStamp now_;
    ClipboardLimits limits_;
    std::size_t line_ = 0;
};

} // namespace

std::string clipboardLine(const CHardware& device, ClipboardForm form) {
    std::array<std::string, clipboardFieldCount> fields;
    fields[modifiedField] = stampText(device.Modified);
    fields[stateField] = stateText(device.State);
    if (device.ReminderOn != 0)
        fields[reminderField] = dateTimeText(device.ReminderDate);
    fields[typeField] = typeName(device.Type);
    for (const TextField& field : textFields)
        fields[field.place] = fieldText(device.*field.text, form);
    if (floorCode(device.Type) == DeviceType::LocationMarker)
        fields[9].clear(); // the outline of its area
    for (const FlagField& field : flagFields)
        if (device.*field.flag != 0)
            fields[field.place] = check;
    std::string line = fields[0];
    for (std::size_t place = 1; place < fields.size(); ++place)
        line.append("\t").append(fields[place]);
    return line;
}

std::string clipboardText(std::span<const CHardware* const> devices, ClipboardForm form) {
    std::string text;
    for (const CHardware* device : devices) {
        if (device != devices.front())
            text += "\r\n";
        text += clipboardLine(*device, form);
    }
    return text;
}

ClipboardReading readClipboardText(std::string_view text, TimeStamp now, const ClipboardLimits& limits) {
    ClipboardReading reading;
    CLineReader reader(reading, now, limits);
    if (text.starts_with(utf8Mark))
        text.remove_prefix(utf8Mark.size());
    for (std::size_t line = 1; !text.empty(); ++line) {
        std::vector<std::string> fields = takeLine(text);
        if (fields.size() > 1 || !fields[0].empty())
            reader.read(line, std::move(fields));
    }
    return reading;
}

} // namespace mirovane
