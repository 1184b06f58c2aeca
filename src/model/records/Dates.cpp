#include "model/records/Dates.h"

#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <limits>
#include <utility>

namespace mirovane {

namespace {

using std::chrono::days;
using std::chrono::seconds;
using std::chrono::sys_days;
using std::chrono::year;
using std::chrono::year_month_day;

constexpr sys_days epoch{year{1899} / 12 / 30};
constexpr double firstDay = -657434.0; // 0100-01-01
constexpr double endDay = 2958466.0;   // the day after 9999-12-31
constexpr double secondsPerDay = 86400.0;

struct Calendar {
    year_month_day date;
    std::chrono::hh_mm_ss<seconds> time{seconds{0}};
    sys_days day;
};

/// Before the epoch the fraction still counts forward from midnight: -1.25 is 06:00 of 1899-12-29.
Calendar calendarOf(double value) {
    const double whole = std::trunc(value);
    seconds timeOfDay{std::llround(std::fabs(value - whole) * secondsPerDay)};
    sys_days day = epoch + days{static_cast<int>(whole)};
    if (timeOfDay >= days{1}) {
        timeOfDay -= days{1};
        day += days{1};
    }
    return {year_month_day{day}, std::chrono::hh_mm_ss<seconds>{timeOfDay}, day};
}

std::string inLocaleForm(const std::tm& time) {
    std::array<char, 256> text{};
    return {text.data(), std::strftime(text.data(), text.size(), "%c", &time)};
}

std::tm brokenDown(const Calendar& calendar) {
    std::tm time{};
    time.tm_year = static_cast<int>(calendar.date.year()) - 1900;
    time.tm_mon = static_cast<int>(static_cast<unsigned>(calendar.date.month())) - 1;
    time.tm_mday = static_cast<int>(static_cast<unsigned>(calendar.date.day()));
    time.tm_hour = static_cast<int>(calendar.time.hours().count());
    time.tm_min = static_cast<int>(calendar.time.minutes().count());
    time.tm_sec = static_cast<int>(calendar.time.seconds().count());
    time.tm_wday = static_cast<int>(std::chrono::weekday{calendar.day}.c_encoding());
    time.tm_yday = static_cast<int>((calendar.day - sys_days{calendar.date.year() / 1 / 1}).count());
    time.tm_isdst = -1;
    return time;
}

/// `timeOfDay` in seconds. Nothing before the year 100.
std::optional<DateTime> dateTimeOf(sys_days date, int timeOfDay) {
    const double day = static_cast<double>((date - epoch).count());
    const double fraction = timeOfDay / secondsPerDay;
    if (day < firstDay)
        return std::nullopt;
    return DateTime{DateTime::valid, day < 0 ? day - fraction : day + fraction};
}

/// Reads what strftime wrote with the same format; the whole text must be used up.
bool readWith(const std::string& text, const char* format, std::tm& time) {
    time = {};
    const char* end = strptime(text.c_str(), format, &time);
    return end && static_cast<std::size_t>(end - text.c_str()) == text.size();
}

/// Date and seconds since midnight.
std::optional<std::pair<sys_days, int>> fromLocaleForm(std::string_view text) {
    const std::string whole(text);
    std::tm time{};
    if (!readWith(whole, "%c", time) && !readWith(whole, "%a %b %e %H:%M:%S %Y", time))
        return std::nullopt;
    const year_month_day date{year{time.tm_year + 1900},
                              std::chrono::month(static_cast<unsigned>(time.tm_mon) + 1),
                              std::chrono::day(static_cast<unsigned>(time.tm_mday))};
    if (!date.ok() || time.tm_sec > 59)
        return std::nullopt;
    return std::pair(sys_days{date}, (time.tm_hour * 60 + time.tm_min) * 60 + time.tm_sec);
}

/// `summerTime` as in tm_isdst. Nothing for what a stamp cannot hold.
std::optional<TimeStamp> stampOf(const Calendar& calendar, int summerTime) {
    std::tm time = brokenDown(calendar);
    time.tm_isdst = summerTime;
    time.tm_wday = -1; // mktime sets it, unless it fails
    const std::time_t stamp = std::mktime(&time);
    if (time.tm_wday == -1 || stamp < std::numeric_limits<TimeStamp>::min() ||
        stamp > std::numeric_limits<TimeStamp>::max())
        return std::nullopt;
    return static_cast<TimeStamp>(stamp);
}

/// Takes exactly `digits` digits off the front.
std::optional<int> takeNumber(std::string_view& text, std::size_t digits) {
    if (text.size() < digits)
        return std::nullopt;
    int number = 0;
    const char* end = text.data() + digits;
    for (const char* at = text.data(); at != end; ++at) {
        if (*at < '0' || *at > '9')
            return std::nullopt;
        number = number * 10 + (*at - '0');
    }
    text.remove_prefix(digits);
    return number;
}

bool takeOneOf(std::string_view& text, std::string_view characters) {
    if (text.empty() || characters.find(text.front()) == std::string_view::npos)
        return false;
    text.remove_prefix(1);
    return true;
}

std::optional<sys_days> takeDate(std::string_view& text) {
    const auto y = takeNumber(text, 4);
    if (!y || !takeOneOf(text, "-"))
        return std::nullopt;
    const auto m = takeNumber(text, 2);
    if (!m || !takeOneOf(text, "-"))
        return std::nullopt;
    const auto d = takeNumber(text, 2);
    if (!d)
        return std::nullopt;
    const year_month_day date{year{*y}, std::chrono::month(static_cast<unsigned>(*m)),
                              std::chrono::day(static_cast<unsigned>(*d))};
    if (!date.ok())
        return std::nullopt;
    return sys_days{date};
}

std::optional<int> takeTimeOfDay(std::string_view& text) {
    const auto hours = takeNumber(text, 2);
    if (!hours || !takeOneOf(text, ":"))
        return std::nullopt;
    const auto minutes = takeNumber(text, 2);
    std::optional<int> second = 0;
    if (takeOneOf(text, ":"))
        second = takeNumber(text, 2);
    if (!minutes || !second || *hours > 23 || *minutes > 59 || *second > 59)
        return std::nullopt;
    return (*hours * 60 + *minutes) * 60 + *second;
}

} // namespace

std::string stampText(TimeStamp stamp) {
    const std::time_t time = stamp;
    std::tm local{};
    if (!localtime_r(&time, &local))
        return {};
    return inLocaleForm(local);
}

bool isCalendarDate(const DateTime& dateTime) {
    // Rejects NaN as well.
    return dateTime.status == DateTime::valid && dateTime.value > firstDay - 1.0 && dateTime.value < endDay;
}

std::string dateTimeText(const DateTime& dateTime) {
    if (!isCalendarDate(dateTime))
        return {};
    return inLocaleForm(brokenDown(calendarOf(dateTime.value)));
}

std::string isoDateTimeText(const DateTime& dateTime) {
    if (!isCalendarDate(dateTime))
        return {};
    const Calendar calendar = calendarOf(dateTime.value);
    std::array<char, 64> text{};
    int length = std::snprintf(
        text.data(), text.size(), "%04d-%02u-%02u %02d:%02d", static_cast<int>(calendar.date.year()),
        static_cast<unsigned>(calendar.date.month()), static_cast<unsigned>(calendar.date.day()),
        static_cast<int>(calendar.time.hours().count()), static_cast<int>(calendar.time.minutes().count()));
    const int second = static_cast<int>(calendar.time.seconds().count());
    if (second > 0)
        length += std::snprintf(text.data() + length, text.size() - static_cast<std::size_t>(length), ":%02d",
                                second);
    return {text.data(), static_cast<std::size_t>(length)};
}

std::optional<DateTime> dateTimeFromIso(std::string_view text) {
    const auto date = takeDate(text);
    if (!date || !takeOneOf(text, " T"))
        return std::nullopt;
    const auto timeOfDay = takeTimeOfDay(text);
    if (!timeOfDay || !text.empty())
        return std::nullopt;
    return dateTimeOf(*date, *timeOfDay);
}

std::optional<DateTime> dateTimeFromText(std::string_view text) {
    const auto time = fromLocaleForm(text);
    if (!time)
        return dateTimeFromIso(text);
    const auto [date, timeOfDay] = *time;
    return dateTimeOf(date, timeOfDay);
}

std::optional<TimeStamp> stampFromText(std::string_view text) {
    const auto local = dateTimeFromText(text);
    if (!local)
        return std::nullopt;
    const Calendar calendar = calendarOf(local->value);
    std::optional<TimeStamp> found;
    for (const int summerTime : {1, 0, -1}) {
        const auto stamp = stampOf(calendar, summerTime);
        if (stamp && stampText(*stamp) == text)
            return stamp;
        if (stamp && isoDateTimeText(localDateTime(*stamp)) == isoDateTimeText(*local) && !found)
            found = stamp;
    }
    return found ? found : stampOf(calendar, -1);
}

DateTime localDateTime(TimeStamp stamp) {
    constexpr double daysTo1970 = 25569.0;
    const std::time_t time = stamp;
    std::tm local{};
    localtime_r(&time, &local);
    return {DateTime::valid, daysTo1970 + static_cast<double>(timegm(&local)) / secondsPerDay};
}

bool isReminderDue(const CHardware& device, const DateTime& now) {
    return device.ReminderOn != 0 && device.ReminderDate.status == DateTime::valid &&
           device.ReminderDate.value <= now.value;
}

} // namespace mirovane
