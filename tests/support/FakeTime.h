#pragma once

#include "platform/Clock.h"
#include "platform/Timers.h"

#include <atomic>
#include <cstdint>
#include <ctime>
#include <map>

namespace mirovane::test {

/// A clock that stands still until one thread tells it to go on. Any thread may read it.
class FakeClock final : public Clock {
public:
    explicit FakeClock(std::time_t start = 1'700'000'000)
        : wall_(std::chrono::system_clock::from_time_t(start)) {}

    std::chrono::system_clock::time_point wall() const override { return wall_; }
    std::chrono::steady_clock::time_point monotonic() const override { return monotonic_; }

    void advance(std::chrono::nanoseconds by) {
        wall_ = wall_.load() + std::chrono::duration_cast<std::chrono::system_clock::duration>(by);
        monotonic_ = monotonic_.load() + std::chrono::duration_cast<std::chrono::steady_clock::duration>(by);
    }

    /// The user set the computer's clock.
    void jumpWall(std::chrono::seconds by) { wall_ = wall_.load() + by; }

private:
    std::atomic<std::chrono::system_clock::time_point> wall_;
    std::atomic<std::chrono::steady_clock::time_point> monotonic_{};
};

/// Timers that tick as their clock is advanced, in the order in which they are due. A tick may start, stop,
/// make and destroy timers.
class FakeTimers final : public TimerFactory {
public:
    explicit FakeTimers(FakeClock& clock) : clock_(clock) {}

    std::unique_ptr<Timer> makeTimer(std::function<void()> onTick) override;

    /// Lets `span` pass, running every tick that falls into it.
    void advance(std::chrono::milliseconds span);

    /// From now on no timer can be started: the system is out of them.
    void exhaust() { exhausted_ = true; }

private:
    class FakeTimer;
    struct Entry {
        std::function<void()> onTick;
        bool active = false;
        std::chrono::milliseconds period{};
        std::chrono::steady_clock::time_point due{};
    };

    Entry* nextDue(std::chrono::steady_clock::time_point until);

    FakeClock& clock_;
    std::map<std::uint64_t, Entry> entries_; ///< by order of creation
    std::uint64_t nextId_ = 1;
    bool exhausted_ = false;
};

} // namespace mirovane::test
