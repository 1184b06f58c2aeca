#pragma once

#include <algorithm>
#include <chrono>
#include <cstddef>

namespace mirovane {

/// How many requests may leave now, so that their replies, should all of them come back at the same pace, do
/// not run over a receive buffer that nobody gets to read for a few milliseconds. With the system's default
/// limits a user without privileges has a buffer of some 180 replies: 46 requests at once and 34 more each
/// millisecond. With the buffer of a privileged user it hardly ever binds. Its owner guards it.
class SendBudget {
public:
    using Time = std::chrono::steady_clock::time_point;

    /// `capacity` is what the receive buffer holds, in replies.
    void setCapacity(std::size_t capacity) {
        burst_ = static_cast<double>(capacity) / 4;
        perMillisecond_ = static_cast<double>(capacity) * 3 / 16;
        left_ = burst_;
    }

    /// Takes the room for one request; false when there is none at the moment.
    bool take(Time now) {
        if (left_ < 1) {
            const double passed = std::chrono::duration<double, std::milli>(now - refilled_).count();
            left_ = std::min(burst_, left_ + passed * perMillisecond_);
            refilled_ = now;
        }
        if (left_ < 1) {
            return false;
        }
        left_ -= 1;
        return true;
    }

private:
    double burst_ = 1;
    double perMillisecond_ = 1;
    double left_ = 1;
    Time refilled_{};
};

} // namespace mirovane
