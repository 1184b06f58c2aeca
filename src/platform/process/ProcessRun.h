#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

namespace mirovane {

/// How a child process ended.
enum class ProcessEnd : std::uint8_t {
    Exited,     ///< by itself
    NotStarted, ///< no such program, or no right to run it
    TimedOut,   ///< killed at its deadline
    Stopped,    ///< killed because the stop token asked for it
    Enough,     ///< killed because its output held what was wanted
    TooMuch,    ///< killed because it would not stop printing
};

struct ProcessResult {
    ProcessEnd end = ProcessEnd::NotStarted;
    int exitStatus = -1;     ///< of one that exited; -1 when a signal ended it
    int error = 0;           ///< errno of one that did not start
    std::string output;      ///< its standard output
    std::string diagnostics; ///< the beginning of its standard error
};

struct ProcessRequest {
    std::vector<std::string> words; ///< program (looked up in PATH) and arguments; no shell sees them
    std::chrono::steady_clock::time_point deadline;
    std::stop_token stop;

    /// Asked at each piece of output with all of it; true ends the process early. May be empty.
    std::function<bool(std::string_view)> enough;

    std::optional<std::vector<std::string>> environment; ///< "NAME=value" each; nothing: ours
    std::size_t mostOutput = std::size_t{4} * 1024 * 1024;
};

/// Runs a program to its end, or ends it with all of its session, and leaves nothing of it behind. It gets an
/// empty standard input, no terminal to ask for a password on and no descriptor of ours. Any thread.
ProcessResult runProcess(const ProcessRequest& request);

} // namespace mirovane
