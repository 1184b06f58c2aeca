#include "model/find/FindText.h"

#include "model/find/TextCase.h"
#include "model/records/Text.h"

namespace mirovane {

namespace {

std::string_view fieldText(const CHardware& device, FindField field) {
    switch (field) {
    case FindField::Name:
        return device.Name;
    case FindField::IPAddress:
        return device.IPAddress;
    case FindField::Username:
        return device.Username;
    case FindField::MACAddress:
        return device.MACAddress;
    case FindField::ToJack:
        return device.ToJack;
    case FindField::Comment:
        return device.Comment;
    case FindField::SlashText:
        return device.SlashText;
    case FindField::BackslashText:
        return device.BackslashText;
    case FindField::HorzText:
        return device.HorzText;
    case FindField::VertText:
        return device.VertText;
    case FindField::ToDo:
        return device.ToDo;
    case FindField::RecID:
        break; // a number: its text is made where it is wanted
    }
    return {};
}

/// Of a Location Marker, ToJack holds the corners of its area: numbers that nobody searches for.
bool hasField(const CHardware& device, FindField field) {
    return field != FindField::ToJack || floorCode(device.Type) != DeviceType::LocationMarker;
}

bool startsWord(char before) {
    return before == ' ' || before == '\n';
}

bool endsWord(char after) {
    return after == ' ' || after == '\n' || after == '\r';
}

} // namespace

FindSettings FindSettings::forMarker(std::int32_t recID) const {
    FindSettings marker = *this;
    marker.FindText = std::to_string(recID);
    marker.FindWholeWord = true;
    marker.FindReminder = marker.FindReminderDue = false;
    for (const FindField off : {FindField::ToDo, FindField::Name, FindField::IPAddress, FindField::Username,
                                FindField::MACAddress, FindField::ToJack, FindField::Comment})
        marker.include(off, false);
    marker.include(FindField::RecID, true);
    return marker;
}

CFindRule::CFindRule(const FindSettings& settings, FindMode mode) : settings_(settings), mode_(mode) {
    needle_ = settings.FindText.empty() ? std::string(emptyFindText) : settings.FindText;
    if (!settings.FindMatchCase)
        needle_ = upperCaseText(needle_);
}

bool CFindRule::isCandidate(const CHardware& record) const {
    return record.onFloor() || (settings_.FindIncludeMisc && record.inDiscovered());
}

bool CFindRule::matches(const CHardware& candidate) const {
    if (mode_ == FindMode::Text)
        return holdsNeedle(haystackOf(candidate));
    return candidate.ReminderOn == 1 && (mode_ == FindMode::Reminder || candidate.ReminderDue != 0);
}

/// One blank, then every included field with a line feed after it: so each of them begins and ends as a word
/// does.
std::string CFindRule::haystackOf(const CHardware& device) const {
    std::string haystack = " ";
    for (std::size_t place = 0; place < findFieldCount; ++place) {
        const auto field = static_cast<FindField>(place);
        if (!settings_.includes(field) || !hasField(device, field))
            continue;
        if (field == FindField::RecID)
            haystack += std::to_string(device.RecID);
        else if (settings_.FindMatchCase)
            haystack += displayText(fieldText(device, field));
        else
            haystack += upperCaseText(fieldText(device, field));
        haystack += '\n';
    }
    return haystack;
}

bool CFindRule::holdsNeedle(std::string_view haystack) const {
    for (auto at = haystack.find(needle_, 1); at != std::string_view::npos;
         at = haystack.find(needle_, at + 1)) {
        const std::size_t end = at + needle_.size();
        if (!settings_.FindWholeWord)
            return true;
        if (startsWord(haystack[at - 1]) && end < haystack.size() && endsWord(haystack[end]))
            return true;
    }
    return false;
}

} // namespace mirovane
