#include "model/datafile/MergeLines.h"

#include "model/records/RecordNames.h"

namespace mirovane::MergeLines {

using RecordNames::capitalName;
using RecordNames::fieldName;
using RecordNames::nameOf;
using RecordNames::quoted;

std::string gaveWay(const CHardware& ours, const CHardware& theirs, const RecordField& field) {
    return "Merge: " + fieldName(ours, field) + " of " + nameOf(ours) + ": " +
           quoted(fieldValue(theirs, field)) + ", saved by another station, gave way to " +
           quoted(fieldValue(ours, field));
}

std::string cameBack(const CHardware& ours) {
    return "Merge: " + capitalName(ours) + " was deleted by another station and changed here: it is kept";
}

std::string keptTheirs(const CHardware& theirs) {
    return "Merge: " + capitalName(theirs) + " was deleted here and changed by another station: it is kept";
}

std::string renumbered(const CHardware& ours, std::int32_t newRecID) {
    return "Merge: " + capitalName(ours) + " has the RecID " + std::to_string(newRecID) +
           " now: another station gave its own to a device of its own";
}

} // namespace mirovane::MergeLines
