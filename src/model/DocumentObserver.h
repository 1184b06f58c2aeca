#pragma once

#include "model/records/Hardware.h"

#include <cstdint>

namespace mirovane {

/// Told of every change to the record list, after it happened, on the main thread.
class DocumentObserver {
public:
    virtual ~DocumentObserver() = default;

    virtual void recordAdded(const CHardware& record) { (void)record; }

    /// `before` is the whole record as it was; `after` is the record of the list.
    virtual void recordChanged(const CHardware& before, const CHardware& after) { (void)before, (void)after; }

    /// Selected, ShowAll, LSNowMark or ReminderDue changed.
    virtual void flagsChanged(const CHardware& record) { (void)record; }

    /// The record's last moment: it is still whole, but no longer in the list.
    virtual void recordRemoved(const CHardware& record) { (void)record; }

    /// Two records traded places in the list.
    virtual void orderChanged() {}

    /// A device that was added here got another record ID, because another station had given its own to one
    /// of its own. Comes before the documentReplaced() of the merge; `newRecID` is never another
    /// device's `oldRecID`.
    virtual void recordRenumbered(std::int32_t oldRecID, std::int32_t newRecID) {
        (void)oldRecID, (void)newRecID;
    }

    /// New, open, reload or merge: every record is another one. Pointers into the list are gone.
    virtual void documentReplaced() {}
};

} // namespace mirovane
