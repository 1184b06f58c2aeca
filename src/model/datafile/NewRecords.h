#pragma once

#include "model/format/Datafile.h"
#include "platform/Host.h"

#include <cstdint>

namespace mirovane {

/// What a new datafile holds: the version, who runs Live Stat and Live Discover (nobody; the names are this
/// station's), and the default criteria of the thirteen types.
Datafile::RecordList newRecords(const StationIdentity& station, TimeStamp now);

/// Gives a list that was read from a datafile what it needs: the records that ownership and saving need,
/// where a damaged file lost them, the To Do rows where an old one never had them, and the current version at
/// the front. Adds nothing to a full list.
void completeRecords(Datafile::RecordList& records, std::int32_t fileVersion, TimeStamp now);

} // namespace mirovane
