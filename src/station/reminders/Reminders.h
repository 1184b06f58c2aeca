#pragma once

#include "model/Document.h"
#include "platform/Timers.h"

#include <chrono>
#include <functional>
#include <memory>

namespace mirovane {

/// Marks the devices whose reminder has come due, and keeps the rhythm in which the window's title and the
/// floor's "Due:" labels blink. Timer: every 5 s (4 s after a reload); while something is due, 5 s shown and
/// 2 s hidden. Main thread; the document outlives it.
class CReminders {
public:
    /// `onTick` is called at each tick and calls check() where nothing speaks against it.
    CReminders(CMirovaneDoc& document, TimerFactory& timers, std::function<void()> onTick);

    /// Another datafile: nothing is due until the next check.
    void reset() { dueCount_ = 0; }

    /// False when the system has no timer left.
    bool start(std::chrono::milliseconds period) { return timer_->start(period); }
    void stop() { timer_->stop(); }

    /// Sets ReminderDue of every device anew and flips the phase. True when something is due, or was until
    /// now.
    bool check();

    int DueCount() const { return dueCount_; }

    /// While it is on, the title tells about due reminders and the devices show their "Due:" label.
    bool ReminderPhase() const { return phase_; }

private:
    int countDue();

    CMirovaneDoc& document_;
    std::unique_ptr<Timer> timer_;
    int dueCount_ = 0;
    bool phase_ = false;
};

} // namespace mirovane
