#pragma once

#include "model/DeviceKey.h"
#include "model/EditJournal.h"
#include "model/format/Datafile.h"

#include <cstdint>
#include <string>
#include <vector>

namespace mirovane {

struct MergeResult {
    Datafile::RecordList records; ///< in the order of the file, what was added here at the end
    CEditJournal journal;         ///< this station's changes as they are on top of the file that was read
    std::vector<Renumbering> renumbered;
    std::vector<std::string> lines; ///< for the message log: every value that is lost, and every surprise
};

/// Puts this station's changes since its last reading of the datafile on top of a new reading. Pure.
///
/// A field that only one side changed has that side's value. Where both changed it, the user's edit here wins
/// over what the file says and a line names the value that gave way; what Live Stat found here gives way
/// without one, because it is found again. A record that one side deleted and the other edited stays: a
/// deletion is easily repeated, an edit is not. (Live Stat setting a device On or Off does not count as an
/// edit.) New devices keep their number where the file has not given it to another one; else they get the
/// next free one. Who runs Live Stat or Live Discover is as the file says, if that has changed since: the
/// stations ask their users.
///
/// `ours` is the list that the journal tells of; its records are left alone.
MergeResult mergeEdits(Datafile::RecordList theirs, const Datafile::RecordList& ours,
                       const CEditJournal& journal);

} // namespace mirovane
