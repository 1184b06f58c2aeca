#pragma once

#include "model/format/Datafile.h"
#include "model/records/FieldNames.h"

#include <bitset>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace mirovane {

/// Fields by their place in recordFields().
using FieldSet = std::bitset<32>;

const FieldSet allFields = ~FieldSet();

/// True for the fields that a merge decides one by one. The others follow from them: the number of a device,
/// the time of its last change, what Live Stat remembers of text files.
bool isMergedField(const RecordField& field);

/// Merged fields in which the two differ.
FieldSet changedFields(const CHardware& before, const CHardware& after);

/// Both name the same station, or nobody, as the one that runs the feature.
bool sameOwner(const CHardware& a, const CHardware& b);

/// What this station changed since the datafile was last read or written: all that a merge needs to put it on
/// top of what another station has saved meanwhile. What the user changed is told apart from what Live Stat
/// found, which can be found again. Costs a copy of every record that was changed or removed, and nothing in
/// the others.
///
/// The document tells it of every edit and empties it at every load and save. It knows records by their
/// address, which stays the same for a record's whole life in the list. Main thread.
class CEditJournal {
public:
    struct Change {
        CHardware base;  ///< as it was before the first change
        FieldSet byUser; ///< which fields the user has changed since
    };

    CEditJournal() = default;
    CEditJournal(CEditJournal&&) = default;
    CEditJournal& operator=(CEditJournal&&) = default;

    void added(const CHardware& record) { added_.insert(&record); }

    /// A removed record is in the list again: as `added`, or back to what the datafile still holds.
    void cameBack(const CHardware& record);

    /// `after` is the record of the list. Of the fields that differ, those in `byUser` are the user's edit.
    void changed(const CHardware& before, const CHardware& after, const FieldSet& byUser);

    /// The record as it left the list.
    void removed(std::unique_ptr<CHardware> gone);

    /// The same where another journal takes the record itself.
    void removed(const CHardware& gone);

    /// Takes over what another journal has of this record of the list, if anything.
    void takeOver(const CHardware& record, const CEditJournal& other);

    /// Takes as long as there were changes, whatever the size of the list.
    void clear();

    /// Nothing that must not get lost: no edit of the user, no claim to run a feature.
    bool nothingToKeep() const { return added_.empty() && !keepsChanges_ && removals_.empty(); }
    bool anyAdded() const { return !added_.empty(); }
    bool isAdded(const CHardware& record) const { return added_.contains(&record); }

    /// Null when the record was not changed, or was added.
    const Change* changeOf(const CHardware& record) const;

    /// As they were when the file was last read or written.
    const Datafile::RecordList& removals() const { return removals_; }
    const std::unordered_map<const CHardware*, Change>& changes() const { return changes_; }

private:
    void note(const CHardware& listed, std::unique_ptr<CHardware> gone);
    std::optional<std::size_t> removalOf(const CHardware& record) const;

    std::unordered_set<const CHardware*> added_;
    std::unordered_map<const CHardware*, Change> changes_;
    Datafile::RecordList removals_;
    std::unordered_map<std::int32_t, std::size_t> removedDevices_; ///< place in removals_ by record ID
    bool keepsChanges_ = false; ///< some of them are not found again by themselves
};

} // namespace mirovane
