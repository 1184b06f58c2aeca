#pragma once

#include "model/DeviceKey.h"
#include "model/DocumentObserver.h"
#include "model/EditJournal.h"
#include "model/MessageLog.h"
#include "model/RecordIndex.h"
#include "model/format/Datafile.h"
#include "model/records/Hardware.h"
#include "platform/Clock.h"
#include "platform/Host.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace mirovane {

/// What was edited since a save began that is still under way. On its own, because Clang 14 does not take the
/// value that a member begins with from a class within the class that holds it.
struct SinceSave {
    CEditJournal journal;
    bool modified = false;
};

/// The floor document: the one owner and the one writer of the ordered record list, with the indexes that
/// find a record at once, the journal of what is in no datafile yet, and the observers. Which file it lives
/// in is CDatafileLink's business. Main thread only. Everyone else reads through const references, which live
/// until the record is removed or the records are replaced, and changes records through the operations here;
/// each knows the fields before and after.
class CMirovaneDoc {
public:
    /// The clock and the log must outlive the document. It is empty until it is filled.
    CMirovaneDoc(const Clock& clock, CMessageLog& log, StationIdentity station);
    CMirovaneDoc(const CMirovaneDoc&) = delete;
    CMirovaneDoc& operator=(const CMirovaneDoc&) = delete;

    // ---- the list; each look-up takes constant time however long it is

    std::size_t size() const { return records_.size(); }
    const CHardware& at(std::size_t index) const { return *records_[index]; }
    const Datafile::RecordList& records() const { return records_; }
    std::size_t deviceCount() const { return index_.deviceCount(); }

    /// The device with this record ID (the first in list order where a damaged file holds it twice); null
    /// when no device has it.
    const CHardware* findDevice(std::int32_t recID) const;

    /// The device meant, also where its record ID is in the list twice.
    const CHardware* findDevice(const DeviceKey& key) const;
    DeviceKey keyOf(const CHardware& device) const;

    /// The place in the list of the device with this record ID.
    std::optional<std::size_t> indexOfDevice(std::int32_t recID) const { return index_.device(recID); }

    /// The first record of this type in list order; null when the list has no such record. For special
    /// records and criteria rows.
    const CHardware* findSpecial(std::int32_t type) const;

    /// The criteria row of a device type, with or without the Discovered/Misc offset.
    const CHardware* criteria(std::int32_t type, int row) const;

    /// The smallest k >= 1 that no device has.
    std::int32_t nextRecordID() const { return index_.nextRecordID(); }

    /// Grows whenever a record came, went, changed places, or changed its Type or Priority.
    std::uint64_t orderRevision() const { return orderRevision_; }

    // ---- edits

    /// Appends a record as it is. Null, and a line in the log, when the datafile is full (65,534 records: one
    /// more and no station could open it again) or memory runs out.
    const CHardware* append(CHardware record);

    /// As `append`, for a record that was removed from this list: a removal that is in no datafile yet is
    /// none any more, so that a merge knows the record as the one that other stations have.
    const CHardware* bringBack(CHardware record);

    /// A new device of this type: next record ID, the type's priority, Modified now. Otherwise as `append`.
    const CHardware* addDevice(std::int32_t type, const std::function<void(CHardware&)>& fill = {});

    /// A user's edit of one record of this list, which is kept also when another station saves the datafile
    /// meanwhile. `change` gets the record itself. Does not stamp Modified.
    void edit(const CHardware& record, const std::function<void(CHardware&)>& change);

    /// As `edit`, then Modified = now.
    void editByUser(const CHardware& record, const std::function<void(CHardware&)>& change);

    /// As `edit`, for what can be found again: gives way to what another station saved. (Who runs a feature
    /// is decided by its owner record, however that was edited.)
    void editInBackground(const CHardware& record, const std::function<void(CHardware&)>& change);

    /// Removes these devices; keys that nobody has are skipped. One pass over the list. Returns how many
    /// went.
    std::size_t removeDevices(std::span<const DeviceKey> keys);

    /// Removes one record of this list, whatever it is.
    void remove(const CHardware& record);

    /// Two records trade places in the list.
    void exchange(std::size_t a, std::size_t b);

    // ---- run-time flags: not an edit, never saved

    void setSelected(const CHardware& record, bool on);
    void setShowAll(const CHardware& record, bool on);
    void setLSNowMark(const CHardware& record, bool on);
    void setReminderDue(const CHardware& record, bool on);

    // ---- what the link to the datafile does

    /// New or open: every record is another one, nothing is to be saved, nothing is selected. `inDatafile`:
    /// the records are in a datafile, so that what is edited from now on is kept in the journal.
    void replaceAll(Datafile::RecordList records, bool inDatafile);

    /// The same datafile as before, read again and perhaps merged. Devices that were selected are selected
    /// and show all their labels again, and marks for Live Stat Now stay.
    void replaceByReload(Datafile::RecordList records, CEditJournal journal,
                         const std::vector<Renumbering>& renumbered);

    /// The records are on their way to a datafile as they are now. What is edited from here on is in no
    /// datafile yet when they have arrived, nor is what was changed before in records that `stays` names.
    void saveBegins(const std::function<bool(const CHardware&)>& stays = {});

    /// They have not arrived.
    void saveFailed() { since_.reset(); }

    /// They have arrived; without saveBegins() everything is in a datafile now.
    void allSaved();

    /// An unnamed document was to be saved: it counts as edited.
    void markModified() { modified_ = true; }

    /// While documentReplaced() tells of a reload: the list as it was, so that a device can be found again.
    /// Null at any other time, also when the document becomes another one.
    const Datafile::RecordList* recordsBeforeReload() const { return recordsBeforeReload_; }

    const CEditJournal& journal() const { return journal_; }

    /// What was edited since the save that is under way began; null while none is.
    const CEditJournal* journalSinceSave() const { return since_ ? &since_->journal : nullptr; }

    /// How often records have arrived in a datafile.
    std::uint64_t arrivals() const { return arrivals_; }
    bool modified() const { return modified_; } ///< edited since the last save

    /// The user changed something that is in no datafile yet, although this document has one.
    bool unsavedEdits() const { return keepsJournal_ && !journal_.nothingToKeep(); }

    const StationIdentity& station() const { return station_; }
    TimeStamp now() const;

    /// Observers must stay until removed. Adding or removing one from within a notification is not allowed.
    /// Whoever may only read may observe, too.
    void addObserver(DocumentObserver& observer) const;
    void removeObserver(DocumentObserver& observer) const;

private:
    template <typename Note>
    void journalise(Note note);
    void journaliseRemoval(std::unique_ptr<CHardware> gone);
    const CHardware* appended(CHardware record, void (CEditJournal::*note)(const CHardware&));
    CHardware& slot(const CHardware& record);
    std::size_t placeOf(const CHardware& record) const;
    void setFlag(const CHardware& record, std::int32_t CHardware::*flag, bool on);
    void change(const CHardware& record, const std::function<void(CHardware&)>& change, bool byUser);
    void tellReplaced();

    const Clock& clock_;
    CMessageLog& log_;
    StationIdentity station_;
    Datafile::RecordList records_;
    const Datafile::RecordList* recordsBeforeReload_ = nullptr;
    CRecordIndex index_;
    CEditJournal journal_;
    std::optional<SinceSave> since_;
    mutable std::vector<DocumentObserver*> observers_;
    std::uint64_t orderRevision_ = 0;
    std::uint64_t arrivals_ = 0;
    bool keepsJournal_ = false;
    bool modified_ = false;
};

} // namespace mirovane
