#pragma once

#include "model/Datafile.h"
#include "model/EditJournal.h"
#include "model/Hardware.h"
#include "model/Merge.h"
#include "model/MessageLog.h"
#include "model/RecordIndex.h"
#include "model/Settings.h"
#include "platform/Clock.h"
#include "platform/Files.h"
#include "platform/Host.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

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
    /// of its own. Comes before the documentReplaced() of the merge; `newRecID` is no device's `oldRecID`.
    virtual void recordRenumbered(std::int32_t oldRecID, std::int32_t newRecID) {
        (void)oldRecID, (void)newRecID;
    }

    /// New, open, reload or merge: every record is another one. Pointers into the list are gone.
    virtual void documentReplaced() {}
};

/// The floor document: the one owner and the one writer of the ordered record list and of the datafile it
/// lives in. Main thread only. Everyone else reads through const references, which live until the record is
/// removed or the document is replaced, and changes records through the operations here; each knows the
/// fields before and after.
class CMirovaneDoc {
public:
    /// All references must outlive the document. Reads the display settings.
    CMirovaneDoc(Files& files, const Clock& clock, CMessageLog& log, CSettings& settings,
                 StationIdentity station);
    ~CMirovaneDoc();
    CMirovaneDoc(const CMirovaneDoc&) = delete;
    CMirovaneDoc& operator=(const CMirovaneDoc&) = delete;

    // ---- the list; each look-up takes constant time however long it is

    std::size_t size() const { return records_.size(); }
    const CHardware& at(std::size_t index) const { return *records_[index]; }
    std::size_t deviceCount() const;

    /// The device with this record ID (the first in list order where a damaged file holds it twice); null
    /// when none.
    const CHardware* findDevice(std::int32_t recID) const;

    /// The place in the list of the device with this record ID.
    std::optional<std::size_t> indexOfDevice(std::int32_t recID) const;

    /// The first record of this type in list order; null when none. For special records and criteria rows.
    const CHardware* findSpecial(std::int32_t type) const;

    /// The criteria row of a device type, with or without the Discovered/Misc offset.
    const CHardware* criteria(std::int32_t type, int row) const;

    /// The smallest k >= 1 that no device has.
    std::int32_t nextRecordID() const;

    /// Grows whenever a record came, went, changed places, or changed its Type or Priority.
    std::uint64_t orderRevision() const { return orderRevision_; }

    // ---- edits

    /// Appends a record as it is. Null, and a line in the log, when the datafile is full (65,534 records: one
    /// more and no station could open it again) or memory runs out.
    const CHardware* append(CHardware record);

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

    /// Removes the devices with these record IDs; unknown IDs are skipped. Returns how many went.
    std::size_t removeDevices(std::span<const std::int32_t> recIDs);

    /// Removes one record of this list, whatever it is.
    void remove(const CHardware& record);

    /// Two records trade places in the list.
    void exchange(std::size_t a, std::size_t b);

    /// One criteria value from its text, and what follows from it: devices of the type on the floor map
    /// forget which text files they searched, so that their rules are evaluated again.
    void setCriteria(std::int32_t type, int row, int column, const std::string& text);
    void resetCriteria();

    // ---- run-time flags: not an edit, never saved

    void setSelected(const CHardware& record, bool on);
    void setShowAll(const CHardware& record, bool on);
    void setLSNowMark(const CHardware& record, bool on);
    void setReminderDue(const CHardware& record, bool on);

    // ---- the datafile

    /// Empties the document and fills it with the shared-settings records and the default criteria.
    void newDatafile();

    /// Replaces the document by the file's records and runs the post-load pass. On failure the document stays
    /// what it was and the error says why.
    std::optional<Datafile::Error> open(const std::string& path);

    /// How reading again or saving is tried: a retry waits for no other station and reports no error of a
    /// save a second time.
    enum class Attempt { First, Retry };

    /// The records of the file again, without the post-load pass. What the user changed and could not save
    /// yet is put on top of them (see unsavedEdits()); what background work changed is dropped, but the
    /// pending-changes mark survives. Devices that were selected are selected and show all their labels
    /// again, and marks for Live Stat Now stay. On failure the records stay, and nothing is saved until the
    /// file could be read whole.
    std::optional<Datafile::Error> reload(Attempt attempt = Attempt::First);

    /// The one operation that writes the datafile. Logs "Saved ... changes to data file", or why not. With no
    /// path, or while loading, it writes nothing and returns no error. Takes and clears the save note.
    ///
    /// Where another station has saved since this one last read or wrote the file, it is read again under the
    /// same lock and this station's changes are put on top, which the log tells ("Merged changes from data
    /// file" and a line for every value that was lost); then all records are other ones, as after a reload.
    ///
    /// Any failure leaves the file as it was, and the marks of unsaved changes stay. Kind Changed: another
    /// station saved something that cannot be read; the note stays, too. Kind NotFound also when the datafile
    /// is gone from where it was: on a share that is not mounted a new one would hide it.
    std::optional<FileError> save(Attempt attempt = Attempt::First);

    /// The last save found that another station had saved, and read the file again.
    bool readAgainBySave() const { return readAgainBySave_; }

    /// The file holds something that this station has tried and failed to read.
    bool mustReload() const { return mustReload_; }

    /// The user changed something that is in no datafile yet.
    bool unsavedEdits() const { return !path_.empty() && !journal_.nothingToKeep(); }

    /// The same under a new path, which becomes the document's own only when the save succeeded.
    std::optional<FileError> saveAs(const std::string& path);

    const std::string& path() const { return path_; }
    std::int32_t fileVersion() const { return fileVersion_; }
    TimeStamp creationTime() const { return creationTime_; }
    const std::optional<FileIdentity>& knownIdentity() const { return knownIdentity_; }
    /// As stored; empty when the datafile names none.
    std::string floorMapPath() const;
    std::string photoFolder() const;

    /// Where the floor map is found from here: a relative path counts from the datafile's folder; a path of
    /// another platform ("C:\\plans\\floor.bmp") that does not exist here is looked for by its bare name
    /// beside the datafile.
    std::string resolvedFloorMapPath() const;
    std::string resolvedPhotoFolder() const;

    /// Both create the record that holds them when there is none yet. False when the datafile is full.
    bool setFloorMapPath(const std::string& path);
    bool setPhotoFolder(const std::string& folder);
    const StationIdentity& station() const { return station_; }

    bool modified() const { return modified_; } ///< edited since the last save
    bool pendingChanges() const { return pendingChanges_; }
    void setPendingChanges(bool pending) { pendingChanges_ = pending; }
    bool loading() const { return loading_; }
    void setLoading(bool loading) { loading_ = loading; }

    /// Goes between "Saved " and "changes to data file" in the next save's line, with a blank at its end.
    void setSaveNote(std::string note) { saveNote_ = std::move(note); }
    const std::string& saveNote() const { return saveNote_; }

    /// Set by the post-load pass of an older file: the periodic save shall run at its next chance, under its
    /// own note. Cleared by the next save that succeeds.
    bool upgradePending() const { return upgradePending_; }

    /// "Auto export on changes", as this user set it for this datafile; read when it is opened.
    bool exportAuto() const { return exportAuto_; }

    /// Devices that discovery added since the datafile was opened.
    std::size_t discovered() const { return discovered_; }
    void countDiscovered() { ++discovered_; }

    DisplaySettings& display() { return display_; }
    const DisplaySettings& display() const { return display_; }
    CSettings& settings() { return settings_; }
    const Clock& clock() const { return clock_; }
    CMessageLog& log() { return log_; }
    TimeStamp now() const;

    /// Observers must stay until removed. Adding or removing one from within a notification is not allowed.
    void addObserver(DocumentObserver& observer);
    void removeObserver(DocumentObserver& observer);

private:
    CHardware& slot(const CHardware& record);
    std::size_t placeOf(const CHardware& record) const;
    bool holdsSpecial(std::int32_t type) const { return findSpecial(type) != nullptr; }
    void setFlag(const CHardware& record, std::int32_t CHardware::*flag, bool on);
    void change(const CHardware& record, const std::function<void(CHardware&)>& change, bool byUser);
    void forgetTextFileStamps(std::int32_t type, bool allRows);
    CHardware makeSpecial(std::int32_t type, std::int32_t state) const;
    const CHardware* insert(CHardware record);
    void trade(std::size_t a, std::size_t b);
    bool setFloorMapField(std::string CHardware::*field, const std::string& text);

    void fillNewDatafile();
    void tellReplaced();
    void runPostLoadPass();
    void upgradeVersion();
    void addMissingRecords();
    void addToDoRows();
    std::optional<Datafile::Error> load(const std::string& path);
    std::optional<Datafile::Error> readAgain(LockedFile& file);
    void replaceRecords(Datafile::RecordList records, const std::vector<Renumbering>& renumbered);
    void mergeInto(Datafile::RecordList theirs);
    std::optional<FileError> bringVersionToFront(const std::string& path);
    Result<std::string, FileError> encoded(const std::string& path);
    std::optional<FileError> write(const std::string& path, bool over, std::chrono::milliseconds patience);
    std::optional<FileError> put(LockedFile& file, const std::string& path, std::string_view bytes);
    std::optional<FileError> reportSave(const std::string& path, std::optional<FileError> error,
                                        Attempt attempt = Attempt::First);

    Files& files_;
    const Clock& clock_;
    CMessageLog& log_;
    CSettings& settings_;
    StationIdentity station_;
    DisplaySettings display_;

    Datafile::RecordList records_;
    RecordIndex index_;
    EditJournal journal_;
    std::uint64_t orderRevision_ = 0;

    std::string path_;
    std::int32_t fileVersion_ = Datafile::currentVersion;
    TimeStamp creationTime_ = 0;
    std::optional<FileIdentity> knownIdentity_;
    std::string saveNote_;
    bool modified_ = false;
    bool pendingChanges_ = false;
    bool upgradePending_ = false;
    bool loading_ = false;
    bool exportAuto_ = false;
    std::size_t discovered_ = 0;
    bool mustReload_ = false; ///< a reload failed: what is in memory must not go over the file
    bool readAgainBySave_ = false;
    std::string reportedError_; ///< of the save that failed last

    std::vector<DocumentObserver*> observers_;
};

} // namespace mirovane
