#pragma once

#include "livestat/schedule/Scheduler.h"

#include <cstdint>
#include <vector>

namespace mirovane {

/// Which devices carry the ring of Live Stat. Between two refreshes the answer stays what it was, or parts of
/// the floor that are drawn one after the other would show rings of different moments. Main thread; the
/// scheduler outlives it.
class CLiveStatRings {
public:
    explicit CLiveStatRings(const CLiveStatScheduler& liveStat) : liveStat_(liveStat) {}

    /// Takes over who is held now. Returns the devices whose ring came or went.
    std::vector<std::int32_t> refresh();

    /// Record IDs in order; none while neither Live Stat nor Live Stat Now is on.
    const std::vector<std::int32_t>& held() const { return held_; }

private:
    const CLiveStatScheduler& liveStat_;
    std::vector<std::int32_t> held_;
};

} // namespace mirovane
