#pragma once

#include "model/DeviceKey.h"
#include "model/SaveReport.h"
#include "model/edit/EditHistory.h"

#include <functional>
#include <string>
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
    std::string name;               ///< of the undo step: "Delete 3 devices"
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
};

/// The one way in which a user changes the document, from any window or the command line: wait for those who
/// work on the devices, take the before-image as a named step, change, stamp, save, tell everybody. Main
/// thread.
class CEditDoor {
public:
    CEditDoor(CMirovaneDoc& document, EditDoorHost& host)
        : document_(document), host_(host), history_(document) {}

    /// `change` makes the edit with the document's operations; it runs once, and starts no other edit.
    SaveReport edit(const EditRequest& request, const std::function<void(CMirovaneDoc&)>& change);

    /// Only the step, for what has its own ways to wait, to save and to tell: a feature that the user had add
    /// devices.
    bool record(const std::string& name, const std::function<void()>& change);

    CEditHistory& history() { return history_; }
    const CEditHistory& history() const { return history_; }

private:
    CMirovaneDoc& document_;
    EditDoorHost& host_;
    CEditHistory history_;
};

} // namespace mirovane
