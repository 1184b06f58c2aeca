#pragma once

#include "discover/sweep/SweepPlan.h"

#include <cstdint>
#include <deque>
#include <optional>
#include <unordered_map>

namespace mirovane {

/// The addresses that are still to be asked. One whose request could not leave comes again, a few times.
class CSweepQueue {
public:
    /// The plan outlives the queue.
    explicit CSweepQueue(const CSweepPlan& plan) : cursor_(plan), unasked_(plan.toProbe()) {}

    bool empty() const { return unasked_ == 0 && retries_.empty(); }

    /// Addresses that come again go first: so there are never more of them than were in flight.
    std::optional<std::uint32_t> next() {
        if (!retries_.empty()) {
            const std::uint32_t address = retries_.front();
            retries_.pop_front();
            return address;
        }
        if (unasked_ == 0)
            return std::nullopt;
        --unasked_;
        return cursor_.next();
    }

    /// Its request could not leave. False: that was the last try.
    bool tryAgain(std::uint32_t address) {
        if (++attempts_[address] < mostAttempts) {
            retries_.push_back(address);
            return true;
        }
        attempts_.erase(address);
        return false;
    }

    /// It has its answer, or none.
    void done(std::uint32_t address) {
        if (!attempts_.empty())
            attempts_.erase(address);
    }

private:
    static constexpr int mostAttempts = 5;

    CSweepCursor cursor_;
    std::uint64_t unasked_;
    std::deque<std::uint32_t> retries_;
    std::unordered_map<std::uint32_t, int> attempts_; ///< of addresses whose request could not leave
};

} // namespace mirovane
