#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <stop_token>
#include <string>

namespace mirovane {

/// Runs calls that may hang, as every call to a share that went away does for minutes, each on a thread that
/// can be left behind. Nothing stops such a thread: it ends when the share answers, or with the process. So
/// that they do not pile up, only so many calls of one place are made at a time. Any thread.
class CAbandonableCalls {
public:
    struct Limits {
        std::size_t perPlace = 3;
        std::size_t atAll = 100;

        /// How long a call waits for its turn, within its patience. Those before it that take longer seem to
        /// hang, and nobody waits for them.
        std::chrono::milliseconds forTurn{2000};
    };

    enum class End {
        Done,
        Abandoned, ///< the call goes on, and nobody waits for it
        Refused,   ///< the calls before it seem to hang, or the system has no thread: it was not made
    };

    CAbandonableCalls() : CAbandonableCalls(Limits()) {}
    explicit CAbandonableCalls(const Limits& limits);

    /// Returns when the call is over, after `patience`, or a moment after `stop` was requested: a call that
    /// heeds it comes to its end. `place` is what hangs together, such as a folder. The call throws nothing
    /// and owns everything that it touches.
    End run(const std::string& place, std::function<void()> call, std::chrono::milliseconds patience,
            const std::stop_token& stop = {});

private:
    struct Running;

    std::shared_ptr<Running> running_;
};

} // namespace mirovane
