#pragma once

#include <cstdint>

namespace mirovane {

/// What the last search left behind for the floor to show.
struct FindState {
    /// Since the last search began, or since the datafile was loaded, nothing was found: hidden devices stay
    /// hidden.
    bool FindNothingFound = true;

    /// The last search that found something looked for reminders.
    bool FindReminderMode = false;

    std::int32_t FindHitCount = 0; ///< devices that match

    bool operator==(const FindState&) const = default;

    /// A click takes the marks of the search off the floor; what was found stays visible. True when there
    /// were marks.
    bool clicked() {
        const FindState before = *this;
        FindReminderMode = false;
        FindHitCount = 0;
        return *this != before;
    }
};

} // namespace mirovane
