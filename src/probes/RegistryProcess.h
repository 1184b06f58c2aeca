#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
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
};

/// Runs a program to its end and leaves nothing of it behind. It gets an empty standard input, no terminal to
/// ask for a password on, no descriptor of ours, English texts, and of our environment only what finds
/// programs, the user's folder, Samba's configuration and Kerberos tickets. Any thread.
ProcessResult runRegistryProcess(const ProcessRequest& request);

} // namespace mirovane
