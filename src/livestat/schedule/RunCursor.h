#pragma once

#include <cstddef>
#include <optional>

namespace mirovane {

/// How far a run has come: which slot was visited last, and how many devices' checks began. A plain value.
class CRunCursor {
public:
    /// The next slot of this run; nothing when all `count` were visited.
    std::optional<std::size_t> next(std::size_t count) {
        const std::size_t slot = visited_ ? *visited_ + 1 : 0;
        if (slot >= count)
            return std::nullopt;
        visited_ = slot;
        return slot;
    }

    void countDevice() { ++devices_; }
    int devices() const { return devices_; }

    /// No slot was visited yet: the pause before a run.
    bool resting() const { return !visited_; }

    /// So many slots are left; a run that was behind them is over.
    void limit(std::size_t count) {
        if (visited_ && *visited_ >= count)
            visited_ = count > 0 ? std::optional(count - 1) : std::nullopt;
    }

private:
    std::optional<std::size_t> visited_;
    int devices_ = 0;
};

} // namespace mirovane
