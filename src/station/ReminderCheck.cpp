#include "station/ReminderCheck.h"

#include "model/Dates.h"

namespace mirovane {

void CReminderCheck::run() {
    phase_ = !phase_;
    dueCount_ = 0;
    const DateTime now = localDateTime(document_.now());
    for (std::size_t i = 0; i < document_.size(); ++i) {
        const CHardware& record = document_.at(i);
        if (!record.isDevice())
            continue;
        const bool due = isReminderDue(record, now);
        document_.setReminderDue(record, due);
        dueCount_ += due ? 1 : 0;
    }
}

} // namespace mirovane
