#include "model/find/QuickFindText.h"

#include "model/find/TextCase.h"
#include "model/records/Dates.h"

#include <cstring>

namespace mirovane {

namespace {

constexpr char fieldEnd = '\n';

void append(std::string& text, std::string_view field) {
    if (field.empty())
        return;
    const std::size_t start = text.size();
    text += upperCaseText(field);
    for (std::size_t at = start; at < text.size(); ++at)
        if (text[at] == '\r' || text[at] == '\n' || text[at] == '\t')
            text[at] = ' '; // a comment's line breaks end no field
    text += fieldEnd;
}

std::uint32_t length(const std::string& text) {
    return static_cast<std::uint32_t>(text.size());
}

/// The text begins somewhere in `text` where a field begins; npos when no field does so.
std::size_t findFieldStart(std::string_view text, std::string_view word, std::size_t from) {
    thread_local std::string start;
    start.assign(1, fieldEnd).append(word);
    const std::size_t at = findBytes(text, start, from);
    return at == std::string_view::npos ? at : at + 1;
}

std::size_t findWholeField(std::string_view text, std::string_view word, std::size_t from) {
    thread_local std::string whole;
    whole.assign(1, fieldEnd).append(word) += fieldEnd;
    const std::size_t at = findBytes(text, whole, from);
    return at == std::string_view::npos ? at : at + 1;
}

} // namespace

QuickFindText quickFindText(const CHardware& device) {
    QuickFindText made;
    std::string& text = made.text;
    text += fieldEnd;
    append(text, device.Name);
    made.nameEnd = length(text);
    append(text, device.IPAddress);
    append(text, device.Username);
    append(text, device.MACAddress);
    append(text, macDigitsOf(device.MACAddress));
    made.knownEnd = length(text);
    append(text, std::to_string(device.RecID));
    append(text, typeName(device.Type));
    if (floorCode(device.Type) != DeviceType::LocationMarker)
        append(text, device.ToJack);
    for (const std::string* field : {&device.Comment, &device.SlashText, &device.BackslashText,
                                     &device.HorzText, &device.VertText, &device.ToDo})
        append(text, *field);
    if (device.ReminderOn != 0)
        append(text, isoDateTimeText(device.ReminderDate));
    return made;
}

std::size_t findBytes(std::string_view text, std::string_view word, std::size_t from) {
    if (from >= text.size())
        return std::string_view::npos;
    const void* found = memmem(text.data() + from, text.size() - from, word.data(), word.size());
    return found ? static_cast<std::size_t>(static_cast<const char*>(found) - text.data())
                 : std::string_view::npos;
}

/// The first place decides where nothing better can follow it: most devices cost one or two short searches.
QuickFindRank quickFindRank(std::string_view text, std::size_t at, std::string_view word,
                            std::uint32_t nameEnd, std::uint32_t knownEnd) {
    constexpr auto none = std::string_view::npos;
    if (at < knownEnd) {
        const std::string_view known = text.substr(0, knownEnd);
        const bool starts = known[at - 1] == fieldEnd;
        if (starts && known[at + word.size()] == fieldEnd)
            return QuickFindRank::Exact;
        const std::size_t start = starts ? at : findFieldStart(known, word, at);
        if (start == none)
            return findWholeField(text, word, knownEnd - 1) == none ? QuickFindRank::FieldPart
                                                                    : QuickFindRank::OtherExact;
        if (findWholeField(known, word, start - 1) != none)
            return QuickFindRank::Exact;
        return start < nameEnd ? QuickFindRank::NameStart : QuickFindRank::FieldStart;
    }
    const std::size_t start = findFieldStart(text, word, at - 1);
    if (start == none)
        return QuickFindRank::OtherPart;
    return findWholeField(text, word, start - 1) == none ? QuickFindRank::OtherStart
                                                         : QuickFindRank::OtherExact;
}

} // namespace mirovane
