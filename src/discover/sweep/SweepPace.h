#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>

namespace mirovane {

constexpr int leastSweepRate = 1; ///< probes a second
constexpr int mostSweepRate = 10'000;
constexpr int usualSweepRate = 500;

/// When each probe of a sweep is to leave. Every moment is counted from the first one, so that a late probe
/// does not make all others later; what is behind the plan is caught up with. Only after a standstill (the
/// computer slept, the process was stopped) the plan begins anew where it is, because catching up would then
/// be a flood.
class CSweepPace {
public:
    using Time = std::chrono::steady_clock::time_point;

    static constexpr std::chrono::milliseconds standstill{250};

    CSweepPace(int perSecond, Time start)
        : perSecond_(std::clamp(perSecond, leastSweepRate, mostSweepRate)), base_(start) {}

    /// How many probes may leave now.
    std::uint64_t due(Time now) {
        const Time planned = plannedNext();
        if (now < planned)
            return 0;
        if (now - planned > standstill) {
            base_ = now;
            done_ = 0;
        }
        const auto passed = std::chrono::duration_cast<std::chrono::nanoseconds>(now - base_).count();
        const auto due = static_cast<std::uint64_t>(passed) * static_cast<std::uint64_t>(perSecond_) /
                             nanosecondsPerSecond +
                         1;
        return due > done_ ? due - done_ : 0;
    }

    void left(std::uint64_t probes) { done_ += probes; }

    /// The planned moment of the next probe.
    Time plannedNext() const {
        // Rounded up: waking a moment too early would find nothing due.
        const std::uint64_t nanoseconds =
            (done_ * nanosecondsPerSecond + static_cast<std::uint64_t>(perSecond_) - 1) /
            static_cast<std::uint64_t>(perSecond_);
        return base_ + std::chrono::nanoseconds(nanoseconds);
    }

private:
    static constexpr std::uint64_t nanosecondsPerSecond = 1'000'000'000;

    int perSecond_;
    Time base_;
    std::uint64_t done_ = 0; ///< since `base_`
};

} // namespace mirovane
