#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <deque>
#include <unordered_map>
#include <utility>

namespace mirovane {

/// How many probes may be out without an answer. An address on the own link that nobody has occupies a place
/// in the kernel's table of neighbours for 3 s, and that table holds 1,024 by default, for all programs
/// together: when it is full, nobody here reaches a host that is not in it. So a sweep is as quick as its
/// pace where hosts answer, and sends some 130 probes a second where none does.
class CSweepWindow {
public:
    using Time = std::chrono::steady_clock::time_point;

    static constexpr std::uint64_t most = 400;
    static constexpr std::chrono::milliseconds span{3000};

    /// The pace where nobody answers, in probes a second.
    static constexpr double slowestPerSecond = static_cast<double>(most) * 1000 / span.count();

    /// How many may leave now.
    std::uint64_t room(Time now) {
        while (!left_.empty() && left_.front().first + span <= now) {
            const auto waits = unanswered_.find(left_.front().second);
            if (waits != unanswered_.end() && waits->second == left_.front().first)
                unanswered_.erase(waits);
            left_.pop_front();
        }
        return most - std::min<std::uint64_t>(most, unanswered_.size());
    }

    void left(std::uint32_t address, Time now) {
        left_.emplace_back(now, address);
        unanswered_[address] = now;
    }

    void ended(std::uint32_t address) { unanswered_.erase(address); }

    /// Those that were out at the last room().
    std::uint64_t unanswered() const { return unanswered_.size(); }

private:
    std::deque<std::pair<Time, std::uint32_t>> left_; ///< in the last `span`
    std::unordered_map<std::uint32_t, Time> unanswered_;
};

} // namespace mirovane
