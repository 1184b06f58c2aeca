#pragma once

#include <algorithm>
#include <chrono>
#include <cstddef>

namespace mirovane {

/// How many requests may leave now, so that their replies, should all of them come back at the same pace, fit
/// into a receive buffer that the engine's thread does not get to read for a few milliseconds. With the
/// system's default limits a user without privileges has a buffer of some 180 replies: 46 requests at once
/// and 34 more each millisecond. The buffer of a privileged user hardly ever makes a request wait.
class CSendBudget {
public:
    using Time = std::chrono::steady_clock::time_point;

    /// `capacity` is what the receive buffer holds, in replies.
    explicit CSendBudget(std::size_t capacity)
        : most_(std::max(static_cast<double>(capacity) / 4, 1.0)),
          perMillisecond_(static_cast<double>(capacity) * 3 / 16),
          left_(most_) {}

    std::size_t allowed(Time now) {
        const double passed = std::chrono::duration<double, std::milli>(now - refilled_).count();
        left_ = std::min(most_, left_ + passed * perMillisecond_);
        refilled_ = now;
        return static_cast<std::size_t>(left_);
    }

    /// Not more than allowed() has just said.
    void spend(std::size_t requests) { left_ -= static_cast<double>(requests); }

private:
    const double most_;
    const double perMillisecond_;
    double left_;
    Time refilled_{};
};

} // namespace mirovane
