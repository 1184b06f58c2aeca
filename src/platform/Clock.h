#pragma once

#include <chrono>

namespace mirovane {

/// Wall time for stamps and log lines, monotonic time for intervals and time-outs. Injected everywhere, so
/// that hours of watching are tested in microseconds. Any thread may call it.
class Clock {
public:
    virtual ~Clock() = default;

    /// UTC. May jump either way when the computer's clock is set.
    virtual std::chrono::system_clock::time_point wall() const = 0;

    /// Never goes back; its zero means nothing.
    virtual std::chrono::steady_clock::time_point monotonic() const = 0;
};

class CSystemClock final : public Clock {
public:
    std::chrono::system_clock::time_point wall() const override { return std::chrono::system_clock::now(); }
    std::chrono::steady_clock::time_point monotonic() const override {
        return std::chrono::steady_clock::now();
    }
};

} // namespace mirovane
