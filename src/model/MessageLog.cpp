#include "model/MessageLog.h"

#include "model/records/Text.h"

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

bool isControl(char c) {
    return static_cast<unsigned char>(c) < 0x20 || c == 0x7F;
}

/// U+0080 to U+009F, in UTF-8 two bytes.
bool startsC1Control(std::string_view text) {
    return text.size() > 1 && text[0] == '\xC2' && static_cast<unsigned char>(text[1]) < 0xA0;
}

/// A host name may come from the network: it must not forge a line of its own, nor steer the terminal that
/// shows the log. Valid UTF-8 afterwards: a single byte of the upper controls steers terminals, too.
std::string oneLine(std::string_view text) {
    std::string line = displayText(text);
    std::ranges::replace_if(line, isControl, ' ');
    for (std::size_t at = 0; at < line.size(); ++at)
        if (startsC1Control(std::string_view(line).substr(at)))
            line.replace(at, 2, " ");
    return line;
}

} // namespace

std::string LogLine::shown() const {
    return when ? localDateTime(*when) + " - " + text : text;
}

void CMessageLog::LogMessage(std::string_view text, bool toStatusBar) {
    append({clock_.wall(), oneLine(text), toStatusBar});
}

void CMessageLog::LogLasting(std::string_view text) {
    append({clock_.wall(), oneLine(text), false, LogKind::Lasting});
}

void CMessageLog::LogTrouble(std::string_view text, bool toStatusBar) {
    append({clock_.wall(), oneLine(text), toStatusBar, LogKind::Trouble});
}

void CMessageLog::LogState(std::string_view text) {
    append({clock_.wall(), oneLine(text), false, LogKind::State});
}

void CMessageLog::settle() {
    const std::vector<LogListener*> told = listeners_;
    for (LogListener* listener : told)
        if (std::ranges::find(listeners_, listener) != listeners_.end())
            listener->linesSettle();
}

void CMessageLog::LogStatistics(std::string_view text) {
    append({clock_.wall(), oneLine(text), false, LogKind::Statistics});
}

void CMessageLog::begin(std::string_view line) {
    if (lines_.empty())
        append({std::nullopt, oneLine(line)});
}

void CMessageLog::append(const LogLine& line) {
    lines_.push_back(line);
    if (lines_.size() > maxLines)
        lines_.pop_front();
    const std::vector<LogListener*> told = listeners_; // whoever is told may add or remove some
    for (LogListener* listener : told)
        if (std::ranges::find(listeners_, listener) != listeners_.end())
            listener->lineLogged(line);
}

std::string CMessageLog::text() const {
    std::string all;
    for (const LogLine& line : lines_)
        all += line.shown() + "\r\n";
    return all;
}

} // namespace mirovane
