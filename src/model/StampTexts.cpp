#include "model/StampTexts.h"

#include "model/Dates.h"

#include <ctime>
#include <limits>

namespace mirovane {

namespace {

void putTwoDigits(std::string& text, std::size_t at, int number) {
    text[at] = static_cast<char>('0' + number / 10);
    text[at + 1] = static_cast<char>('0' + number % 10);
}

void putMinuteAndSecond(std::string& text, std::size_t at, int minute, int second) {
    putTwoDigits(text, at, minute);
    putTwoDigits(text, at + 3, second);
}

std::string minuteAndSecond(int minute, int second) {
    std::string text = "00:00";
    putMinuteAndSecond(text, 0, minute, second);
    return text;
}

} // namespace

const std::string& StampTexts::text(TimeStamp stamp) {
    if (stamp_ == stamp)
        return text_;
    stamp_ = stamp;
    const std::int64_t quarter = stamp >= 0 ? stamp / span : -1;
    if (quarter_ != quarter) {
        quarter_ = quarter;
        learned_ = quarter >= 0 && learn(quarter);
    }
    if (!learned_)
        return text_ = stampText(stamp);
    const int second = static_cast<int>(stamp - quarter * span);
    text_ = pattern_;
    putMinuteAndSecond(text_, digits_, firstMinute_ + second / 60, second % 60);
    return text_;
}

/// True when the first and the last second of the quarter, and one between, differ in nothing but these
/// digits.
bool StampTexts::learn(std::int64_t quarter) {
    const std::int64_t first = quarter * span;
    if (first > std::numeric_limits<TimeStamp>::max() - span)
        return false;
    const std::time_t time = first;
    std::tm local{};
    if (!localtime_r(&time, &local) || local.tm_min % 15 != 0 || local.tm_sec != 0)
        return false;
    firstMinute_ = local.tm_min;
    // Digits that no day, month or hour has, and seldom a year: found once, they are the minutes and seconds.
    pattern_ = stampText(static_cast<TimeStamp>(first + 13L * 60 + 47));
    const std::string probe = minuteAndSecond(firstMinute_ + 13, 47);
    digits_ = pattern_.find(probe);
    if (digits_ == std::string::npos || pattern_.find(probe, digits_ + 1) != std::string::npos)
        return false;
    for (const int second : {0, static_cast<int>(span) - 1}) {
        std::string expected = pattern_;
        putMinuteAndSecond(expected, digits_, firstMinute_ + second / 60, second % 60);
        if (expected != stampText(static_cast<TimeStamp>(first + second)))
            return false;
    }
    return true;
}

} // namespace mirovane
