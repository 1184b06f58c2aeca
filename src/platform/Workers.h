#pragma once

#include <chrono>
#include <cstddef>
#include <functional>

namespace mirovane {

/// Runs Live Stat steps away from the main thread. All calls come from the main thread.
class Workers {
public:
    virtual ~Workers() = default;

    /// Runs `job` on some other thread. False when the system gives no thread; `job` is then never run.
    virtual bool start(std::function<void()> job) = 0;

    /// At most this many jobs run at once from now on; those that run stay.
    virtual void setLimit(std::size_t limit) = 0;

    /// Waits until no job runs or is queued, at most `patience`. True when that is so.
    virtual bool waitUntilIdle(std::chrono::milliseconds patience) = 0;
};

} // namespace mirovane
