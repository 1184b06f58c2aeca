#pragma once

#include "model/ReminderDelay.h"
#include "station/Station.h"

namespace mirovane {

/// The date and time of a reminder that is put off now: tomorrow means nine o'clock in the morning.
DateTime putOffTo(ReminderDelay delay, TimeStamp now);

/// The selected devices, on the floor and in Discovered/Misc, whose reminder is due.
CSelection::Devices selectedDueDevices(const CStation& station);

/// Edits of the user on those devices. A reminder that is done keeps its text: only the date no longer
/// counts.
SaveReport putOffReminders(CStation& station, ReminderDelay delay);
SaveReport endReminders(CStation& station);

} // namespace mirovane
