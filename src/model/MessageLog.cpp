#include "model/MessageLog.h"

#include <algorithm>
#include <array>
#include <ctime>
#include <utility>

namespace mirovane {

namespace {

/// The empty line after the last line end counts as one.
constexpr std::size_t maxLines = 400 - 1;

std::string localDateTime(std::chrono::system_clock::time_point when) {
    const std::time_t seconds = std::chrono::system_clock::to_time_t(when);
    std::tm local = {};
    localtime_r(&seconds, &local);
    std::array<char, 256> text = {};
    const std::size_t length = std::strftime(text.data(), text.size(), "%c", &local);
    return std::string(text.data(), length);
}

/// A host name may come from the network: it shall not forge a line of its own.
std::string oneLine(std::string_view text) {
    std::string line(text);
    std::replace_if(
        line.begin(), line.end(), [](char c) { return c == '\r' || c == '\n' || c == '\0'; }, ' ');
    return line;
}

} // namespace

void CMessageLog::LogMessage(std::string_view text, bool toStatusBar) {
    append(localDateTime(clock_.wall()) + " - " + oneLine(text), toStatusBar);
}

void CMessageLog::begin(std::string_view line) {
    if (lines_.empty())
        append(oneLine(line), false);
}

void CMessageLog::append(std::string line, bool toStatusBar) {
    lines_.push_back(std::move(line));
    if (lines_.size() > maxLines)
        lines_.pop_front();
    // A copy: a listener that logs in turn may push this line out.
    const std::string told = lines_.back();
    for (const Listener& listener : listeners_)
        listener(told, toStatusBar);
}

std::string CMessageLog::text() const {
    std::string all;
    for (const std::string& line : lines_) {
        all += line;
        all += "\r\n";
    }
    return all;
}

} // namespace mirovane
