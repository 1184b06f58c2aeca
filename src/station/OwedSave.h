#pragma once

#include <algorithm>

namespace mirovane {

/// A save that failed, and when it is tried again: with the next watch tick, then less and less often. A disk
/// that is full or a file that may not be written stays so for a while.
struct OwedSave {
    static constexpr int longestPause = 10; ///< half a minute of watch ticks

    int ticksLeft = 0;
    int pause = 0; ///< what ticksLeft began with; grows with every try

    /// One tick passed. True when the save is to be tried; the next try then waits longer.
    bool due() {
        if (ticksLeft-- > 0)
            return false;
        pause = std::min(2 * pause + 1, longestPause);
        ticksLeft = pause;
        return true;
    }
};

} // namespace mirovane
