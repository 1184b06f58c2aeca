#pragma once

#include <cstdint>

namespace mirovane {

/// Told what a station did that the document does not tell about. Main thread.
class StationObserver {
public:
    virtual ~StationObserver() = default;

    /// A Live Stat run or a reload changed what is seen; never more often than the runs.
    virtual void redrawNeeded() {}

    /// Another floor: a new one, or a datafile was opened. The same record IDs are other devices.
    virtual void floorOpened() {}

    /// Devices changed, and no more changes follow at once: the rows of the List View are to be put in order.
    virtual void listSettled() {}

    /// Live Stat or Live Discover went on or off, a device was discovered, a run ended (other devices are
    /// held now), or the status text changed.
    virtual void indicatorsChanged() {}

    /// A reminder check found due reminders, or found that none is due any more.
    virtual void remindersChanged() {}

    /// Another step is undone or redone next; see CEditHistory.
    virtual void historyChanged() {}

    /// Track Live Stat is on and the check of this device begins.
    virtual void deviceTracked(std::int32_t recID) { (void)recID; }
};

} // namespace mirovane
