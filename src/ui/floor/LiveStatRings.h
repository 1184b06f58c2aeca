#pragma once

#include "livestat/schedule/Scheduler.h"

#include <cstdint>
#include <functional>
#include <unordered_map>

namespace mirovane {

/// Which devices carry the ring of Live Stat. Between two refreshes the answer for a device stays what it
/// was, or parts of the floor that are drawn one after the other would show rings of different moments.
/// Main thread; the scheduler outlives it.
class CLiveStatRings {
public:
    explicit CLiveStatRings(const CLiveStatScheduler& liveStat) : liveStat_(liveStat) {}

    /// Other devices may be held now.
    void refresh() { looked_.clear(); }

    /// Whether a job slot holds a device; empty while neither Live Stat nor Live Stat Now is on. Valid as
    /// long as this object.
    std::function<bool(std::int32_t recID)> holds();

private:
    const CLiveStatScheduler& liveStat_;
    std::unordered_map<std::int32_t, bool> looked_; ///< as looked up since the last refresh
};

} // namespace mirovane
