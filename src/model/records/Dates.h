#pragma once

#include "model/records/Hardware.h"

#include <optional>
#include <string>
#include <string_view>

namespace mirovane {

/// A time stamp as the List View and the dialogs show it: local time in the locale's own form ("%c").
std::string stampText(TimeStamp stamp);

/// A reminder's date and time in the same form; it is local time by its nature. Empty unless it is a date
/// that a calendar knows (years 100 to 9999).
std::string dateTimeText(const DateTime& dateTime);

/// "2026-11-22 14:30", with seconds only where there are any; empty under the same conditions.
std::string isoDateTimeText(const DateTime& dateTime);

/// The other way: date, blank or "T", hours and minutes, perhaps seconds. Nothing for anything else, such as
/// 30 February or 24:00.
std::optional<DateTime> dateTimeFromIso(std::string_view text);

/// stampText() and dateTimeText() the other way: in the locale's form, in that of the C locale, or as for
/// dateTimeFromIso(). Nothing for anything else. A local time that a clock change repeats is taken for the
/// one whose text is the same, else for the earlier.
std::optional<TimeStamp> stampFromText(std::string_view text);
std::optional<DateTime> dateTimeFromText(std::string_view text);

/// True when status and value name a moment that a calendar knows.
bool isCalendarDate(const DateTime& dateTime);

/// The moment on the wall clock of this station: reminders are local time by their nature.
DateTime localDateTime(TimeStamp stamp);

/// True when the device has a reminder and its date and time have been reached. `now` is a local date-time.
bool isReminderDue(const CHardware& device, const DateTime& now);

} // namespace mirovane
