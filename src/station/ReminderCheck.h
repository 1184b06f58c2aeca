#pragma once

#include "model/Document.h"

namespace mirovane {

/// Marks the devices whose reminder has come due, and keeps the rhythm in which the window's title and the
/// floor's "Due:" labels blink. Main thread; run by the station's reminder timer.
class CReminderCheck {
public:
    explicit CReminderCheck(CMirovaneDoc& document) : document_(document) {}

    /// Sets ReminderDue of every device anew and flips the phase.
    void run();

    /// Another datafile: nothing is due until the next check.
    void reset() { dueCount_ = 0; }

    int DueCount() const { return dueCount_; }

    /// While it is on, the title tells about due reminders and the devices show their "Due:" label.
    bool ReminderPhase() const { return phase_; }

private:
    CMirovaneDoc& document_;
    int dueCount_ = 0;
    bool phase_ = false;
};

} // namespace mirovane
