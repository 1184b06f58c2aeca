#pragma once

#include "platform/Clock.h"

#include <deque>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace mirovane {

/// What the system did in the background, a dated line each. Main thread only. Holds at most 400 lines (the
/// empty one after the last line end counts) by dropping the oldest, one per call; nothing of it is written
/// to disk.
class CMessageLog {
public:
    /// `line` is complete, without line end. `toStatusBar` asks for the status bar's message pane as well.
    using Listener = std::function<void(const std::string& line, bool toStatusBar)>;

    explicit CMessageLog(const Clock& clock) : clock_(clock) {}

    /// Appends the local date and time in the locale's form, " - " and the text.
    void LogMessage(std::string_view text, bool toStatusBar = false);

    /// The first line of the log, undated; only into an empty log.
    void begin(std::string_view line);

    /// Listeners stay for the log's life.
    void addListener(Listener listener) { listeners_.push_back(std::move(listener)); }

    const std::deque<std::string>& lines() const { return lines_; }

    /// Every line with CR LF.
    std::string text() const;

private:
    void append(std::string line, bool toStatusBar);

    const Clock& clock_;
    std::deque<std::string> lines_;
    std::vector<Listener> listeners_;
};

} // namespace mirovane
