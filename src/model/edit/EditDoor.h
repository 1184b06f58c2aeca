#pragma once

#include "model/DeviceKey.h"
#include "model/MessageLog.h"
#include "model/SaveReport.h"
#include "model/edit/EditHistory.h"

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace mirovane {

/// What a user's edit is, before it is made.
struct EditRequest {
    enum class Kind {
        Settings, ///< criteria, applications, ranges, the floor map: nothing that Live Stat's steps work on
        Add,      ///< new devices
        Change,   ///< devices change
        Delete,   ///< devices go
        Place,    ///< devices move, or change in what no step of Live Stat works on: nobody is waited for
    };
    enum class Saving {
        Now,
        Later, ///< a window that collects edits: with its own save, or with the next periodic one
    };

    Kind kind = Kind::Settings;
    EditName name;                  ///< of the undo step: "Delete 3 devices"
    std::vector<DeviceKey> devices; ///< that change or go
    Saving saving = Saving::Now;
};

/// What surrounds an edit at a station.
class EditDoorHost {
public:
    virtual ~EditDoorHost() = default;

    /// Returns when the records may change: nobody else does anything to them until afterEdit().
    virtual void beforeEdit(const EditRequest& request) = 0;

    /// Saves, and tells everybody. `changed` false: the records are as they were.
    virtual SaveReport afterEdit(const EditRequest& request, bool changed) = 0;

    /// Another step is undone or redone next.
    virtual void historyChanged() {}
};

/// The one way in which a user changes the document, from any window or the command line: wait for those who
/// work on the devices, take the before-image as a named step, change, stamp, save, tell everybody. Undo and
/// redo are edits like any other. Main thread.
class CEditDoor {
public:
    CEditDoor(CMirovaneDoc& document, CMessageLog& log, EditDoorHost& host)
        : document_(document), log_(log), host_(host), history_(document) {}

    /// `change` makes the edit with the document's operations and runs once. It starts no other edit: that
    /// one is refused with a line in the log, as Deferred, because the records that it means are just
    /// changing.
    SaveReport edit(const EditRequest& request, const std::function<void(CMirovaneDoc&)>& change);

    /// Only the step, for what has its own ways to wait, to save and to tell: a feature that the user had add
    /// devices. Refused within an edit, too; false then.
    bool record(const EditName& name, const std::function<void()>& change);

    /// Takes the latest step back, or makes the one that was undone last again; see reverseStep(). Saves at
    /// once. Deferred when no step is left.
    SaveReport undo() { return reverse(CEditHistory::Way::Undo); }
    SaveReport redo() { return reverse(CEditHistory::Way::Redo); }

    /// A save that is asked for while an edit is being made: a merge would replace the records under its
    /// hands. True: it comes with the end of the edit, also of one for later. After record() the caller asks
    /// whether one is owed.
    bool postponesSave();
    bool takePostponedSave() { return std::exchange(saveAsked_, false); }

    bool changing() const { return changing_; }

    const CEditHistory& history() const { return history_; }

    /// Another datafile.
    void forgetHistory();

private:
    SaveReport reverse(CEditHistory::Way way);
    SaveReport surround(EditRequest request, const std::function<bool()>& make);
    std::optional<SaveReport> refused(const EditName& name);

    CMirovaneDoc& document_;
    CMessageLog& log_;
    EditDoorHost& host_;
    CEditHistory history_;
    bool changing_ = false;
    bool saveAsked_ = false; ///< meanwhile
};

} // namespace mirovane
