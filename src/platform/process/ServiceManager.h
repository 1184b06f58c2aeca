#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace mirovane {

/// The service manager that started this process, as systemd and its like speak with a service: it is told
/// through a datagram socket what the service does. Where nobody listens nothing is sent. Every call returns
/// at once: a manager that is busy, or gone, must not hold up the service.
class CServiceManager {
public:
    /// Nobody listens.
    CServiceManager() = default;

    /// `socket` is a path, or a name in the abstract namespace with "@" before it.
    CServiceManager(std::string socket, std::optional<std::chrono::microseconds> watchdog)
        : socket_(std::move(socket)), watchdog_(watchdog) {}

    /// As the environment says, which forgets it: a child must not speak for the service. Before any thread
    /// starts.
    static CServiceManager fromEnvironment();

    bool listens() const { return !socket_.empty(); }

    /// How long the manager waits for a sign of life before it ends the service; nothing: for ever.
    std::optional<std::chrono::microseconds> watchdog() const { return watchdog_; }

    /// Lines of "NAME=VALUE". False: not now, try again later. A manager that is gone cannot be told, and
    /// that is no reason to try again.
    bool tell(std::string_view lines) const;

private:
    std::string socket_;
    std::optional<std::chrono::microseconds> watchdog_;
};

/// What is written to the descriptor goes to the journal, which reads "<3>" at the beginning of a line as its
/// priority.
bool goesToJournal(int descriptor);

/// The time by which the manager puts the messages of a reload in order: microseconds, monotonic.
std::string monotonicMicroseconds();

} // namespace mirovane
