#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace mirovane {

/// A periodic timer of the main thread. Every call, and every tick, happens on that thread. Destroying it
/// stops it; destroying it from its own tick is allowed.
class Timer {
public:
    virtual ~Timer() = default;

    /// Ticks every `period` from now on; a running timer takes the new period. False when the system has no
    /// timer left.
    virtual bool start(std::chrono::milliseconds period) = 0;
    virtual void stop() = 0;
    virtual bool active() const = 0;
};

class TimerFactory {
public:
    virtual ~TimerFactory() = default;

    /// The timer is idle until it is started. `onTick` must outlive the timer's last tick.
    virtual std::unique_ptr<Timer> makeTimer(std::function<void()> onTick) = 0;
};

} // namespace mirovane
