#pragma once

#include "platform/Clock.h"

#include <chrono>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace mirovane {

/// What a line is about, for whoever shows some lines only or sorts them by weight.
enum class LogKind {
    Message,
    Statistics, ///< the counts of a run: many, and rarely what somebody looks for
    Lasting,    ///< names a value that gave way: it must be found again weeks later
    State,      ///< a device went On or Off
    Trouble,    ///< something did not work that should have
};

/// One line of the message log.
struct LogLine {
    std::optional<std::chrono::system_clock::time_point> when; ///< the log's first line is not dated
    std::string text;
    bool toStatusBar = false; ///< also for the status bar's message pane
    LogKind kind = LogKind::Message;

    /// With the local date and time in the locale's form before it.
    std::string shown() const;

    bool operator==(const LogLine&) const = default;
};

/// Told of each line as it is written. Main thread.
class LogListener {
public:
    virtual ~LogListener() = default;
    virtual void lineLogged(const LogLine& line) = 0;

    /// What the lasting lines so far name is about to go from the datafile.
    virtual void linesSettle() {}
};

/// What the system did in the background, a dated line each. Main thread only. Holds at most 400 lines (the
/// empty one after the last line end counts) by dropping the oldest, one per call. CLogFile writes the
/// lasting ones to disk.
class CMessageLog {
public:
    explicit CMessageLog(const Clock& clock) : clock_(clock) {}
    CMessageLog(const CMessageLog&) = delete;
    CMessageLog& operator=(const CMessageLog&) = delete;

    void LogMessage(std::string_view text, bool toStatusBar = false);

    /// A line that names a value which another one replaces.
    void LogLasting(std::string_view text);

    /// Something did not work that should have.
    void LogTrouble(std::string_view text, bool toStatusBar = false);

    /// A device went On or Off.
    void LogState(std::string_view text);

    /// Before the datafile is replaced.
    void settle();

    void LogStatistics(std::string_view text);

    /// The first line of the log, undated; only into an empty log.
    void begin(std::string_view line);

    /// A listener stays until it is removed. It may log, and add or remove listeners, while it is told.
    void addListener(LogListener& listener) { listeners_.push_back(&listener); }
    void removeListener(LogListener& listener) { std::erase(listeners_, &listener); }

    const std::deque<LogLine>& lines() const { return lines_; }

    /// Every line as it is shown, with CR LF.
    std::string text() const;

private:
    void append(const LogLine& line);

    const Clock& clock_;
    std::deque<LogLine> lines_;
    std::vector<LogListener*> listeners_;
};

} // namespace mirovane
