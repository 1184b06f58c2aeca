#pragma once

#include "model/records/FieldNames.h"
#include "model/records/Hardware.h"

#include <string>

namespace mirovane {

/// What the message log says where edits of two stations met. Each line can be read alone: it names the
/// record and quotes every value that is no longer in the datafile, whole, so that it can be typed in again.
namespace MergeLines {

/// Both stations changed the field; ours, saved later, stays.
std::string gaveWay(const CHardware& ours, const CHardware& theirs, const RecordField& field);

/// Deleted there, changed here.
std::string cameBack(const CHardware& ours);

/// Changed there, deleted here.
std::string keptTheirs(const CHardware& theirs);

/// Both stations gave a new device the same number.
std::string renumbered(const CHardware& ours, std::int32_t newRecID);

} // namespace MergeLines

} // namespace mirovane
