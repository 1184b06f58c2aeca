#pragma once

#include <cstdio>
#include <string>
#include <string_view>

namespace mirovane {

/// How every command ends.
enum class ExitStatus {
    Done = 0,
    No = 1,         ///< the answer is no: host silent, nothing found, an oddity
    Usage = 2,      ///< the command line makes no sense
    FileFailed = 3, ///< a file could not be read or written
    Refused = 4,    ///< another station runs Live Stat and was not to be interrupted
};

/// What a line weighs for whoever reads it in the journal, in the journal's own numbers.
enum class LinePriority { Error = 3, Warning = 4, Notice = 5, Info = 6, Debug = 7 };

/// Standard output for results and standard error for diagnostics; nothing else in the program writes to
/// either. The first failed write sticks, and nothing is written after it. What goes to the journal of a
/// service manager carries its priority.
class COutput {
public:
    COutput(std::FILE* results, std::FILE* diagnostics);

    void print(std::string_view text);
    void printLine(std::string_view text);
    void printLine(LinePriority priority, std::string_view text);

    /// Hands what was printed to whoever reads. False once a write has failed.
    bool flush();
    bool failed() const { return failure_ != 0; }

    /// The reader went away: nothing that anybody needs to be told.
    bool readerGone() const;

    /// "mirovanectl: what failed: why".
    void diagnose(std::string_view what, std::string_view why);

    /// The same for a sentence that says both.
    void diagnose(std::string_view sentence);

    /// The same for what is worth knowing and no failure.
    void warn(std::string_view what, std::string_view why);

    /// Replaces the line of progress on standard error; empty: takes it away. Does nothing where that is no
    /// terminal.
    void showProgress(std::string_view line);
    bool showsProgress() const;

    /// Columns of the terminal that shows the results; 0 when they go to a file or a pipe.
    int terminalWidth() const;

    bool resultsGoToJournal() const { return resultsToJournal_; }

    /// errno of the failed write.
    int failure() const { return failure_; }

private:
    void diagnose(LinePriority priority, std::string_view sentence);

    std::FILE* results_;
    std::FILE* diagnostics_;
    bool resultsToJournal_;
    bool diagnosticsToJournal_;
    int failure_ = 0;
    bool progressShown_ = false;
};

/// Text of a record made fit to be printed: valid UTF-8, with a blank for each control character. A device's
/// name comes from the network and must neither break a table's line nor command the terminal.
std::string printable(std::string_view bytes);

} // namespace mirovane
