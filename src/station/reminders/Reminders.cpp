#include "station/reminders/Reminders.h"

#include "model/records/Dates.h"

#include <utility>

namespace mirovane {

namespace {

constexpr std::chrono::milliseconds shownPeriod{5000};
constexpr std::chrono::milliseconds hiddenPeriod{2000};

} // namespace

CReminders::CReminders(CMirovaneDoc& document, TimerFactory& timers, std::function<void()> onTick)
    : document_(document), timer_(timers.makeTimer(std::move(onTick))) {}

/// What is due is shown for longer than it is hidden.
bool CReminders::check() {
    const bool wasDue = dueCount_ > 0;
    phase_ = !phase_;
    dueCount_ = countDue();
    if (dueCount_ > 0)
        timer_->start(phase_ ? shownPeriod : hiddenPeriod);
    else if (wasDue)
        timer_->start(shownPeriod);
    return dueCount_ > 0 || wasDue;
}

int CReminders::countDue() {
    int count = 0;
    const DateTime now = localDateTime(document_.now());
    for (const auto& record : document_.records()) {
        if (!record->isDevice())
            continue;
        const bool due = isReminderDue(*record, now);
        document_.setReminderDue(*record, due);
        count += due ? 1 : 0;
    }
    return count;
}

} // namespace mirovane
