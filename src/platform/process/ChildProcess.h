#pragma once

#include "platform/Result.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <sys/types.h>
#include <system_error>
#include <utility>
#include <vector>

namespace mirovane {

/// How a program is started. It begins with no signal blocked, ignored or handled, and of our descriptors it
/// gets those in `streams` only. No shell sees the words.
struct ProcessStart {
    enum class Ties : std::uint8_t {
        Foreground, ///< our child, in our session and terminal: Ctrl+C there reaches it
        Session,    ///< our child, in a session of its own without a terminal
        Detached,   ///< nobody's child, in a session of its own: it outlives us and is never waited for
    };

    std::vector<std::string>
        words; ///< the program (looked up in PATH when it holds no "/") and its arguments
    Ties ties = Ties::Session;
    std::array<int, 3> streams{-1, -1, -1}; ///< its standard input, output and error; -1: /dev/null
    std::optional<std::vector<std::string>> environment; ///< "NAME=value" each; nothing: ours
};

/// How a child ended.
struct ChildEnd {
    int exitStatus = -1; ///< -1 when a signal ended it
    int signal = 0;      ///< 0 when it exited by itself
};

/// A child that runs, or has ended and is not waited for yet. The destructor kills it, with all of its
/// session where it has one of its own, and waits for it: nothing of it is left behind. One thread at a time.
class CChildProcess {
public:
    CChildProcess() = default;
    CChildProcess(pid_t id, bool headsSession) : id_(id), headsSession_(headsSession) {}
    CChildProcess(CChildProcess&& other) noexcept
        : id_(std::exchange(other.id_, none)), headsSession_(other.headsSession_) {}
    CChildProcess& operator=(CChildProcess&&) = delete;
    ~CChildProcess();

    /// Nothing while it runs.
    std::optional<ChildEnd> ended() { return look(false); }

    ChildEnd waitForEnd() { return *look(true); }

private:
    static constexpr pid_t none = -1;

    std::optional<ChildEnd> look(bool wait);

    pid_t id_ = none;
    bool headsSession_ = false;
};

/// Returns once the program runs, or why it does not: as errno says it. A detached one comes as an empty
/// child. Any thread.
Result<CChildProcess, std::error_code> startProcess(const ProcessStart& start);

} // namespace mirovane
